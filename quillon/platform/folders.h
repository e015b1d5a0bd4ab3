// SPDX-License-Identifier: MIT
// Folder listing.
#pragma once

#include <string>
#include <vector>

namespace quillon::platform {

struct FolderEntry {
    std::string name;
    bool is_folder; // a link to a folder counts as one
};

// The entries of `folder`, sorted by name bytewise, so that the order is the same on every machine.
//
// `folder` ends in "/".
// "." and ".." are included if the platform lists them.
// Empty if the folder cannot be read.
std::vector<FolderEntry> list_folder(const std::string& folder);

} // namespace quillon::platform
