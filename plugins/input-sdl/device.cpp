#include "device.h"

#include "key_map.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace quillon::input_sdl {

namespace {

// The parts of SDL's queue that the plug-in takes; text and window events stay with the host.
constexpr SDL_EventType TAKEN_EVENTS[][2] = {
    {SDL_KEYDOWN, SDL_KEYUP},
    {SDL_MOUSEMOTION, SDL_MOUSEWHEEL},
    {SDL_JOYAXISMOTION, SDL_JOYBATTERYUPDATED},
    {SDL_CONTROLLERAXISMOTION, SDL_CONTROLLERSENSORUPDATE},
};

// What the plug-in uses of SDL apart from the display, which may be missing.
constexpr Uint32 SUBSYSTEMS = SDL_INIT_EVENTS | SDL_INIT_GAMECONTROLLER;

// What SDL falls back on where there is no display: their windows get no keys and no mouse.
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
    SDL_SetMainReady();
    // The host's signal handlers and its choice of a window in focus are not the plug-in's
    // business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    if (SDL_InitSubSystem(SUBSYSTEMS) != 0)
        return false;
    hasDisplay = open_display();
    openPads.open_waiting();
    return true;
}

bool Device::open_display() {
    skip_wayland_without_its_folder();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return fail(SDL_GetError());
    const std::string_view driver = SDL_GetCurrentVideoDriver();
    if (std::find(std::begin(BLIND_DRIVERS), std::end(BLIND_DRIVERS), driver) ==
        std::end(BLIND_DRIVERS))
        return true;
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    return fail("there is no display");
}

void Device::close() {
    openPads.close_all();
    if (window)
        SDL_DestroyWindow(window);
    if (hasDisplay)
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_QuitSubSystem(SUBSYSTEMS);
    *this = {};
}

// Keeps the reason; the result is for callers to return.
bool Device::fail(const char* reason) {
    SDL_strlcpy(lastError, reason, sizeof lastError);
    return false;
}

bool Device::open_window(const char* title, int width, int height) {
    if (!hasDisplay)
        return false;
    if (window)
        return fail("the window is open already");
    window = SDL_CreateWindow(title, SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, width,
                              height, SDL_WINDOW_SHOWN);
    return window ? true : fail(SDL_GetError());
}

void Device::update() {
    digitalStates.begin_update(static_cast<double>(SDL_GetTicks64()) * 0.001);
    // A notch of the wheel is down for the one update that saw it.
    digitalStates.set(MOUSE_WHEEL_UP, false);
    digitalStates.set(MOUSE_WHEEL_DOWN, false);
    analogStates.begin_update();
    analogStates.set(MOUSE_X, 0);
    analogStates.set(MOUSE_Y, 0);

    SDL_PumpEvents();
    SDL_Event event;
    for (const auto& range : TAKEN_EVENTS)
        while (SDL_PeepEvents(&event, 1, SDL_GETEVENT, range[0], range[1]) > 0)
            handle(event);
    if (window)
        serve_window();
    openPads.read_axes(digitalStates, analogStates);
    digitalStates.end_update();
}

void Device::handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP: {
        const std::int16_t code = KEY_CODES[event.key.keysym.scancode];
        if (code != NO_INPUT)
            digitalStates.set(code, event.key.state == SDL_PRESSED);
        return;
    }
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: {
        const std::int16_t code = mouse_code(event.button.button);
        if (code != NO_INPUT)
            digitalStates.set(code, event.button.state == SDL_PRESSED);
        return;
    }
    case SDL_MOUSEWHEEL:
        if (event.wheel.y != 0)
            digitalStates.set(event.wheel.y > 0 ? MOUSE_WHEEL_UP : MOUSE_WHEEL_DOWN, true);
        return;
    case SDL_MOUSEMOTION:
        analogStates.add(MOUSE_X, static_cast<float>(event.motion.xrel));
        analogStates.add(MOUSE_Y, static_cast<float>(event.motion.yrel));
        return;
    default:
        openPads.handle(event, digitalStates, analogStates);
    }
}

// Nobody else reads the queue of a host that shows no window of its own, so it is emptied here.
void Device::serve_window() {
    SDL_Event event;
    while (SDL_PollEvent(&event) > 0) {
        if (event.type == SDL_QUIT)
            quitRequested = true;
        if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_EXPOSED)
            SDL_UpdateWindowSurface(window);
    }
}

} // namespace quillon::input_sdl
