// SPDX-License-Identifier: MIT
#include "window.h"

#include <epoxy/gl.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon::graphics_gl {
namespace {

// The Wayland client library complains on standard error, past SDL, where it has no folder to look
// for a display in. A driver that the user chose by SDL's own variable is tried all the same.
void skip_wayland_without_its_folder() {
    if (SDL_getenv("XDG_RUNTIME_DIR") != nullptr)
        return;
    std::string drivers;
    for (int i = 0; i < SDL_GetNumVideoDrivers(); ++i)
        if (const std::string driver = SDL_GetVideoDriver(i); driver != "wayland")
            drivers += (drivers.empty() ? "" : ",") + driver;
    SDL_SetHint(SDL_HINT_VIDEODRIVER, drivers.c_str());
}

bool has_display() {
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    return driver != "offscreen" && driver != "dummy";
}

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + SDL_GetError());
}

void choose_context() {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_FLAGS, SDL_GL_CONTEXT_FORWARD_COMPATIBLE_FLAG);
    // Frames are drawn elsewhere and copied, so the window needs neither depth nor samples.
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLEBUFFERS, 0);
}

Uint32 fullscreen_flag(bool fullscreen) {
    return fullscreen ? Uint32{SDL_WINDOW_FULLSCREEN_DESKTOP} : 0U;
}

Uint32 window_flags(const SurfaceRequest& request) {
    if (request.offscreen)
        return SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN;
    return SDL_WINDOW_OPENGL | SDL_WINDOW_SHOWN | SDL_WINDOW_RESIZABLE |
           fullscreen_flag(request.fullscreen);
}

} // namespace

bool open_video() {
    SDL_SetMainReady();
    // The host's signal handlers are not the plug-in's business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    skip_wayland_without_its_folder();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return false;
    if (SDL_GL_LoadLibrary(nullptr) == 0)
        return true;
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    return false;
}

void close_video() {
    SDL_GL_UnloadLibrary();
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

Window::Window(const SurfaceRequest& request) : shown(!request.offscreen) {
    if (shown && !has_display())
        throw std::runtime_error("there is no display for a window; ask for an offscreen surface");
    choose_context();
    window = SDL_CreateWindow(request.title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                              request.width, request.height, window_flags(request));
    if (window == nullptr)
        fail("cannot open a window");
    context = SDL_GL_CreateContext(window);
    if (context == nullptr) {
        SDL_DestroyWindow(window);
        fail("the driver has no OpenGL 3.3");
    }
    SDL_GL_SetSwapInterval(shown && request.wait_for_display ? 1 : 0);
    SDL_AddEventWatch(watch, this);
}

Window::~Window() {
    SDL_DelEventWatch(watch, this);
    SDL_GL_DeleteContext(context);
    SDL_DestroyWindow(window);
}

int Window::watch(void* self, SDL_Event* event) {
    auto& window = *static_cast<Window*>(self);
    const bool is_closed = event->type == SDL_WINDOWEVENT &&
                           event->window.event == SDL_WINDOWEVENT_CLOSE &&
                           event->window.windowID == SDL_GetWindowID(window.window);
    if (is_closed || event->type == SDL_QUIT)
        window.asked_to_close = true;
    return 0;
}

bool Window::is_fullscreen() const {
    return (SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) ==
           SDL_WINDOW_FULLSCREEN_DESKTOP;
}

void Window::pump() const {
    if (shown)
        SDL_PumpEvents();
}

PixelSize Window::size() const {
    PixelSize size{};
    SDL_GL_GetDrawableSize(window, &size.width, &size.height);
    return size;
}

void Window::resize(PixelSize size) {
    SDL_SetWindowSize(window, size.width, size.height);
}

void Window::set_fullscreen(bool fullscreen) {
    if (SDL_SetWindowFullscreen(window, fullscreen_flag(fullscreen)) != 0)
        fail("cannot change between window and full screen");
}

void Window::swap() const {
    SDL_GL_SwapWindow(window);
}

} // namespace quillon::graphics_gl
