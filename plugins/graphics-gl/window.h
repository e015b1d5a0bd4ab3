// SPDX-License-Identifier: MIT
// The window, shown or hidden, and its OpenGL context.
#pragma once

#include "plugins/contracts/graphics.h"

#include <SDL.h>
#include <atomic>

namespace quillon::graphics_gl {

// SDL's video part, on a display or without one. False, with nothing left open, if there is
// neither.
bool open_video();
void close_video();

struct PixelSize {
    int width;
    int height;
};

class Window {
public:
    // Makes its context current. Throws std::runtime_error with the reason.
    explicit Window(const SurfaceRequest& request);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window();

    bool is_shown() const { return shown; }

    bool is_fullscreen() const;

    bool close_requested() const { return asked_to_close; }

    // Lets the system handle what it has for the window; events stay in SDL's queue.
    void pump() const;
    // In pixels, as the user left it.
    PixelSize size() const;
    void resize(PixelSize size);
    void set_fullscreen(bool fullscreen);
    // Shows what was drawn to the default framebuffer.
    void swap() const;

private:
    static int watch(void* self, SDL_Event* event);

    SDL_Window* window = nullptr;
    SDL_GLContext context = nullptr;
    bool shown;
    // Set from whatever thread reads the queue.
    std::atomic<bool> asked_to_close = false;
};

} // namespace quillon::graphics_gl
