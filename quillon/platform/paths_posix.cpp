// SPDX-License-Identifier: MIT
#include "quillon/platform/paths.h"

#include <cstdlib>

namespace quillon::platform {

std::size_t wide_length(const std::string& text) {
    const std::size_t length = std::mbstowcs(nullptr, text.c_str(), 0);
    return length == static_cast<std::size_t>(-1) ? text.size() : length;
}

} // namespace quillon::platform
