// Eight bytes of text at a time.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace quillon {

inline constexpr std::uint64_t cson_ones = 0x0101010101010101;
inline constexpr std::uint64_t cson_high_bits = cson_ones << 7;

// The high bit of each byte that is below `limit`, at most 128; not exact behind the first of them.
constexpr std::uint64_t cson_bytes_below(std::uint64_t bytes, unsigned char limit) {
    return (bytes - cson_ones * limit) & ~bytes & cson_high_bits;
}

constexpr std::uint64_t cson_bytes_equal(std::uint64_t bytes, unsigned char byte) {
    return cson_bytes_below(bytes ^ cson_ones * byte, 1);
}

// The first position from `at` on whose byte stops, or the end. `stops_in` tells of eight bytes
// which of them stop, as the two above do; `stops` tells it of one.
template <class StopsIn, class Stops>
inline const unsigned char* cson_skip(const unsigned char* at, const unsigned char* end,
                                      StopsIn stops_in, Stops stops) {
    for (; end - at >= 8; at += 8) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, at, sizeof(bytes));
        const std::uint64_t found = stops_in(bytes);
        if (found == 0)
            continue;
        if constexpr (std::endian::native == std::endian::little)
            return at + std::countr_zero(found) / 8;
        break;
    }
    while (at < end && !stops(*at))
        ++at;
    return at;
}

} // namespace quillon
