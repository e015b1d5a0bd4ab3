// SPDX-License-Identifier: MIT
// Texts for values that have none. Each unit that includes them constructs its own at load.
#pragma once

#include <string>

namespace quillon {

// Texts for nothing.
const std::string STRING_NONE = "NONE";
const std::string STRING_NULL = "NULL";

} // namespace quillon
