// SPDX-License-Identifier: MIT
#include "folder_of_links.h"

#include "platform.h"

namespace fs = std::filesystem;

namespace tool {

FolderOfLinks::FolderOfLinks(const std::vector<fs::path>& files)
    : folder(platform::make_scratch_folder()) {
    for (const fs::path& file : files)
        fs::create_symlink(fs::absolute(file), folder / file.filename());
}

FolderOfLinks::~FolderOfLinks() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

} // namespace tool
