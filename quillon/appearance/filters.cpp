// SPDX-License-Identifier: MIT
#include "quillon/appearance/filters.h"

#include "quillon/appearance/pixels.h"
#include "quillon/simd/dispatch.h"

#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>

namespace quillon {
namespace {

using std::size_t;
using std::uint16_t;
using std::uint32_t;
using std::uint8_t;

QUILLON_KERNEL inline void mask_by_key(uint8_t* pixels, size_t count, uint32_t key) {
    for_each_pixel(pixels, count, [=](uint32_t word) {
        return (word | ALPHA_BITS) == key ? ALPHA_BITS : ~uint32_t{0};
    });
}

template <int channel>
QUILLON_KERNEL inline void mask_by_channel(uint8_t* pixels, size_t count) {
    constexpr uint32_t color_ones = pixel_word(1, 1, 1, 0);
    for_each_pixel(pixels, count, [=](uint32_t word) {
        return ((word >> channel_shift(channel)) & 255) * color_ones | ALPHA_BITS;
    });
}

// Half a block, for shuffles of bytes.
using HalfBlock = uint8_t __attribute__((vector_size(BLOCK_BYTES / 2)));

// Spreads a channel over the colour of each pixel; `byte` numbers the bytes.
template <int channel, size_t... byte>
QUILLON_KERNEL inline void spread_channel(uint8_t* pixels, std::index_sequence<byte...>) {
    constexpr HalfBlock opaque = {(byte % PIXEL_BYTES == 3 ? uint8_t{255} : uint8_t{0})...};
    HalfBlock bytes;
    std::memcpy(&bytes, pixels, sizeof bytes);
    bytes = __builtin_shufflevector(bytes, bytes, (byte / PIXEL_BYTES * PIXEL_BYTES + channel)...);
    bytes |= opaque;
    std::memcpy(pixels, &bytes, sizeof bytes);
}

// What mask_by_channel does, by shuffles in three quarters of its time. Without AVX2 a machine may
// lack them.
template <int channel>
QUILLON_KERNEL inline void mask_by_shuffles(uint8_t* pixels, size_t count) {
    constexpr auto byte = std::make_index_sequence<sizeof(HalfBlock)>();
    for_each_block(pixels, count, [=](uint8_t* block, size_t) QUILLON_KERNEL {
        spread_channel<channel>(block, byte);
        spread_channel<channel>(block + sizeof(HalfBlock), byte);
    });
}

QUILLON_KERNEL inline void subtract_saturated(uint8_t* pixels, size_t count, uint8_t amount) {
    const auto amounts = per_byte<uint8_t>(amount, 0);
    for_each_byte(pixels, count, [&](uint8_t byte, size_t i) {
        return static_cast<uint8_t>(std::max(byte, amounts[i]) - amounts[i]);
    });
}

QUILLON_KERNEL inline void add_saturated(uint8_t* pixels, size_t count, uint8_t amount) {
    const auto amounts = per_byte<uint8_t>(amount, 0);
    const auto highest = per_byte<uint8_t>(static_cast<uint8_t>(255 - amount), 255);
    for_each_byte(pixels, count, [&](uint8_t byte, size_t i) {
        return static_cast<uint8_t>(std::min(byte, highest[i]) + amounts[i]);
    });
}

uint32_t scaled_byte(uint32_t byte, float factor) {
    const float product = static_cast<float>(byte) * factor;
    if (!(product > 0.0F)) // NaN too
        return 0;
    return product < 255.0F ? static_cast<uint32_t>(product) : 255;
}

uint32_t fixed_point_product(uint32_t byte, uint32_t fixed) {
    return std::min<uint32_t>(byte * fixed >> 16, 255);
}

// A factor in 16.16 fixed point that scales each byte as `factor` does, if there is one.
//
// The smallest one whose products reach every scaled byte exceeds none of them: fractions with
// denominators up to 255 are at least 1 / (255 * 254) apart, which is more than 1 / 65536, so that
// a multiple of the latter lies between the largest scaled / byte and the least (scaled + 1) /
// byte. There is none if some products of the factor are rounded up to whole numbers and others are
// not, as with 1.05.
std::optional<uint32_t> fixed_point_factor(float factor) {
    uint32_t fixed = 0;
    for (uint32_t byte = 1; byte <= 255; ++byte)
        fixed = std::max(fixed, ((scaled_byte(byte, factor) << 16) + byte - 1) / byte);
    for (uint32_t byte = 1; byte <= 255; ++byte)
        if (fixed_point_product(byte, fixed) != scaled_byte(byte, factor))
            return std::nullopt;
    return fixed;
}

// Bytes are scaled in pairs, each in its place within 16 bits, so that nothing is unpacked: red
// beside green, blue beside alpha.
constexpr size_t PAIRS = BLOCK_BYTES / 2;
constexpr int FIRST_SHIFT = std::endian::native == std::endian::little ? 0 : 8;
constexpr int SECOND_SHIFT = 8 - FIRST_SHIFT;

// Fixed-point factors for one byte of each pair. Arrays even where all are equal: the compiler
// would widen a product with a single number to 32 bits.
struct FixedFactors {
    std::array<uint16_t, PAIRS> whole;
    std::array<uint16_t, PAIRS> part;

