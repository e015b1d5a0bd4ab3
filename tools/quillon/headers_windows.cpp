// SPDX-License-Identifier: MIT
// PE headers.
#include "library_headers.h"

#include <fstream>

#include <windows.h>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

template <typename Header>
bool read_at(std::ifstream& file, std::uintmax_t offset, Header& header) {
    file.seekg(static_cast<std::streamoff>(offset));
    return static_cast<bool>(file.read(reinterpret_cast<char*>(&header), sizeof header));
}

// What files for every processor share.
struct FileStart {
    DWORD signature;
    IMAGE_FILE_HEADER header;
};

// That of this program, where the loader has put it.
const FileStart& own_start() {
    const auto* const begin = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
    const auto* const header = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
    return *reinterpret_cast<const FileStart*>(begin + header->e_lfanew);
}

bool holds_all_sections(std::ifstream& file, std::uintmax_t offset, int count,
                        std::uintmax_t size) {
    for (int i = 0; i < count; ++i, offset += sizeof(IMAGE_SECTION_HEADER)) {
        IMAGE_SECTION_HEADER section;
        if (!read_at(file, offset, section) || section.PointerToRawData > size ||
            section.SizeOfRawData > size - section.PointerToRawData)
            return false;
    }
    return true;
}

} // namespace

std::string header_fault(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return "cannot be read";
    IMAGE_DOS_HEADER begin;
    if (!read_at(file, 0, begin.e_magic) || begin.e_magic != IMAGE_DOS_SIGNATURE)
        return "not a library";
    FileStart start;
    if (!read_at(file, 0, begin) || !read_at(file, static_cast<DWORD>(begin.e_lfanew), start))
        return "cut off";
    if (start.signature != IMAGE_NT_SIGNATURE ||
        (start.header.Characteristics & IMAGE_FILE_DLL) == 0)
        return "not a library";
    if (start.header.Machine != own_start().header.Machine)
        return "wrong architecture";
    const std::uintmax_t sections =
        static_cast<DWORD>(begin.e_lfanew) + sizeof start + start.header.SizeOfOptionalHeader;
    const bool is_whole =
        holds_all_sections(file, sections, start.header.NumberOfSections, fs::file_size(path));
    return is_whole ? "" : "cut off";
}

} // namespace tool::platform
