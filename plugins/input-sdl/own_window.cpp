// SPDX-License-Identifier: MIT
#include "own_window.h"

namespace quillon::input_sdl {

bool OwnWindow::open(const char* title, int width, int height) {
    window = SDL_CreateWindow(title, SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, width,
                              height, SDL_WINDOW_SHOWN);
    if (window != nullptr)
        paint();
    return window != nullptr;
}

void OwnWindow::close() {
    if (window != nullptr)
        SDL_DestroyWindow(window);
    window = nullptr;
}

void OwnWindow::handle(const SDL_WindowEvent& event) {
    if (window == nullptr)
        return;
    const bool is_own = event.windowID == SDL_GetWindowID(window);
    if (is_own &&
        (event.event == SDL_WINDOWEVENT_EXPOSED || event.event == SDL_WINDOWEVENT_SIZE_CHANGED))
        paint();
    if (!is_own && event.event == SDL_WINDOWEVENT_FOCUS_GAINED)
        close();
}

void OwnWindow::paint() const {
    // A plain window needs no graphics driver, which SDL would load to copy the surface.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    SDL_Surface* const surface = SDL_GetWindowSurface(window);
    if (surface == nullptr)
        return;
    SDL_FillRect(surface, nullptr, SDL_MapRGB(surface->format, 28, 30, 36));
    SDL_UpdateWindowSurface(window);
}

} // namespace quillon::input_sdl
