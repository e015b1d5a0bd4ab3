// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {

// A path of the contracts, which is UTF-8 whatever the system's own encoding is.
//
// Throws where the system's paths are UTF-16 and the text is not UTF-8.
inline std::filesystem::path utf8_path(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

} // namespace quillon
