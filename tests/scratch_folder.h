// SPDX-License-Identifier: MIT
// What tests that write files share.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Makes a fresh folder the current one as long as it lives.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "quillon-XXXXXX").string();
        std::filesystem::current_path(mkdtemp(name.data()));
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder() {
        const std::filesystem::path folder = std::filesystem::current_path();
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }

private:
    std::filesystem::path before = std::filesystem::current_path();
};

// All bytes of a file.
inline std::string text_of(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
