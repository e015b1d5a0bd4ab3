// Everything that the plug-in reads, moved on by one update a frame.
#pragma once

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
    bool open_window(const char* title, int width, int height);

    bool quit_requested() const { return quitRequested; }

    const char* last_error() const { return lastError; }

    const DigitalStates& digital() const { return digitalStates; }

    const AnalogStates& analog() const { return analogStates; }

    const Pads& pads() const { return openPads; }

private:
    void handle(const SDL_Event& event);
    void serve_window();
    bool open_display();
    bool fail(const char* reason);

    DigitalStates digitalStates;
    AnalogStates analogStates;
    Pads openPads;
    SDL_Window* window = nullptr;
    bool hasDisplay = false;
    bool quitRequested = false;
    char lastError[256] = "";
};

} // namespace quillon::input_sdl
