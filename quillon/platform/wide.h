// SPDX-License-Identifier: MIT
// Wide text for Windows.
#pragma once

#include "quillon/platform/paths.h"

#include <array>
#include <cstdlib>
#include <string>

namespace quillon::platform {

using WidePath = std::array<wchar_t, PATH_LIMIT + 1>;

// Converts `text` under the current locale; false if it is not valid text there or does not fit.
inline bool widen(const std::string& text, WidePath& wide) {
    return std::mbstowcs(wide.data(), text.c_str(), wide.size()) < wide.size();
}

} // namespace quillon::platform
