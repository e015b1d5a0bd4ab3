// SPDX-License-Identifier: MIT
// Serves GRAPHICS with picture files alone, for hosts that draw nothing.
#include "plugins/codecs/picture_files.h"
#include "plugins/contracts/pictures.h"
#include "quillon/core/plugin.h"

namespace {

constinit quillon::LastError last_error;

} // namespace

QUILLON_PLUGIN_SERVES("image", "GRAPHICS")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>* parameters) {
    return quillon::is_wanted(parameters, "GRAPHICS", "image") &&
           last_error.guard(quillon::codecs::prepare);
}

void shutdown() {}

void connect_graphics_interface(void** table) {
    using namespace quillon;
    serve(table, Pictures{
                     .last_error = [] { return last_error.text(); },
                     .load_bitmap =
                         [](const char* name, void* width, void* height, void* pixels) {
                             codecs::load_bitmap(last_error, name, width, height, pixels);
                         },
                     .save_bitmap =
                         [](const char* name, std::uint16_t width, std::uint16_t height,
                            std::uint8_t* pixels) {
                             return codecs::save_bitmap(last_error, name, width, height, pixels);
                         },
                 });
}
