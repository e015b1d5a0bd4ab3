// SPDX-License-Identifier: MIT
// The plug-in "input-sdl": the input module's table, answered by one Device.
#include "device.h"
#include "key_map.h"

#include "plugins/contracts/input.h"

#include "quillon/core/plugin.h"

namespace {

using quillon::input_sdl::Device;
using quillon::input_sdl::DigitalStates;

Device device; // made at the load where a std::mutex cannot be constinit

template <DigitalStates::Question question>
bool answer(std::uint16_t code) {
    return device.digital().answer(question, code);
}

const char* key_label(std::uint16_t code) {
    using quillon::input_sdl::KEY_SCANCODES;
    if (code == quillon::ANY_KEY || code >= KEY_SCANCODES.size())
        return nullptr;
    return SDL_GetKeyName(SDL_GetKeyFromScancode(KEY_SCANCODES[code]));
}

} // namespace

bool initialize(quillon::DSPrefHashMap<void>* parameters) {
    return quillon::is_wanted(parameters, "INPUT", "input-sdl") && device.open();
}

void shutdown() {
    device.close();
}

QUILLON_PLUGIN_SERVES("input-sdl", "INPUT")
QUILLON_PLUGIN_NEEDS_NOTHING()

void connect_input_interface(void** table) {
    quillon::serve<quillon::Input>(
        table,
        {
            .last_error = [] { return device.last_error(); },
            .update = [] { device.update(); },
            .open_window = [](const char* title, int width,
                              int height) { return device.open_window(title, width, height); },
            .quit_requested = [] { return device.quit_requested(); },
            .has_focus = [] { return device.has_focus(); },
            .pad_name = [](std::uint16_t pad) { return device.pads().name(pad); },
            .key_label = key_label,
            .rumble = [](std::uint16_t pad, float slow, float fast,
                         float seconds) { return device.pads().rumble(pad, slow, fast, seconds); },
            .key_down = answer<DigitalStates::DOWN>,
            .key_press = answer<DigitalStates::PRESS>,
            .key_hold_press = answer<DigitalStates::HOLD_PRESS>,
            .key_release = answer<DigitalStates::RELEASE>,
            .key_double_click = answer<DigitalStates::DOUBLE_CLICK>,
            .axis_value = [](std::uint16_t code) { return device.analog().value(code); },
            .axis_delta = [](std::uint16_t code) { return device.analog().delta(code); },
        });
}
