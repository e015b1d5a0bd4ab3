// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The word of `known` that a mistyped `word` most likely meant: the one with the smallest edit
// distance, insertions, deletions and replacements counting one each (Wagner and Fischer, 1974).
//
// Empty if none is closer than half of the word's length.
std::string nearest_word(std::string_view word, const std::vector<std::string>& known);

} // namespace tool
