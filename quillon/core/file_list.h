// SPDX-License-Identifier: MIT
// The listing of one folder.
#pragma once

#include "quillon/export.h"

#include <memory>

namespace quillon {

// One name of a listing, a chain that the caller owns.
//
// Each `name` is freed with `delete[]` and each entry with `delete`; a FileListOwner does both.
struct cFileListEntry {
    char* name;           // without the folder, terminated
    cFileListEntry* next; // null after the last one
};

// Frees a listing whole.
struct DeleteFileList {
    // Frees `first` and all after it.
    void operator()(cFileListEntry* first) const {
        while (first != nullptr) {
            const std::unique_ptr<cFileListEntry> entry(first);
            const std::unique_ptr<char[]> name(entry->name);
            first = entry->next;
        }
    }
};

// Owns a whole listing: `const FileListOwner files(__mFileOps_collect_files("data", ".png"));`
using FileListOwner = std::unique_ptr<cFileListEntry, DeleteFileList>;

} // namespace quillon

extern "C" {

// The names in `folder` that `filter` selects, sorted bytewise; null if there are none.
//
// A filter is a list of name endings separated by ";", which are not trimmed: ".dll;.so" selects
// the files that end in one of them, in any letter case. ".*" selects every file. A filter without
// endings ("", ";;") selects the subfolders instead, "." and ".." included. Subfolders are not
// searched, and a folder that cannot be read counts as empty. Null if the path has 260 or more
// characters, with "/*" appended and "\" and "//" turned into "/".
QUILLON_API quillon::cFileListEntry* __mFileOps_collect_files(const char* folder,
                                                              const char* filter);
}
