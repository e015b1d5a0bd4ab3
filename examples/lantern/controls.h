// SPDX-License-Identifier: MIT
// What the player's devices mean: actions with display names that can be bound anew.
#pragma once

#include "simulation.h"

#include <string>

namespace lantern {

enum class Action {
    Left,
    Right,
    Up,
    Down,
    Boost,
    Brake,
    Start,
    Help,
    Pause,
    Fullscreen,
    Photo,
    Quit
};

// "boost=Left Shift" binds an action to an input by its display name, "photo=Left Control+P" to a
// chord of two. Throws std::runtime_error with a line for the user.
void bind(const std::string& text);

bool is_pressed(Action action);

// What all devices together ask of the ship now.
Input steering();

// The actions and their inputs, a line for each.
std::string help_text();

} // namespace lantern
