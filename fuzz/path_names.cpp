// SPDX-License-Identifier: MIT
// The parts of a path, and names that files are asked for by.
#include "check.h"

#include "quillon/files/files.h"

#include <cstdint>
#include <memory>
#include <string>

namespace {

std::string part_of(const std::string& path, void (*take)(char*, const char*)) {
    const auto output = std::make_unique<char[]>(path.size() + 1); // its end is watched
    take(output.get(), path.c_str());
    check(path.find(output.get()) != std::string::npos, "a part is in the path");
    return output.get();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = std::string(reinterpret_cast<const char*>(data), size).c_str();
    const std::string extension = part_of(path, __mFileOps_get_pathname_extention);
    const std::string file = part_of(path, __mFileOps_get_pathname_filename);
    const std::string folder = part_of(path, __mFileOps_get_pathname_path);
    check(file.find_first_of("/\\") == std::string::npos, "a file name has no folder");
    check(folder.empty() || path.starts_with(folder), "a folder begins the path");
    if (!file.empty())
        check(path.ends_with(file + '.' + extension), "name, dot and extension end the path");
    check(__mFileOps_check_for_extension(path.c_str(), extension.c_str()) ==
              (path.size() > extension.size() + 1),
          "a name has its own extension");
    __mFileOps_file_exists(path.c_str());
    return 0;
}
