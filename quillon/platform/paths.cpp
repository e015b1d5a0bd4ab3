// SPDX-License-Identifier: MIT
#include "quillon/platform/paths.h"

#include <algorithm>

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

} // namespace quillon::platform
