// SPDX-License-Identifier: MIT
#include "quillon/platform/files.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quillon::platform {
namespace {

// All zero if `path` does not exist.
struct stat status_of(const char* path) {
    struct stat status {};

    if (stat(path, &status) != 0)
        status = {};
    return status;
}

} // namespace

bool path_exists(const char* path) {
    return access(path, F_OK) == 0;
}

bool can_have_a_length(const char* path) {
    const auto mode = status_of(path).st_mode;
    return !S_ISDIR(mode) && !S_ISFIFO(mode) && !S_ISSOCK(mode);
}

bool is_folder(const char* path) {
    return S_ISDIR(status_of(path).st_mode);
}

bool is_same_file(const char* a, const char* b) {
    const auto first = status_of(a);
    const auto second = status_of(b);
    return first.st_mode != 0 && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::FILE* open_file(const char* path, const char* mode) {
    return std::fopen(path, mode);
}

bool create_folder(const std::string& path) {
    return mkdir(path.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0;
}

} // namespace quillon::platform
