// SPDX-License-Identifier: MIT
// The key of the keyboard for each code.
//
// By position: a code is one physical key, named as on a US keyboard. So every code has exactly one
// key on every keyboard, whatever the layout (the eleven punctuation codes are the keys of a US
// keyboard and could not be reached otherwise), and a binding stays under the same finger when the
// user switches layouts. What the user's own layout prints on a key is `key_label`.
#pragma once

#include "quillon/input/names.h"

#include <SDL.h>

#include <array>
#include <string_view>

namespace quillon::input_sdl {

// Keys whose codes and scancodes both ascend by one from the named key on.
struct KeyRun {
    std::string_view name;
    SDL_Scancode scancode;
    int count = 1;
};

inline constexpr KeyRun KEY_RUNS[] = {
    {"Escape", SDL_SCANCODE_ESCAPE},
    {"Tab", SDL_SCANCODE_TAB},
    {"Backspace", SDL_SCANCODE_BACKSPACE},
    {"Enter", SDL_SCANCODE_RETURN},
    {"Space", SDL_SCANCODE_SPACE},
    {"Insert", SDL_SCANCODE_INSERT},
    {"Delete", SDL_SCANCODE_DELETE},
    {"Home", SDL_SCANCODE_HOME},
    {"End", SDL_SCANCODE_END},
    {"Page Up", SDL_SCANCODE_PAGEUP},
    {"Page Down", SDL_SCANCODE_PAGEDOWN},
    {"Up", SDL_SCANCODE_UP},
    {"Down", SDL_SCANCODE_DOWN},
    {"Left", SDL_SCANCODE_LEFT},
    {"Right", SDL_SCANCODE_RIGHT},
    {"A", SDL_SCANCODE_A, 26},
    {"0", SDL_SCANCODE_0},
    {"1", SDL_SCANCODE_1, 9},
    {"F1", SDL_SCANCODE_F1, 12},
    {"Keypad 0", SDL_SCANCODE_KP_0},
    {"Keypad 1", SDL_SCANCODE_KP_1, 9},
    {"Keypad .", SDL_SCANCODE_KP_PERIOD},
    {"Keypad /", SDL_SCANCODE_KP_DIVIDE},
    {"Keypad *", SDL_SCANCODE_KP_MULTIPLY},
    {"Keypad -", SDL_SCANCODE_KP_MINUS},
    {"Keypad +", SDL_SCANCODE_KP_PLUS},
    {"Keypad Enter", SDL_SCANCODE_KP_ENTER},
    {"Num Lock", SDL_SCANCODE_NUMLOCKCLEAR},
    {"Caps Lock", SDL_SCANCODE_CAPSLOCK},
    {"Scroll Lock", SDL_SCANCODE_SCROLLLOCK},
    {"Left Shift", SDL_SCANCODE_LSHIFT},
    {"Right Shift", SDL_SCANCODE_RSHIFT},
    {"Left Control", SDL_SCANCODE_LCTRL},
    {"Right Control", SDL_SCANCODE_RCTRL},
    {"Left Alt", SDL_SCANCODE_LALT},
    {"Right Alt", SDL_SCANCODE_RALT},
    {"~", SDL_SCANCODE_GRAVE},
    {"-", SDL_SCANCODE_MINUS},
    {"+", SDL_SCANCODE_EQUALS},
    {"[", SDL_SCANCODE_LEFTBRACKET},
    {"]", SDL_SCANCODE_RIGHTBRACKET},
    {"\\", SDL_SCANCODE_BACKSLASH},
    {":", SDL_SCANCODE_SEMICOLON},
    {"\"", SDL_SCANCODE_APOSTROPHE},
    {"<", SDL_SCANCODE_COMMA},
    {">", SDL_SCANCODE_PERIOD},
    {"?", SDL_SCANCODE_SLASH},
    {"Print Screen", SDL_SCANCODE_PRINTSCREEN},
    {"Pause", SDL_SCANCODE_PAUSE},
};

// The scancode of each keyboard code; ANY_KEY has none.
inline constexpr auto KEY_SCANCODES = [] {
    std::array<SDL_Scancode, ANY_MOUSE> scancodes{};
    for (const KeyRun& run : KEY_RUNS) {
        auto* const first = scancodes.data() + digital_code(run.name);
        for (int i = 0; i < run.count; ++i)
            first[i] = static_cast<SDL_Scancode>(run.scancode + i);
    }
    return scancodes;
}();

// The code of each scancode, or NO_INPUT.
inline constexpr auto KEY_CODES = [] {
    std::array<std::int16_t, SDL_NUM_SCANCODES> codes{};
    codes.fill(NO_INPUT);
    for (std::size_t code = ANY_KEY + 1; code < KEY_SCANCODES.size(); ++code)
        codes[KEY_SCANCODES[code]] = static_cast<std::int16_t>(code);
    return codes;
}();

static_assert(
    [] {
        for (std::size_t code = ANY_KEY + 1; code < KEY_SCANCODES.size(); ++code)
            if (KEY_CODES[KEY_SCANCODES[code]] != static_cast<std::int16_t>(code))
                return false;
        return KEY_CODES[SDL_SCANCODE_UNKNOWN] == NO_INPUT;
    }(),
    "every keyboard code is one key of its own");

} // namespace quillon::input_sdl
