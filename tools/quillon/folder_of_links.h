// SPDX-License-Identifier: MIT
// A part of a folder, as a folder of its own.
#pragma once

#include <filesystem>
#include <vector>

namespace tool {

// A folder for temporary files with links of the same names to some files; goes with the object.
class FolderOfLinks {
public:
    explicit FolderOfLinks(const std::vector<std::filesystem::path>& files);
    FolderOfLinks(const FolderOfLinks&) = delete;
    FolderOfLinks& operator=(const FolderOfLinks&) = delete;
    ~FolderOfLinks();

    const std::filesystem::path& path() const { return folder; }

private:
    std::filesystem::path folder;
};

} // namespace tool
