// Pictures, read and written by the graphics plug-in as plugins/contracts/pictures.h says.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace tool {

// 8-bit RGBA, top row first, no gaps.
struct Picture {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::unique_ptr<std::uint8_t[]> pixels;
};

// Opens the plug-ins of the default folder, once a process and before the first picture.
//
// Throws Failure if none of them serves GRAPHICS.
void open_graphics();

// Both throw Failure with the plug-in's reason.
Picture load_picture(const std::string& file);
void save_picture(const std::string& file, const Picture& picture);

} // namespace tool
