// SPDX-License-Identifier: MIT
// Bitmaps: storage, pixels and image files over a pixel buffer that the caller holds.
//
// A pixel buffer has four bytes a pixel, red, green, blue, alpha, without gaps or header:
// width * height * 4 bytes.
// The pixel in column x of row y has index y * width + x.
// Whether row 0 is the top is agreed between the host and the graphics plug-in.
// No index or size is checked: the buffer does not record its size.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"

#include <cstdint>
#include <string>

extern "C" {

// Allocates a bitmap of opaque black pixels.
//
// The caller owns the block and frees it with delete[].
// A width or height of 0 or less makes an empty block.
// If the allocation throws, `pixels` is unchanged.
QUILLON_API void __cBitmap_init(std::int16_t width, std::int16_t height, std::uint8_t*& pixels);

// Has the graphics plug-in read an image file; the three pointers reach it unchanged.
//
// What they point to, and how a failure shows, is agreed between the host and the plug-in.
// Without a connected graphics plug-in nothing is read or written.
QUILLON_API void __cBitmap_load(std::string name, void* width, void* height, void* pixels);

// Has the graphics plug-in write an image file, and returns its answer.
//
// False without a connected graphics plug-in.
QUILLON_API bool __cBitmap_save(std::string name, std::uint16_t width, std::uint16_t height,
                                std::uint8_t* pixels);

// Reads a pixel as a colour, alpha included: byte / 255, rounded to 32 bits.
QUILLON_API void __cBitmap_get_pixel(quillon::cColor& out, const std::uint8_t* pixels,
                                     std::int32_t index);

// Writes a colour to a pixel, alpha included: component * 255, truncated, low 8 bits.
//
// A component outside 0 to 1 wraps. The byte is 0 for NaN and for a product that no 32-bit integer
// can represent.
QUILLON_API void __cBitmap_set_pixel(const quillon::cColor& color, std::uint8_t* pixels,
                                     std::int32_t index);

// Does what __cBitmap_set_pixel does to the pixels 0 to count - 1; a count of 0 or less, nothing.
QUILLON_API void __cBitmap_set_to_color(const quillon::cColor& color, std::uint8_t* pixels,
                                        std::int32_t count);

// Averages red, green and blue; the alpha of the pixels is ignored, that of `out` becomes 1.
//
// Per channel: sum over rows of (row sum / width, an integer that drops its remainder) / height,
// the running sum rounded to 32 bits after each row, then / 255.
// Row sums have 32 bits and wrap beyond 8,421,504 columns of white.
// Opaque black for a width or height of 0 or less.
QUILLON_API void __cBitmap_get_average_color(quillon::cColor& out, const std::uint8_t* pixels,
                                             std::int32_t width, std::int32_t height);
}
