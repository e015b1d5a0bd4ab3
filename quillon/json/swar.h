// SPDX-License-Identifier: MIT
// Text eight bytes at a time: SIMD within a register.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon::json {

inline constexpr std::uint64_t ONES = 0x0101010101010101;
inline constexpr std::uint64_t HIGH_BITS = ONES << 7;

// The high bit of each byte that is below `limit`, at most 128; exact up to the first of them, as a
// borrow may reach the bytes after it.
// Source: the zero-byte test of A. Mycroft, 1987.
constexpr std::uint64_t bytes_below(std::uint64_t bytes, unsigned char limit) {
    return (bytes - ONES * limit) & ~bytes & HIGH_BITS;
}

constexpr std::uint64_t bytes_equal(std::uint64_t bytes, unsigned char byte) {
    return bytes_below(bytes ^ ONES * byte, 1);
}

template <typename Word>
Word load(const void* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

// Eight bytes as a number whose lowest byte is the first, on every machine.
inline std::uint64_t load_text(const void* bytes) {
    if constexpr (std::endian::native == std::endian::little)
        return load<std::uint64_t>(bytes);
    std::uint64_t word = 0;
    for (unsigned i = 0; i < 8; ++i)
        word |= std::uint64_t{static_cast<const unsigned char*>(bytes)[i]} << 8 * i;
    return word;
}

inline void store_text(unsigned char* bytes, std::uint64_t word) {
    if constexpr (std::endian::native == std::endian::little)
        std::memcpy(bytes, &word, sizeof(word));
    else
        for (unsigned i = 0; i < 8; ++i)
            bytes[i] = static_cast<unsigned char>(word >> 8 * i);
}

// True if the first and the last bytes of `count`, which may overlap, are the same.
template <typename Word>
bool same_ends(const void* a, const void* b, std::size_t count) {
    const auto* left = static_cast<const unsigned char*>(a);
    const auto* right = static_cast<const unsigned char*>(b);
    const std::size_t last = count - sizeof(Word);
    return ((load<Word>(left) ^ load<Word>(right)) |
            (load<Word>(left + last) ^ load<Word>(right + last))) == 0;
}

// Compares bytes that mostly are few.
inline bool same_bytes(const void* a, const void* b, std::size_t count) {
    if (count > 16)
        return std::memcmp(a, b, count) == 0;
    if (count >= 8)
        return same_ends<std::uint64_t>(a, b, count);
    if (count >= 4)
        return same_ends<std::uint32_t>(a, b, count);
    if (count >= 2)
        return same_ends<std::uint16_t>(a, b, count);
    return count == 0 || same_ends<std::uint8_t>(a, b, count);
}

// Copies the first and the last `width` bytes of `count`, which may overlap.
template <std::size_t width>
void copy_ends(void* target, const void* source, std::size_t count) {
    auto* to = static_cast<unsigned char*>(target);
    const auto* from = static_cast<const unsigned char*>(source);
    std::memcpy(to, from, width);
    std::memcpy(to + count - width, from + count - width, width);
}

// Copies bytes that mostly are so few that a call would take longer than the copy.
inline void copy_bytes(void* target, const void* source, std::size_t count) {
    if (count > 16)
        std::memcpy(target, source, count);
    else if (count >= 8)
        copy_ends<8>(target, source, count);
    else if (count >= 4)
        copy_ends<4>(target, source, count);
    else if (count >= 2)
        copy_ends<2>(target, source, count);
    else if (count == 1)
        copy_ends<1>(target, source, count);
}

} // namespace quillon::json
