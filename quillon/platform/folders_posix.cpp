// SPDX-License-Identifier: MIT
#include "quillon/platform/folders.h"

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <sys/stat.h>

namespace quillon::platform {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// Most file systems list the kind with the name; the others, and links, cost a call.
bool is_folder(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_DIR;

    struct stat status {};

    return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

std::vector<FolderEntry> list_folder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    const std::unique_ptr<DIR, CloseFolder> open(opendir(folder.c_str()));
    if (open == nullptr)
        return entries;
    while (const dirent* entry = readdir(open.get()))
        entries.push_back({entry->d_name, is_folder(open.get(), *entry)});
    std::ranges::sort(entries, {}, &FolderEntry::name);
    return entries;
}

} // namespace quillon::platform
