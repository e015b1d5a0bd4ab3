// What the platform knows of files by their names.
#pragma once

#include <string>

namespace quillon::platform {

// True for files and folders alike.
bool path_exists(const char* path);

// True if what stands at `path` has contents of a definite length, or if nothing stands there: not
// for a folder, a pipe or a socket.
bool can_have_a_length(const char* path);

bool is_folder(const char* path);

// True if both paths lead to one existing file.
bool is_same_file(const char* a, const char* b);

// Makes one folder; its parent must exist, and it must not.
bool create_folder(const std::string& path);

} // namespace quillon::platform