    // `in_second` is for the pair of blue and alpha.
    QUILLON_KERNEL FixedFactors(uint32_t in_first, uint32_t in_second) {
        for (size_t i = 0; i < PAIRS; ++i) {
            const uint32_t fixed = i % 2 == 0 ? in_first : in_second;
            whole[i] = static_cast<uint16_t>(fixed >> 16);
            part[i] = static_cast<uint16_t>(fixed);
        }
    }

    // No factor exceeds 255 << 16, so neither product nor their sum leaves 16 bits.
    QUILLON_KERNEL uint16_t scaled(uint16_t byte, size_t i) const {
        const auto product =
            static_cast<uint16_t>(byte * whole[i] + (uint32_t{byte} * part[i] >> 16));
        return std::min<uint16_t>(product, 255);
    }
};

QUILLON_KERNEL inline void scale_by_fixed(uint8_t* pixels, size_t count, uint32_t fixed) {
    const FixedFactors of_first(fixed, fixed);
    const FixedFactors of_second(fixed, uint32_t{1} << 16);
    for_each_block(pixels, count, [&](uint8_t* block, size_t) QUILLON_KERNEL {
        for (size_t i = 0; i < PAIRS; ++i) {
            uint16_t pair;
            std::memcpy(&pair, block + 2 * i, sizeof pair);
            const uint16_t first = of_first.scaled(pair >> FIRST_SHIFT & 255, i);
            const uint16_t second = of_second.scaled(pair >> SECOND_SHIFT & 255, i);
            pair = static_cast<uint16_t>(first << FIRST_SHIFT | second << SECOND_SHIFT);
            std::memcpy(block + 2 * i, &pair, sizeof pair);
        }
    });
}

// The channel's byte of a pixel, scaled, in its place in the word.
QUILLON_KERNEL inline uint32_t scaled_channel(uint32_t word, int channel, float factor) {
    const int shift = channel_shift(channel);
    const auto byte = static_cast<std::int32_t>(word >> shift & 255);
    const auto product = static_cast<std::int32_t>(static_cast<float>(byte) * factor);
    return static_cast<uint32_t>(std::min(product, 255)) << shift;
}

// For a factor above 0 and below 256.
QUILLON_KERNEL inline void scale_by_float(uint8_t* pixels, size_t count, float factor) {
    for_each_pixel(pixels, count, [=](uint32_t word) QUILLON_KERNEL {
        return scaled_channel(word, 0, factor) | scaled_channel(word, 1, factor) |
               scaled_channel(word, 2, factor) | (word & ALPHA_BITS);
    });
}

} // namespace
} // namespace quillon

using namespace quillon;

void __cBitmap_color_key_mask(const cColor& key, uint8_t* pixels, std::int32_t count) {
    const uint32_t word =
        pixel_word(wrapped_byte_from_component(key.r), wrapped_byte_from_component(key.g),
                   wrapped_byte_from_component(key.b), 255);
    simd::run_vectorised<mask_by_key>(pixels, size_of_count(count), word);
}

void __cBitmap_alpha_mask(uint8_t* pixels, std::int32_t count) {
    __cBitmap_monochrome_saturate_by_channel(3, pixels, count);
}

void __cBitmap_monochrome_saturate_by_channel(uint8_t channel, uint8_t* pixels,
                                              std::int32_t count) {
    constexpr void (*masks[PIXEL_BYTES])(uint8_t*, size_t) = {
        simd::run_vectorised<mask_by_shuffles<0>, mask_by_channel<0>>,
        simd::run_vectorised<mask_by_shuffles<1>, mask_by_channel<1>>,
        simd::run_vectorised<mask_by_shuffles<2>, mask_by_channel<2>>,
        simd::run_vectorised<mask_by_shuffles<3>, mask_by_channel<3>>};
    if (channel < PIXEL_BYTES)
        masks[channel](pixels, size_of_count(count));
}

void __cBitmap_multiply(float factor, uint8_t* pixels, std::int32_t count) {
    if (count <= 0)
        return;
    if (const auto fixed = fixed_point_factor(factor))
        simd::run_vectorised<scale_by_fixed>(pixels, size_of_count(count), *fixed);
    else
        simd::run_vectorised<scale_by_float>(pixels, size_of_count(count), factor);
}

void __cBitmap_darken(uint8_t amount, uint8_t* pixels, std::int32_t count) {
    simd::run_vectorised<subtract_saturated>(pixels, size_of_count(count), amount);
}

void __cBitmap_brighten(uint8_t amount, uint8_t* pixels, std::int32_t count) {
    simd::run_vectorised<add_saturated>(pixels, size_of_count(count), amount);
}
