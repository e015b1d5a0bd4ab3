// SPDX-License-Identifier: MIT
#include "quillon/platform/files.h"

#include "quillon/platform/wide.h"

#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace quillon::platform {
namespace {

// All zero if `path` does not exist.
struct _stat64 status_of(const char* path) {
    struct _stat64 status {};

    if (_wstat64(widen(path).c_str(), &status) != 0)
        status = {};
    return status;
}

// False if the file at `path` cannot be identified.
bool identify(const char* path, BY_HANDLE_FILE_INFORMATION& identity) {
    const HANDLE file =
        CreateFileW(widen(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool known = GetFileInformationByHandle(file, &identity) != 0;
    CloseHandle(file);
    return known;
}

} // namespace

bool path_exists(const char* path) {
    return _waccess(widen(path).c_str(), 0) == 0;
}

bool can_have_a_length(const char* path) {
    return (status_of(path).st_mode & (_S_IFDIR | _S_IFIFO)) == 0;
}

bool is_folder(const char* path) {
    return (status_of(path).st_mode & _S_IFDIR) != 0;
}

bool is_same_file(const char* a, const char* b) {
    BY_HANDLE_FILE_INFORMATION first;
    BY_HANDLE_FILE_INFORMATION second;
    return identify(a, first) && identify(b, second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

std::FILE* open_file(const char* path, const char* mode) {
    return _wfopen(widen(path).c_str(), widen(mode).c_str());
}

bool create_folder(const std::string& path) {
    return CreateDirectoryW(widen(path).c_str(), nullptr) != 0;
}

} // namespace quillon::platform
