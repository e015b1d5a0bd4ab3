// What happens to a path before it is handed to the platform.
#pragma once

#include <cstddef>
#include <string>

namespace quillon::platform {

// The most characters that a path handed to the platform may have.
inline constexpr std::size_t PATH_LIMIT = 260;

// Turns "\" into "/" and drops the second of two adjacent slashes, once, left to right.
//
// A run of three slashes becomes two: the pass does not look back.
std::string normalise_path(std::string path);

// The number of wide characters that `text` has in the current locale.
// Its number of bytes if it is no valid text there.
std::size_t wide_length(const std::string& text);

} // namespace quillon::platform
