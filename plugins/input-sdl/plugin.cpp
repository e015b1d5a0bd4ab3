// The plug-in "input-sdl": the input module's table, answered by one Device.
#include "device.h"
#include "input_sdl.h"
#include "key_map.h"

#include "quillon/core/plugin.h"

namespace {

using quillon::input_sdl::Device;
using quillon::input_sdl::DigitalStates;

constinit Device device;

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

bool initialize(quillon::DSPrefHashMap<void>* /*parameters*/) {
    return device.open();
}

void shutdown() {
    device.close();
}

QUILLON_PLUGIN_SERVES("input-sdl", "INPUT")
QUILLON_PLUGIN_NEEDS_NOTHING()

void connect_input_interface(void** table) {
    auto& input = quillon::as_table<quillon::InputTable>(table);
    input.key_down = answer<DigitalStates::Down>;
    input.key_press = answer<DigitalStates::Press>;
    input.key_hold_press = answer<DigitalStates::HoldPress>;
    input.key_release = answer<DigitalStates::Release>;
    input.key_double_click = answer<DigitalStates::DoubleClick>;
    input.axis_value = [](std::uint16_t code) { return device.analog().value(code); };
    input.axis_delta = [](std::uint16_t code) { return device.analog().delta(code); };

    quillon::as_table<quillon::input_sdl::Operations>(table) = {
        .update = [] { device.update(); },
        .open_window = [](const char* title, int width,
                          int height) { return device.open_window(title, width, height); },
        .quit_requested = [] { return device.quit_requested(); },
        .pad_name = [](std::uint16_t pad) { return device.pads().name(pad); },
        .key_label = key_label,
        .rumble = [](std::uint16_t pad, float slow, float fast,
                     float seconds) { return device.pads().rumble(pad, slow, fast, seconds); },
        .last_error = [] { return device.last_error(); },
    };
}
