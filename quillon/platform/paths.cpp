// SPDX-License-Identifier: MIT
#include "quillon/platform/paths.h"

#include <algorithm>
#include <cstdlib>

namespace quillon::platform {

std::string normalise_path(std::string path) {
    std::ranges::replace(path, '\\', '/');
    std::size_t length = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        path[length++] = path[i];
        if (path[i] == '/' && i + 1 < path.size() && path[i + 1] == '/')
            ++i;
    }
    path.resize(length);
    return path;
}

std::size_t wide_length(const std::string& text) {
    const std::size_t length = std::mbstowcs(nullptr, text.c_str(), 0);
    return length == static_cast<std::size_t>(-1) ? text.size() : length;
}

} // namespace quillon::platform
