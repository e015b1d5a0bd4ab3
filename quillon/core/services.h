// SPDX-License-Identifier: MIT
// The five modules that a plug-in can serve, in the order in which they are offered.
#pragma once

#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"

#include <cstddef>

namespace quillon {

struct Service {
    const char* keyword;
    const char* connect_entry_point;
    std::size_t entry_count;
    void**& (*interface)();
};

inline constexpr Service SERVICES[] = {
    {"GRAPHICS", "connect_graphics_interface", ENTRY_COUNT<GraphicsTable>,
     []() -> void**& { return __mGraphics_instance()->interface; }},
    {"INPUT", "connect_input_interface", ENTRY_COUNT<InputTable>,
     []() -> void**& { return __mInput_instance()->interface; }},
    {"SYSTEM", "connect_system_interface", ENTRY_COUNT<SystemTable>,
     []() -> void**& { return __mSystem_instance()->interface; }},
    {"NET", "connect_network_interface", ENTRY_COUNT<NetworkTable>,
     []() -> void**& { return __mNetwork_instance()->interface; }},
    {"AUDIO", "connect_sound_interface", ENTRY_COUNT<AudioTable>,
     []() -> void**& { return __mAudio_instance()->interface; }},
};

} // namespace quillon
