// SPDX-License-Identifier: MIT
// The seven named gradients.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"

#include <array>
#include <string>
#include <string_view>

namespace quillon {

// A named formula that maps a position to a colour.
//
// A position is not clamped: outside 0 to 1 it yields components outside 0 to 1.
struct cGradient {
    std::string name;                   // as in GRADIENT_NAMES
    cColor (*function)(const float& t); // the colour at position t
};

// The names that __nsGradient_gradient_table knows, in table order.
constexpr std::array<std::string_view, 7> GRADIENT_NAMES{"Fade", "Monochrome", "Health", "Mana",
                                                         "Skin", "Flame",      "Hue"};

} // namespace quillon

// Returns the named gradient, or null if no gradient has that name; letter case is ignored.
//
// Names are compared by their name_hash, with a capital first letter and the rest in lower case.
// The gradient belongs to the library and lives as long as it.
extern "C" QUILLON_API const quillon::cGradient*
__nsGradient_gradient_table(const std::string& name);
