// SPDX-License-Identifier: MIT
#include "quillon/platform/folders.h"

#include "quillon/platform/wide.h"

#include <algorithm>

#include <windows.h>

namespace quillon::platform {
namespace {

void append_entry(std::vector<FolderEntry>& entries, const WIN32_FIND_DATAW& record) {
    std::array<char, PATH_LIMIT> name;
    const std::size_t length = std::wcstombs(name.data(), record.cFileName, name.size());
    // A name that the current locale cannot spell cannot be opened by that spelling either.
    if (length < name.size())
        entries.push_back({std::string(name.data(), length),
                           (record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
}

} // namespace

std::vector<FolderEntry> list_folder(const std::string& folder) {
    std::vector<FolderEntry> entries;
    WidePath pattern;
    WIN32_FIND_DATAW record;
    if (!widen(folder + "*", pattern))
        return entries;
    const HANDLE search = FindFirstFileW(pattern.data(), &record);
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
