// SPDX-License-Identifier: MIT
#include "device.h"

#include "key_map.h"
#include "residence.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace quillon::input_sdl {

namespace {

// What the plug-in uses of SDL apart from the display, which may be missing.
constexpr Uint32 SUBSYSTEMS = SDL_INIT_EVENTS | SDL_INIT_GAMECONTROLLER;

// Drivers that SDL falls back on without a display: their windows get no keys and no mouse.
constexpr std::string_view BLIND_DRIVERS[] = {"dummy", "offscreen"};

std::int16_t mouse_code(Uint8 button) {
    switch (button) {
    case SDL_BUTTON_LEFT:
        return LEFT_MOUSE;
    case SDL_BUTTON_RIGHT:
        return RIGHT_MOUSE;
    case SDL_BUTTON_MIDDLE:
        return MIDDLE_MOUSE;
    default:
        return NO_INPUT;
    }
}

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

} // namespace

bool Device::open() {
    keep_sdl_loaded();
    SDL_SetMainReady();
    // The host's signal handlers and its choice of a window in focus are not the plug-in's
    // business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    if (SDL_InitSubSystem(SUBSYSTEMS) != 0)
        return fail(SDL_GetError());
    feed.start();
    has_display = open_display();
    open_pads.open_waiting();
    return true;
}

bool Device::open_display() {
    skip_wayland_without_its_folder();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return fail(SDL_GetError());
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    if (std::ranges::find(BLIND_DRIVERS, driver) == std::end(BLIND_DRIVERS))
        return true;
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    return fail("there is no display");
}

void Device::close() {
    feed.stop();
    open_pads.close_all();
    window.close();
    if (has_display)
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_QuitSubSystem(SUBSYSTEMS);
}

// Keeps the reason; the result is for callers to return.
bool Device::fail(const char* reason) {
    SDL_strlcpy(error, reason, sizeof error);
    return false;
}

bool Device::open_window(const char* title, int width, int height) {
    if (!has_display)
        return false;
    if (window.is_open())
        return fail("the window is open already");
    fail("");
    if (SDL_GetKeyboardFocus() != nullptr)
        return true;
    return window.open(title, width, height) || fail(SDL_GetError());
}

void Device::update() {
    digital_states.begin_update(static_cast<double>(SDL_GetTicks64()) * 0.001);
    // A notch of the wheel is down for the one update that saw it.
    digital_states.set(MOUSE_WHEEL_UP, false);
    digital_states.set(MOUSE_WHEEL_DOWN, false);
    analog_states.begin_update();
    analog_states.set(MOUSE_X, 0);
    analog_states.set(MOUSE_Y, 0);

    SDL_PumpEvents();
    if (!feed.collect(events))
        digital_states.release_all();
    for (const SDL_Event& event : events)
        handle(event);
    EventFeed::drop_unread();
    focused = SDL_GetKeyboardFocus() != nullptr;
    open_pads.read_axes(digital_states, analog_states);
    digital_states.end_update();
}

void Device::handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_QUIT:
        quit = true;
        return;
    case SDL_WINDOWEVENT:
        quit |= event.window.event == SDL_WINDOWEVENT_CLOSE;
        return window.handle(event.window);
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        return set_digital(KEY_CODES[event.key.keysym.scancode], event.key.state == SDL_PRESSED);
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        return set_digital(mouse_code(event.button.button), event.button.state == SDL_PRESSED);
    case SDL_MOUSEWHEEL:
        if (event.wheel.y != 0)
            digital_states.set(event.wheel.y > 0 ? MOUSE_WHEEL_UP : MOUSE_WHEEL_DOWN, true);
        return;
    case SDL_MOUSEMOTION:
        analog_states.add(MOUSE_X, static_cast<float>(event.motion.xrel));
        analog_states.add(MOUSE_Y, static_cast<float>(event.motion.yrel));
        return;
    default:
        open_pads.handle(event, digital_states, analog_states);
    }
}

void Device::set_digital(std::int16_t code, bool down) {
    if (code != NO_INPUT)
        digital_states.set(code, down);
}

} // namespace quillon::input_sdl
