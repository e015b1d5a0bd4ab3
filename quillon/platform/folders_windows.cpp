// SPDX-License-Identifier: MIT
#include "quillon/platform/folders.h"

#include "quillon/platform/wide.h"

#include <algorithm>
#include <utility>

#include <windows.h>

namespace quillon::platform {
namespace {

void append_entry(std::vector<FolderEntry>& entries, const WIN32_FIND_DATAW& record) {
    std::string name = narrow(record.cFileName);
    // A name that UTF-8 cannot spell could not be opened either.
    if (!name.empty())
        entries.push_back(
            {std::move(name), (record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
}

} // namespace

std::vector<FolderEntry> list_folder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW record;
    const HANDLE search = FindFirstFileW(widen(folder + "*").c_str(), &record);
    if (search == INVALID_HANDLE_VALUE)
        return entries;
    do {
        append_entry(entries, record);
    } while (FindNextFileW(search, &record) != 0);
    FindClose(search);
    std::ranges::sort(entries, {}, &FolderEntry::name);
    return entries;
}

} // namespace quillon::platform
