// SPDX-License-Identifier: MIT
// Normalisation and length of paths.
#pragma once

#include <cstddef>
#include <string>

namespace quillon::platform {

// The most characters in a path that is passed to the platform.
inline constexpr std::size_t PATH_LIMIT = 260;

// Turns "\" into "/" and removes the second of two adjacent slashes, in one pass from the left.
//
// A run of three slashes becomes two: the pass does not go back.
std::string normalise_path(std::string path);

// The number of wide characters of `text`, which is UTF-8 on Windows and in the current locale
// elsewhere.
// The number of bytes if it is not valid text there.
std::size_t wide_length(const std::string& text);

} // namespace quillon::platform
