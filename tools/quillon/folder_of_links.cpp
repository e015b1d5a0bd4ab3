// SPDX-License-Identifier: MIT
#include "folder_of_links.h"

#include "platform.h"

namespace fs = std::filesystem;

namespace tool {

FolderOfLinks::FolderOfLinks(const std::vector<fs::path>& files)
    : folder(platform::make_scratch_folder()) {
    for (const fs::path& file : files)
        platform::link_file(fs::absolute(file), folder / file.filename());
}

FolderOfLinks::~FolderOfLinks() {
    platform::remove_folder(folder);
}

} // namespace tool
