#include "image_plugin.h"

#include "plugins/contracts/pictures.h"
#include "quillon/platform/loader.h"

#include <filesystem>
#include <fstream>
#include <memory>

namespace {

template <class Function>
Function* image_function(const char* name) {
    static void* const library = quillon::platform::load_library(IMAGE_FILE);
    return reinterpret_cast<Function*>(quillon::platform::find_function(library, name));
}

} // namespace

const quillon::Pictures& image_table() {
    static const quillon::Pictures table = [] {
        quillon::Pictures filled;
        image_function<void(void**)>("connect_graphics_interface")(
            reinterpret_cast<void**>(&filled));
        return filled;
    }();
    return table;
}

std::string image_error() {
    return image_table().last_error();
}

Loaded load_image(const std::string& file) {
    Loaded loaded;
    std::uint8_t untouched = 0;
    std::uint8_t* pixels = &untouched;
    image_table().load_bitmap(file.c_str(), &loaded.width, &loaded.height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    loaded.has_buffer = pixels != nullptr;
    if (loaded.has_buffer)
        loaded.rgba.assign(pixels, pixels + std::size_t{loaded.width} * loaded.height * 4);
    loaded.error = image_error();
    return loaded;
}

Loaded load_image_bytes(const Bytes& bytes) {
    // Some file systems wait for the disk when a file is truncated and written again.
    std::filesystem::remove("bytes");
    std::ofstream("bytes", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return load_image("bytes");
}
