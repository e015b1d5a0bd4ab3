// SPDX-License-Identifier: MIT
// Pixels as 32-bit words, and loops over them in blocks that the compiler vectorises.
#pragma once

#include "quillon/simd/dispatch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon {

inline constexpr std::size_t PIXEL_BYTES = 4;

// The pixels that one step of a kernel works on: loops of this fixed length need no remainder.
inline constexpr std::size_t BLOCK_PIXELS = 16;
inline constexpr std::size_t BLOCK_BYTES = BLOCK_PIXELS * PIXEL_BYTES;

// One value for each byte of a block, or for each of its pixels.
template <typename T>
using PerByte = std::array<T, BLOCK_BYTES>;
template <typename T>
using PerPixel = std::array<T, BLOCK_PIXELS>;

constexpr std::uint32_t pixel_word(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a) {
    return std::bit_cast<std::uint32_t>(std::array<std::uint8_t, PIXEL_BYTES>{r, g, b, a});
}

inline constexpr std::uint32_t ALPHA_BITS = pixel_word(0, 0, 0, 255);

// How far a channel's byte is shifted in a pixel's word.
constexpr int channel_shift(int channel) {
    return std::endian::native == std::endian::little ? 8 * channel : 24 - 8 * channel;
}

QUILLON_KERNEL inline std::uint32_t load_pixel(const std::uint8_t* pixel) {
    std::uint32_t word;
    std::memcpy(&word, pixel, sizeof word);
    return word;
}

QUILLON_KERNEL inline void store_pixel(std::uint8_t* pixel, std::uint32_t word) {
    std::memcpy(pixel, &word, sizeof word);
}

// A count of the flat interface as a size: 0 if it is negative.
constexpr std::size_t size_of_count(std::int32_t count) {
    return static_cast<std::size_t>(std::max(count, 0));
}

// The value for each byte of a block: `color` for red, green and blue, `alpha` for alpha.
template <typename T>
QUILLON_KERNEL inline PerByte<T> per_byte(T color, T alpha) {
    PerByte<T> values;
    for (std::size_t i = 0; i < BLOCK_BYTES; ++i)
        values[i] = i % PIXEL_BYTES == 3 ? alpha : color;
    return values;
}

// Runs change(block, first) over all pixels, `first` being the index of the block's first pixel.
//
// The last pixels are changed in a copy of a whole block, so nothing beyond them is touched.
template <typename Change>
QUILLON_KERNEL inline void for_each_block(std::uint8_t* pixels, std::size_t count, Change change) {
    std::size_t first = 0;
    for (; first + BLOCK_PIXELS <= count; first += BLOCK_PIXELS)
        change(pixels + first * PIXEL_BYTES, first);
    if (first == count)
        return;
    PerByte<std::uint8_t> rest{};
    const std::size_t rest_bytes = (count - first) * PIXEL_BYTES;
    std::memcpy(rest.data(), pixels + first * PIXEL_BYTES, rest_bytes);
    change(rest.data(), first);
    std::memcpy(pixels + first * PIXEL_BYTES, rest.data(), rest_bytes);
}

// Replaces each byte by change(byte, index of the byte in its block).
template <typename Change>
QUILLON_KERNEL inline void for_each_byte(std::uint8_t* pixels, std::size_t count, Change change) {
    for_each_block(pixels, count, [&](std::uint8_t* block, std::size_t) QUILLON_KERNEL {
        for (std::size_t i = 0; i < BLOCK_BYTES; ++i)
            block[i] = change(block[i], i);
    });
}

// Replaces each pixel's word by change(word).
template <typename Change>
QUILLON_KERNEL inline void for_each_pixel(std::uint8_t* pixels, std::size_t count, Change change) {
    for_each_block(pixels, count, [&](std::uint8_t* block, std::size_t) QUILLON_KERNEL {
        for (std::size_t i = 0; i < BLOCK_BYTES; i += PIXEL_BYTES)
            store_pixel(block + i, change(load_pixel(block + i)));
    });
}

} // namespace quillon
