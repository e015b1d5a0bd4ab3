// SPDX-License-Identifier: MIT
#include "color_text.h"

#include <cmath>
#include <iomanip>
#include <regex>
#include <sstream>

namespace tool {

using quillon::cColor;

namespace {

// Large exponents overflow.
bool is_finite(const cColor& color) {
    return std::isfinite(color.r) && std::isfinite(color.g) && std::isfinite(color.b) &&
           std::isfinite(color.a);
}

} // namespace

std::string color_fault(const std::string& text) {
    static const std::regex fields(R"(([-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?#){3,4})");
    if (__nsColor_color_table(text) != nullptr ||
        (std::regex_match(text, fields) && is_finite(color_of(text))))
        return "";
    return "'" + text +
           "' is no colour; 'quillon palette' lists the named ones, and others are "
           "red#green#blue#alpha#";
}

cColor color_of(const std::string& text) {
    if (const cColor* named = __nsColor_color_table(text))
        return *named;
    cColor color(0, 0, 0, 1);
    __nsColor_color_from_string(color, text.c_str());
    return color;
}

std::string text_of(const cColor& color) {
    std::ostringstream text;
    text << std::setprecision(3) << color.r << '#' << color.g << '#' << color.b << '#' << color.a
         << '#';
    return text.str();
}

} // namespace tool
