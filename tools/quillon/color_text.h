// Colours as the commands read and print them.
#pragma once

#include "quillon/appearance/color.h"

#include <string>

namespace tool {

inline constexpr const char* COLOR_HELP =
    "A named colour, or red#green#blue#alpha# with 1 as the brightest";

// Empty if `text` tells a colour, else why it does not.
std::string color_fault(const std::string& text);

// For a text without fault; alpha is 1 if it is not told.
quillon::cColor color_of(const std::string& text);

// Three digits of each component, as color_of reads it.
std::string text_of(const quillon::cColor& color);

} // namespace tool
