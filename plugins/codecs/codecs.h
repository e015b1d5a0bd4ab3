// What the image plug-in knows of picture files: one reader and one writer per format.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace image {

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
// Throws std::runtime_error for a size that the limits of image.h rule out.
Picture make_picture(std::uint32_t width, std::uint32_t height);

// The picture in a file's bytes; throws std::runtime_error with the reason for any that is not
// whole.
Picture read_png(std::span<const std::uint8_t> file);
Picture read_jpeg(std::span<const std::uint8_t> file);

// Writes to an open stream; throws std::runtime_error with the reason.
void write_png(const PictureView& picture, std::FILE* stream);
void write_jpeg(const PictureView& picture, std::FILE* stream);

} // namespace image
