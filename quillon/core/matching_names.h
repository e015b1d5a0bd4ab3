// SPDX-License-Identifier: MIT
// The listing of one folder, for the library itself; file_list.h describes filters.
#pragma once

#include <string>
#include <vector>

namespace quillon {

// The names in `folder` that `filter` selects, sorted bytewise.
std::vector<std::string> matching_names(const char* folder, const char* filter);

} // namespace quillon
