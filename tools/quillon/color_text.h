// SPDX-License-Identifier: MIT
// Colours as the commands read and print them.
#pragma once

#include "quillon/appearance/color.h"

#include <string>

namespace tool {

inline constexpr const char* COLOR_HELP =
    "A named colour, or red#green#blue#alpha# with 1 as the brightest";

// Why `text` is not a colour; empty if it is.
std::string color_fault(const std::string& text);

// The colour of a text without fault; alpha is 1 if it is missing.
quillon::cColor color_of(const std::string& text);

// Three digits of each component, in the form that color_of reads.
std::string text_of(const quillon::cColor& color);

} // namespace tool
