// SPDX-License-Identifier: MIT
// Entries 15 and 16 of the graphics table, as plugins/contracts/pictures.h says.
#pragma once

#include "plugins/contracts/last_error.h"

#include <cstdint>

namespace quillon::codecs {

// For `initialize`: allocates what libjpeg keeps for each thread. The C library ends the process if
// it can't, so this is not left to the first picture.
void prepare();

void load_bitmap(LastError& error, const char* name, void* width, void* height, void* pixels);
bool save_bitmap(LastError& error, const char* name, std::uint16_t width, std::uint16_t height,
                 const std::uint8_t* pixels);

} // namespace quillon::codecs
