#include "device.h"

#include "key_map.h"

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

} // namespace

bool Device::open() {
    SDL_SetMainReady();
    // The host's signal handlers and its choice of a window in focus are not the plug-in's
    // business.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    if (SDL_InitSubSystem(SUBSYSTEMS) != 0)
        return false;
    hasVideo = SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
    if (!hasVideo)
        fail(SDL_GetError());
    openPads.open_waiting();
    return true;
}

void Device::close() {
    openPads.close_all();
    if (window)
        SDL_DestroyWindow(window);
    if (hasVideo)
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_QuitSubSystem(SUBSYSTEMS);
    *this = {};
}

void Device::fail(const char* reason) {
    SDL_strlcpy(lastError, reason, sizeof lastError);
}

bool Device::open_window(const char* title, int width, int height) {
    if (window) {
        fail("the window is open already");
        return false;
    }
    window = SDL_CreateWindow(title, SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, width,
                              height, SDL_WINDOW_SHOWN);
    if (!window)
        fail(SDL_GetError());
    return window != nullptr;
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
