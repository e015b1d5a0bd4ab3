// The image plug-in, loaded once, and what its entries gave.
#pragma once

#include "quillon/core/interfaces.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct Loaded {
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    std::vector<std::uint8_t> rgba;
    bool has_buffer = true;
    std::string error;
};

const quillon::GraphicsTable& image_table();
std::string image_error();

Loaded load_image(const std::string& file);
Loaded load_image_bytes(const std::vector<std::uint8_t>& bytes);

std::vector<std::uint8_t> bytes_of_file(const std::string& file);

// A name for a file in a folder that is removed when the program ends.
std::string scratch_file(const std::string& name);
