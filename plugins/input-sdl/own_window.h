// SPDX-License-Identifier: MIT
// The window of a host that shows none: a plain surface that takes the keyboard and the mouse.
#pragma once

#include <SDL.h>

namespace quillon::input_sdl {

class OwnWindow {
public:
    // False if SDL opens none; SDL_GetError says why.
    bool open(const char* title, int width, int height);
    void close();

    bool is_open() const { return window != nullptr; }

    // Paints it where SDL asks for it, and closes it for another window that gets the focus.
    void handle(const SDL_WindowEvent& event);

private:
    void paint() const;

    SDL_Window* window = nullptr;
};

} // namespace quillon::input_sdl
