// Filters that change a pixel buffer in place (its layout: see bitmap.h).
//
// b is a byte of the pixel before, b' after. Counts are in pixels. A count, width or height of 0 or
// less does nothing, and nothing outside the counted pixels is read or written.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"

#include <cstdint>

extern "C" {

// Adds a colour through a round brush: a disc of full strength in a ring that falls off.
//
// Let d = dx^2 + dy^2 - radius^2 and limit = 4 * deviation^2, each square and d rounded to 32 bits.
// strength = 1 for d <= 0, gauss_near_zero_taylor7(d, deviation) for d < limit, else 0.
// b' = min(max(component * strength * 255 + b, 0), 255) truncated, summed in 64 bits and rounded to
// 32; where the strength is 0 the pixel is left alone.
// Alpha: added to like the other three.
// The centre may lie anywhere. A component of NaN gives 0. A radius of NaN paints nothing, a
// deviation of NaN the disc without its ring.
// Cost follows the pixels that the brush touches, not the size of the bitmap.
QUILLON_API void __cBitmap_gauss_brush(const quillon::cColor& color, std::uint8_t* pixels,
                                       std::int32_t column, std::int32_t row, std::int32_t width,
                                       std::int32_t height, const float& radius,
                                       const float& deviation);

// Turns a height map into the map of its normals; edges wrap, so what tiles still tiles.
//
// height = (alpha / 65536) * ((red + green + blue) / 3).
// gx sums the steps to the right over the three rows around the pixel, gy the steps downwards over
// the three columns. The two steps of the row above (gx) and of the left column (gy) count 1/4
// each, all others 1/8. normal = (-gx * scale, -gy * scale, 1), normalised; b' = min(max((component
// + 1) * 128, 0), 255) truncated, all in 64 bits. A component that is no number, as a scale of NaN
// makes it, gives 0. Alpha: becomes 255. Scratch: four rows of 64-bit floats. If their allocation
// throws, no pixel has changed.
QUILLON_API void __cBitmap_bump_map_to_normal_map(std::uint8_t* pixels, std::int32_t width,
                                                  std::int32_t height, float scale);

// Makes a mask: red, green and blue become 0 where they equal the key's bytes, elsewhere 255.
//
// The key's bytes are those that __cBitmap_set_pixel would write; its alpha plays no part.
// Alpha: ignored, becomes 255.
QUILLON_API void __cBitmap_color_key_mask(const quillon::cColor& key, std::uint8_t* pixels,
                                          std::int32_t count);

// Makes a mask of the alpha channel: red' = green' = blue' = alpha.
//
// Alpha: becomes 255.
QUILLON_API void __cBitmap_alpha_mask(std::uint8_t* pixels, std::int32_t count);

// Makes a mask of one channel: red' = green' = blue' = the byte of `channel`.
//
// Channels: 0 red, 1 green, 2 blue, 3 alpha; any other leaves the bitmap alone.
// Alpha: becomes 255.
QUILLON_API void __cBitmap_monochrome_saturate_by_channel(std::uint8_t channel,
                                                          std::uint8_t* pixels, std::int32_t count);

// Scales the brightness: b' = min(max(b * factor, 0), 255) truncated, the product in 32 bits.
//
// A product that is not a number gives 0.
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
