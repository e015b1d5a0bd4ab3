// SPDX-License-Identifier: MIT
// Keyboard, mouse and pads, read by one update a frame.
#pragma once

#include "event_feed.h"
#include "own_window.h"
#include "pads.h"
#include "states.h"

#include <SDL.h>

namespace quillon::input_sdl {

class Device {
public:
    // Pads can be read without a display; keys and the mouse cannot. False if not even pads can.
    bool open();
    void close();

    void update();
    // Opens none, and returns true, while another window of the program has the focus.
    bool open_window(const char* title, int width, int height);

    bool quit_requested() const { return quit; }

    bool has_focus() const { return focused; }

    const char* last_error() const { return error; }

    const DigitalStates& digital() const { return digital_states; }

    const AnalogStates& analog() const { return analog_states; }

    const Pads& pads() const { return open_pads; }

private:
    void handle(const SDL_Event& event);
    void set_digital(std::int16_t code, bool down);
    bool open_display();
    bool fail(const char* reason);

    EventFeed feed;
    std::vector<SDL_Event> events; // of the current update
    DigitalStates digital_states;
    AnalogStates analog_states;
    Pads open_pads;
    OwnWindow window;
    bool has_display = false;
    bool focused = false;
    bool quit = false;
    char error[256] = "";
};

} // namespace quillon::input_sdl
