// SPDX-License-Identifier: MIT
// The folder listing, on any filter and any way of writing the folder.
#include "check.h"

#include "quillon/core/file_list.h"
#include "tests/scratch_folder.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace {

namespace fs = std::filesystem;

// A folder of a few files and subfolders, which stays for the run.
struct PreparedFolder : ScratchFolder {
    PreparedFolder() {
        for (const char* file : {"a", "A.dll", "b.so", "c.txt", ".hidden", "long.name.with.dots"})
            std::ofstream(file).put('x');
        for (const char* folder : {"sub", "folder.dll"})
            fs::create_directory(folder);
    }
};

} // namespace

// The input is the filter, a line feed, and what is appended to the prepared folder's name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = std::string(reinterpret_cast<const char*>(data), size).c_str();
    const std::size_t line = std::min(text.find('\n'), text.size());
    const std::string filter = text.substr(0, line);
    const std::string tail = line < text.size() ? text.substr(line + 1) : std::string();
    const bool folders = filter.find_first_not_of(';') == std::string::npos;
    static const PreparedFolder prepared;
    const std::string folder = fs::current_path().string() + '/' + tail;

    const quillon::FileListOwner files(__mFileOps_collect_files(folder.c_str(), filter.c_str()));
    for (const auto* entry = files.get(); entry != nullptr; entry = entry->next)
        // A tail may lead out of the folder, and with a "\" in it to where we would not look.
        check(!tail.empty() || fs::is_directory(fs::path(folder) / entry->name) == folders,
              "a filter lists files, none lists folders");
    return 0;
}
