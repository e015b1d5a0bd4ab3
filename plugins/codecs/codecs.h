// SPDX-License-Identifier: MIT
// One reader and one writer for each format of picture files.
#pragma once

#include "plugins/contracts/pictures.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace quillon::codecs {

// A file that promises more than its bytes can hold is cut short or a trap: deflate packs at most
// 1032 bytes into one, and a JPEG block of 64 pixels takes at least a bit (arithmetic coding:
// less).
inline constexpr std::uint32_t MAX_PNG_RATIO = 1032;
inline constexpr std::uint32_t MAX_JPEG_PIXELS_PER_BYTE = 4096;
// Each scan of a progressive JPEG costs a pass over the whole picture.
inline constexpr int MAX_JPEG_SCANS = 100;

// 8-bit RGBA, top row first, no gaps.
struct Picture {
    std::uint16_t width;
    std::uint16_t height;
    std::unique_ptr<std::uint8_t[]> pixels;
};

struct PictureView {
    std::uint16_t width;
    std::uint16_t height;
    const std::uint8_t* pixels;
};

// An unset picture of this size.
//
// Throws std::runtime_error for a size that the limits of pictures.h rule out.
Picture make_picture(std::uint32_t width, std::uint32_t height);

// The picture in a file's bytes; throws std::runtime_error with the reason for any that is not
// whole.
Picture read_png(std::span<const std::uint8_t> file);
Picture read_jpeg(std::span<const std::uint8_t> file);

// Writes to an open stream; throws std::runtime_error with the reason.
void write_png(const PictureView& picture, std::FILE* stream);
void write_jpeg(const PictureView& picture, std::FILE* stream);

// Allocates what libjpeg keeps for the calling thread.
void touch_jpeg();

} // namespace quillon::codecs
