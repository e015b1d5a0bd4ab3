// SPDX-License-Identifier: MIT
// Loading of shared libraries.
#pragma once

#include <string>

namespace quillon::platform {

// The extension of a loadable library's file name.
#if defined(_WIN32)
inline constexpr const char* LIBRARY_EXTENSION = ".dll";
#elif defined(__APPLE__)
inline constexpr const char* LIBRARY_EXTENSION = ".dylib";
#else
inline constexpr const char* LIBRARY_EXTENSION = ".so";
#endif

// A handle of the loaded library, for release_library; null if it does not load.
//
// A path of more than PATH_LIMIT characters does not load.
// A file does not load if it is not a regular file or ends before its segments do.
void* load_library(const std::string& path);

// The function that the library itself exports under `name`; null if there is none.
//
// A function of that name in a library that it depends on does not count.
// Null for a null handle.
void* find_function(void* library, const char* name);

// Null is allowed.
void release_library(void* library);

} // namespace quillon::platform
