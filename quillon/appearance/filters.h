// SPDX-License-Identifier: MIT
// Filters that change a pixel buffer in place (its layout: see bitmap.h).
//
// b is a byte of the pixel before, b' after. Counts are in pixels.
// A count, width or height of 0 or less does nothing.
// Nothing outside the counted pixels is read or written.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"

#include <cstdint>

extern "C" {

// Adds a colour through a round brush: a disc of full strength in a ring that falls off.
//
//     d        = dx^2 + dy^2 - radius^2, each square and d rounded to 32 bits
//     limit    = 4 * deviation^2, rounded to 32 bits
//     strength = 1                                      where d <= 0
//                gauss_near_zero_taylor7(d, deviation)  where d < limit
//                0                                      elsewhere
//     b'       = component * strength * 255 + b, in 64 bits, rounded to 32,
//                clamped to 0 to 255 and truncated
//
// Where the strength is 0 the pixel is unchanged.
// Alpha: added to like the other three.
// The centre may lie anywhere.
// A component of NaN yields 0. A radius of NaN paints nothing, a deviation of NaN the disc without
// its ring.
// Cost: proportional to the pixels that the brush touches, not to the size of the bitmap.
QUILLON_API void __cBitmap_gauss_brush(const quillon::cColor& color, std::uint8_t* pixels,
                                       std::int32_t column, std::int32_t row, std::int32_t width,
                                       std::int32_t height, const float& radius,
                                       const float& deviation);

// Turns a height map into the map of its normals; edges wrap, so what tiles still tiles.
//
// The gradient is that of an asymmetric Sobel operator, whose heavy row and column are the first:
//
//     height = (alpha / 65536) * ((red + green + blue) / 3)
//     gx     = the steps to the right, 1/4 each in the row above, 1/8 in the pixel's row and below
//     gy     = the steps downwards, 1/4 each in the column to the left, 1/8 in the other two
//     normal = (-gx * scale, -gy * scale, 1), normalised
//     b'     = (component + 1) * 128, clamped to 0 to 255 and truncated
//
// All in 64 bits.
// A component of NaN, as a scale of NaN makes it, yields 0.
// Alpha: becomes 255.
// Scratch: four rows of 64-bit floats. If their allocation throws, no pixel has changed.
QUILLON_API void __cBitmap_bump_map_to_normal_map(std::uint8_t* pixels, std::int32_t width,
                                                  std::int32_t height, float scale);

// Makes a mask: red, green and blue become 0 where they equal the key's bytes, elsewhere 255.
//
// The key's bytes are those that __cBitmap_set_pixel would write; its alpha is ignored.
// Alpha: ignored, becomes 255.
QUILLON_API void __cBitmap_color_key_mask(const quillon::cColor& key, std::uint8_t* pixels,
                                          std::int32_t count);

// Makes a mask of the alpha channel: red' = green' = blue' = alpha.
//
// Alpha: becomes 255.
QUILLON_API void __cBitmap_alpha_mask(std::uint8_t* pixels, std::int32_t count);

// Makes a mask of one channel: red' = green' = blue' = the byte of `channel`.
//
// Channels: 0 red, 1 green, 2 blue, 3 alpha; any other leaves the bitmap unchanged.
// Alpha: becomes 255.
QUILLON_API void __cBitmap_monochrome_saturate_by_channel(std::uint8_t channel,
                                                          std::uint8_t* pixels, std::int32_t count);

// Scales the brightness: b' = b * factor in 32 bits, clamped to 0 to 255 and truncated.
//
// A product of NaN yields 0.
// Alpha: untouched.
QUILLON_API void __cBitmap_multiply(float factor, std::uint8_t* pixels, std::int32_t count);

// Subtracts from the brightness: b' = max(b - amount, 0).
//
// Alpha: untouched.
QUILLON_API void __cBitmap_darken(std::uint8_t amount, std::uint8_t* pixels, std::int32_t count);

// Adds to the brightness: b' = min(b + amount, 255).
//
// Alpha: untouched.
QUILLON_API void __cBitmap_brighten(std::uint8_t amount, std::uint8_t* pixels, std::int32_t count);
}
