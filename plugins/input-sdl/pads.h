// SPDX-License-Identifier: MIT
// Up to four pads, and the codes of their buttons, axes and hats.
#pragma once

#include "states.h"

#include <SDL.h>

#include <array>

namespace quillon::input_sdl {

// A pad keeps its number while it is plugged in; a freed number goes to the next pad that waits.
//
// A pad that SDL knows has the buttons, sticks and directional pad of the standard layout, so that
// a binding means the same on each; any other has its own first 16 buttons, 4 axes and 2 hats.
class Pads {
public:
    // Numbers the pads that are plugged in and have no number yet, as far as numbers are free.
    void open_waiting();
    void close_all();

    void handle(const SDL_Event& event, DigitalStates& digital, AnalogStates& analog);

    // Reads the axes of all pads, with the zones and triggers that depend on them.
    void read_axes(DigitalStates& digital, AnalogStates& analog) const;

    const char* name(std::uint16_t pad) const;
    bool rumble(std::uint16_t pad, float slow, float fast, float seconds) const;

private:
    struct Pad {
        SDL_Joystick* joystick = nullptr;
        SDL_GameController* controller = nullptr; // the same device, if SDL knows its layout
    };

    // The number of the pad with that id, or -1.
    int find(SDL_JoystickID id) const;

    bool is_open(std::uint16_t pad) const {
        return pad < PAD_COUNT && pads[pad].joystick != nullptr;
    }

    static void close(Pad& pad);
    void unplug(SDL_JoystickID id, DigitalStates& digital, AnalogStates& analog);
    void set_raw_button(const SDL_JoyButtonEvent& event, DigitalStates& digital) const;
    void set_raw_hat(const SDL_JoyHatEvent& event, DigitalStates& digital) const;
    void set_button(const SDL_ControllerButtonEvent& event, DigitalStates& digital) const;

    std::array<Pad, PAD_COUNT> pads{};
};

} // namespace quillon::input_sdl
