// The image plug-in, loaded once, and what its entries gave.
#pragma once

#include "plugins/contracts/pictures.h"

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

struct Loaded {
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    Bytes rgba;
    bool has_buffer = true;
    std::string error;
};

const quillon::Pictures& image_table();
std::string image_error();

Loaded load_image(const std::string& file);
// Through the file "bytes" of the current directory.
Loaded load_image_bytes(const Bytes& bytes);
