// The seven named gradients.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"

#include <array>
#include <string>
#include <string_view>

namespace quillon {

// A fixed formula that maps a position to a colour.
//
// A position outside 0 to 1 is not clamped, and gives components outside 0 to 1.
struct cGradient {
    std::string name;
    cColor (*function)(const float& t);
};

// What __nsGradient_gradient_table knows, in table order.
constexpr std::array<std::string_view, 7> GRADIENT_NAMES{"Fade", "Monochrome", "Health", "Mana",
                                                         "Skin", "Flame",      "Hue"};

} // namespace quillon

// The named gradient, or null for a name that none of the seven bears; letter case does not matter.
//
// A name is compared by its name_hash, with its first letter made a capital and the rest small.
// The gradient is the library's and lives as long as it.
extern "C" QUILLON_API const quillon::cGradient*
__nsGradient_gradient_table(const std::string& name);
