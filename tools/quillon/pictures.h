// SPDX-License-Identifier: MIT
// Pictures, read and written by the graphics plug-in as plugins/contracts/pictures.h says.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tool {

// 8-bit RGBA, top row first, no gaps.
struct Picture {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::unique_ptr<std::uint8_t[]> pixels;
};

// Declares the option --plugins of a command over pictures, and the argument for the file that it
// writes, whose ending has to be one that is known.
void add_plugin_folder(CLI::App& app, std::string& folder);
CLI::Option* add_output(CLI::App& app, std::string& file, const std::string& help);

// Opens the plug-ins of `folder`, or without one the picture plug-in that came with this tool; once
// a process and before the first picture.
//
// Throws Failure if none of them serves GRAPHICS.
void open_graphics(const std::string& folder);

// Both throw Failure with the plug-in's reason.
Picture load_picture(const std::string& file);
void save_picture(const std::string& file, const Picture& picture);

} // namespace tool
