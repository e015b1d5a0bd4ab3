// Picture files of every kind, made for the tests; a failure to make one ends the program.
#pragma once

#include "image_plugin.h"

#include <functional>

#include <cstdio>
#include <jpeglib.h>
#include <png.h>

struct PngKind {
    std::uint32_t width;
    std::uint32_t height;
    int color_type;
    int bit_depth;
    bool interlaced;
};

// `rows` holds one byte per sample, or two with the high one first if the depth is 16. Without rows
// the file ends behind its header.
Bytes png_file(const PngKind& kind, const Bytes& rows,
               const std::function<void(png_structp, png_infop)>& add_chunks = {});

// A flat picture of one colour; `samples` has a byte per channel.
Bytes jpeg_file(std::uint32_t width, std::uint32_t height, J_COLOR_SPACE space,
                const Bytes& samples,
                const std::function<void(jpeg_compress_struct&)>& configure = {});
