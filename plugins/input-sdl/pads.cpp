// SPDX-License-Identifier: MIT
#include "pads.h"

#include "plugins/contracts/input.h"

#include <algorithm>

namespace quillon::input_sdl {

namespace {

// Buttons 1 to 16 of a pad with the standard layout; 7 and 8 are the triggers, which SDL has as
// axes.
constexpr SDL_GameControllerButton BUTTONS[PAD_BUTTONS] = {
    SDL_CONTROLLER_BUTTON_A,
    SDL_CONTROLLER_BUTTON_B,
    SDL_CONTROLLER_BUTTON_X,
    SDL_CONTROLLER_BUTTON_Y,
    SDL_CONTROLLER_BUTTON_LEFTSHOULDER,
    SDL_CONTROLLER_BUTTON_RIGHTSHOULDER,
    SDL_CONTROLLER_BUTTON_INVALID,
    SDL_CONTROLLER_BUTTON_INVALID,
    SDL_CONTROLLER_BUTTON_BACK,
    SDL_CONTROLLER_BUTTON_START,
    SDL_CONTROLLER_BUTTON_LEFTSTICK,
    SDL_CONTROLLER_BUTTON_RIGHTSTICK,
    SDL_CONTROLLER_BUTTON_GUIDE,
    SDL_CONTROLLER_BUTTON_MISC1,
    SDL_CONTROLLER_BUTTON_PADDLE1,
    SDL_CONTROLLER_BUTTON_PADDLE2,
};
constexpr int LEFT_TRIGGER = PAD_FIRST_BUTTON + 6;
constexpr int RIGHT_TRIGGER = PAD_FIRST_BUTTON + 7;

// Its directional pad is hat 1.
constexpr SDL_GameControllerButton DIRECTIONS[HAT_DIRECTIONS] = {
    SDL_CONTROLLER_BUTTON_DPAD_LEFT,
    SDL_CONTROLLER_BUTTON_DPAD_RIGHT,
    SDL_CONTROLLER_BUTTON_DPAD_UP,
    SDL_CONTROLLER_BUTTON_DPAD_DOWN,
};

// Its axes 1 to 4 are the two sticks.
constexpr SDL_GameControllerAxis STICKS[PAD_AXES] = {
    SDL_CONTROLLER_AXIS_LEFTX,
    SDL_CONTROLLER_AXIS_LEFTY,
    SDL_CONTROLLER_AXIS_RIGHTX,
    SDL_CONTROLLER_AXIS_RIGHTY,
};

constexpr float LONGEST_RUMBLE_SECONDS = 60;

constexpr Uint8 HAT_BITS[HAT_DIRECTIONS] = {SDL_HAT_LEFT, SDL_HAT_RIGHT, SDL_HAT_UP, SDL_HAT_DOWN};

// The pad-relative code of each of SDL's buttons, or NO_INPUT.
constexpr auto BUTTON_CODES = [] {
    std::array<std::int16_t, SDL_CONTROLLER_BUTTON_MAX> codes{};
    codes.fill(NO_INPUT);
    for (int i = 0; i < PAD_BUTTONS; ++i)
        if (BUTTONS[i] != SDL_CONTROLLER_BUTTON_INVALID)
            codes[BUTTONS[i]] = static_cast<std::int16_t>(PAD_FIRST_BUTTON + i);
    for (int i = 0; i < HAT_DIRECTIONS; ++i)
        codes[DIRECTIONS[i]] = static_cast<std::int16_t>(PAD_FIRST_DIRECTION + i);
    return codes;
}();

int first_code(int pad) {
    return FIRST_PAD_CODE + pad * PAD_CODES;
}

int first_axis(int pad) {
    return FIRST_PAD_AXIS + pad * PAD_AXES;
}

// Full travel is -1 to 1; SDL has one step more on the negative side.
float travel(Sint16 raw) {
    return std::max(static_cast<float>(raw) / SDL_JOYSTICK_AXIS_MAX, -1.0F);
}

// `value`, held to 0 to `limit`, in steps of which `scale` make 1.
template <typename Steps>
Steps scaled(float value, float limit, float scale) {
    return value > 0 ? static_cast<Steps>(std::min(value, limit) * scale) : Steps{0};
}

// Sets `code` while `distance` is in the zone that starts at `start`, and returns whether it is.
bool set_zone(DigitalStates& digital, int code, float distance, float start) {
    const bool inside = digital.answer(DigitalStates::DOWN, static_cast<std::uint16_t>(code));
    const bool stays = distance >= (inside ? start - AXIS_ZONE_SLACK : start);
    digital.set(code, stays);
    return stays;
}

void set_zones(DigitalStates& digital, int first_zone, float value) {
    const auto code = [&](AxisZone zone) { return first_zone + static_cast<int>(zone); };
    const bool minus = set_zone(digital, code(AxisZone::Minus), -value, AXIS_ZONE);
    const bool plus = set_zone(digital, code(AxisZone::Plus), value, AXIS_ZONE);
    set_zone(digital, code(AxisZone::FullMinus), -value, AXIS_FULL_ZONE);
    set_zone(digital, code(AxisZone::FullPlus), value, AXIS_FULL_ZONE);
    digital.set(code(AxisZone::Center), !minus && !plus);
}

void set_triggers(DigitalStates& digital, int pad_code, SDL_GameController* controller) {
    const auto read = [&](SDL_GameControllerAxis axis) {
        return travel(SDL_GameControllerGetAxis(controller, axis));
    };
    set_zone(digital, pad_code + LEFT_TRIGGER, read(SDL_CONTROLLER_AXIS_TRIGGERLEFT), AXIS_ZONE);
    set_zone(digital, pad_code + RIGHT_TRIGGER, read(SDL_CONTROLLER_AXIS_TRIGGERRIGHT), AXIS_ZONE);
}

} // namespace

int Pads::find(SDL_JoystickID id) const {
    for (int number = 0; number < PAD_COUNT; ++number)
        if (pads[number].joystick && SDL_JoystickInstanceID(pads[number].joystick) == id)
            return number;
    return -1;
}

void Pads::open_waiting() {
    for (int device = 0; device < SDL_NumJoysticks(); ++device) {
        if (find(SDL_JoystickGetDeviceInstanceID(device)) != -1)
            continue;
        const auto free = std::find_if(pads.begin(), pads.end(),
                                       [](const Pad& pad) { return pad.joystick == nullptr; });
        if (free == pads.end())
            return;
        free->joystick = SDL_JoystickOpen(device);
        free->controller = SDL_GameControllerOpen(device);
    }
}

void Pads::close(Pad& pad) {
    if (pad.controller)
        SDL_GameControllerClose(pad.controller);
    if (pad.joystick)
        SDL_JoystickClose(pad.joystick);
    pad = {};
}

void Pads::close_all() {
    for (Pad& pad : pads)
        close(pad);
}

// Whatever was down on the pad is released.
void Pads::unplug(SDL_JoystickID id, DigitalStates& digital, AnalogStates& analog) {
    const int number = find(id);
    if (number == -1)
        return;
    close(pads[number]);
    for (int code = 0; code < PAD_CODES; ++code)
        digital.set(first_code(number) + code, false);
    for (int axis = 0; axis < PAD_AXES; ++axis)
        analog.set(first_axis(number) + axis, 0);
}

void Pads::set_raw_button(const SDL_JoyButtonEvent& event, DigitalStates& digital) const {
    const int number = find(event.which);
    if (number == -1 || pads[number].controller || event.button >= PAD_BUTTONS)
        return;
    digital.set(first_code(number) + PAD_FIRST_BUTTON + event.button, event.state == SDL_PRESSED);
}

void Pads::set_raw_hat(const SDL_JoyHatEvent& event, DigitalStates& digital) const {
    const int number = find(event.which);
    if (number == -1 || pads[number].controller || event.hat >= PAD_HATS)
        return;
    const int hat = first_code(number) + PAD_FIRST_DIRECTION + event.hat * HAT_DIRECTIONS;
    for (int i = 0; i < HAT_DIRECTIONS; ++i)
        digital.set(hat + i, (event.value & HAT_BITS[i]) != 0);
}

void Pads::set_button(const SDL_ControllerButtonEvent& event, DigitalStates& digital) const {
    const int number = find(event.which);
    if (number == -1 || event.button >= BUTTON_CODES.size())
        return;
    const std::int16_t code = BUTTON_CODES[event.button];
    if (code != NO_INPUT)
        digital.set(first_code(number) + code, event.state == SDL_PRESSED);
}

void Pads::handle(const SDL_Event& event, DigitalStates& digital, AnalogStates& analog) {
    switch (event.type) {
    case SDL_JOYDEVICEADDED:
        return open_waiting();
    case SDL_JOYDEVICEREMOVED:
        unplug(event.jdevice.which, digital, analog);
        return open_waiting();
    case SDL_JOYBUTTONDOWN:
    case SDL_JOYBUTTONUP:
        return set_raw_button(event.jbutton, digital);
    case SDL_JOYHATMOTION:
        return set_raw_hat(event.jhat, digital);
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP:
        return set_button(event.cbutton, digital);
    default:
        return;
    }
}

void Pads::read_axes(DigitalStates& digital, AnalogStates& analog) const {
    for (int number = 0; number < PAD_COUNT; ++number) {
        const Pad& pad = pads[number];
        if (!pad.joystick)
            continue;
        for (int axis = 0; axis < PAD_AXES; ++axis) {
            const float value =
                travel(pad.controller ? SDL_GameControllerGetAxis(pad.controller, STICKS[axis])
                                      : SDL_JoystickGetAxis(pad.joystick, axis));
            analog.set(first_axis(number) + axis, value);
            set_zones(digital, first_code(number) + PAD_FIRST_ZONE + axis * AXIS_ZONES, value);
        }
        if (pad.controller)
            set_triggers(digital, first_code(number), pad.controller);
    }
}

const char* Pads::name(std::uint16_t pad) const {
    return is_open(pad) ? SDL_JoystickName(pads[pad].joystick) : nullptr;
}

bool Pads::rumble(std::uint16_t pad, float slow, float fast, float seconds) const {
    if (!is_open(pad))
        return false;
    return SDL_JoystickRumble(pads[pad].joystick, scaled<Uint16>(slow, 1, 0xFFFF),
                              scaled<Uint16>(fast, 1, 0xFFFF),
                              scaled<Uint32>(seconds, LONGEST_RUMBLE_SECONDS, 1000)) == 0;
}

} // namespace quillon::input_sdl
