// SPDX-License-Identifier: MIT
// What tests that write files share.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

// Makes a fresh folder the current one as long as it lives.
class ScratchFolder {
public:
    ScratchFolder() {
        const std::string name = "test-of-quillon-" + std::to_string(std::random_device()());
        std::filesystem::create_directory(std::filesystem::temp_directory_path() / name);
        std::filesystem::current_path(std::filesystem::temp_directory_path() / name);
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder() {
        const std::filesystem::path folder = std::filesystem::current_path();
        std::filesystem::current_path(before);
        std::error_code ignored; // Windows keeps the files of libraries that stay loaded
        std::filesystem::remove_all(folder, ignored);
    }

private:
    std::filesystem::path before = std::filesystem::current_path();
};

// All bytes of a file.
inline std::string text_of(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
