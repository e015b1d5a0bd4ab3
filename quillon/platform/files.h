// SPDX-License-Identifier: MIT
// Queries on files by path, and opening them.
//
// Paths are UTF-8 on Windows and whatever bytes the system takes elsewhere.
#pragma once

#include <cstdio>
#include <string>

namespace quillon::platform {

// True for files and folders alike.
bool path_exists(const char* path);

// False for a folder, a pipe or a socket, whose contents have no definite length; true for all else
// and for a path that does not exist.
bool can_have_a_length(const char* path);

bool is_folder(const char* path);

// True if both paths name the same existing file.
bool is_same_file(const char* a, const char* b);

// As std::fopen.
std::FILE* open_file(const char* path, const char* mode);

// Creates one folder; true on success.
//
// Its parent must exist, and it must not.
bool create_folder(const std::string& path);

} // namespace quillon::platform
