// SPDX-License-Identifier: MIT
// Bindings as a user writes them.
#pragma once

#include "quillon/input/analog.h"
#include "quillon/input/digital.h"

#include <string>
#include <variant>

namespace tool {

struct Binding {
    std::string text;
    std::variant<quillon::cInputDigital, quillon::cInputAnalog> input;
};

// The binding that `text` spells with display names, whose letter case is ignored: one input
// ("Space", "Mouse X"), or two digital ones joined by "+" or "And", "Or" or "Not" between blanks.
//
// Throws Failure, with the name that was most likely meant, for an unknown name.
Binding parse_binding(const std::string& text);

} // namespace tool
