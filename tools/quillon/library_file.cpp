// SPDX-License-Identifier: MIT
#include "library_headers.h"
#include "platform.h"

namespace fs = std::filesystem;

namespace tool::platform {

std::string file_fault(const fs::path& file) {
    std::error_code error;
    if (fs::is_regular_file(file, error))
        return header_fault(file);
    if (error && fs::is_symlink(fs::symlink_status(file)))
        return "a link that leads nowhere, to '" + fs::read_symlink(file).string() +
               "': " + error.message();
    return error ? "not a file: " + error.message() : "not a file";
}

LibraryFile::LibraryFile(const fs::path& file)
    : why_not(file_fault(file)), library(why_not.empty() ? load(file, why_not) : nullptr) {}

} // namespace tool::platform
