// SPDX-License-Identifier: MIT
// The folder listing, on any filter and any way of writing the folder.
#include "check.h"

#include "quillon/core/file_list.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// A folder of a few files and subfolders, which stays for the run.
class PreparedFolder {
public:
    PreparedFolder() {
        check(mkdtemp(path.data()) != nullptr, "a folder for temporary files can be made");
        for (const char* file : {"a", "A.dll", "b.so", "c.txt", ".hidden", "long.name.with.dots"})
            std::ofstream(fs::path(path) / file).put('x');
        for (const char* folder : {"sub", "folder.dll"})
            fs::create_directory(fs::path(path) / folder);
    }

    PreparedFolder(const PreparedFolder&) = delete;
    PreparedFolder& operator=(const PreparedFolder&) = delete;

    ~PreparedFolder() { fs::remove_all(path); }

    std::string path = (fs::temp_directory_path() / "quillon_fuzz_XXXXXX").string();
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
    const std::string folder = prepared.path + '/' + tail;

    const quillon::FileListOwner files(__mFileOps_collect_files(folder.c_str(), filter.c_str()));
    for (const auto* entry = files.get(); entry != nullptr; entry = entry->next)
        // A tail may lead out of the folder, and with a "\" in it to where we would not look.
        check(!tail.empty() || fs::is_directory(fs::path(folder) / entry->name) == folders,
              "a filter lists files, none lists folders");
    return 0;
}
