// SPDX-License-Identifier: MIT
// The image plug-in, loaded once, and what its entries returned.
#pragma once

#include "loaded_plugin.h"
#include "plugins/contracts/pictures.h"

#include <cstdint>
#include <fstream>
#include <memory>
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

inline const LoadedPlugin<quillon::Pictures>& image() {
    static const LoadedPlugin<quillon::Pictures> plugin(IMAGE_FILE, "connect_graphics_interface",
                                                        {});
    return plugin;
}

inline Loaded load_image(const std::string& file) {
    Loaded loaded;
    std::uint8_t untouched = 0;
    std::uint8_t* pixels = &untouched;
    image()->load_bitmap(file.c_str(), &loaded.width, &loaded.height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    loaded.has_buffer = pixels != nullptr;
    if (loaded.has_buffer)
        loaded.rgba.assign(pixels, pixels + std::size_t{loaded.width} * loaded.height * 4);
    loaded.error = image()->last_error();
    return loaded;
}

inline void write_file(const char* name, const Bytes& bytes) {
    // Some file systems wait for the disk when a file is truncated and written again.
    std::filesystem::remove(name);
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

inline Loaded load_image_bytes(const Bytes& bytes) {
    write_file("bytes", bytes);
    return load_image("bytes");
}
