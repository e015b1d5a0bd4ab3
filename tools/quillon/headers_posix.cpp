// SPDX-License-Identifier: MIT
// ELF headers.
#include "library_headers.h"

#include "platform.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <elf.h>
#include <link.h>
#include <memory>
#include <vector>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

// The beginning that files of every word size share.
constexpr std::size_t COMMON_START = offsetof(Header, e_version);

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

// The number of bytes read, fewer than `size` at the end of the file and after a failure.
std::size_t read_at(const File& file, std::size_t offset, void* bytes, std::size_t size) {
    if (std::fseek(file.get(), static_cast<long>(offset), SEEK_SET) != 0)
        return 0;
    return std::fread(bytes, 1, size, file.get());
}

bool is_of_this_machine(const Header& header) {
    Header own{};
    const File program(std::fopen(executable().c_str(), "rb"));
    return program != nullptr && read_at(program, 0, &own, sizeof own) == sizeof own &&
           header.e_ident[EI_CLASS] == own.e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == own.e_ident[EI_DATA] && header.e_machine == own.e_machine;
}

bool holds_all_segments(const File& file, const Header& header, std::uintmax_t size) {
    std::vector<Segment> segments(header.e_phnum);
    const std::size_t bytes = segments.size() * sizeof(Segment);
    if (header.e_phoff > size || read_at(file, header.e_phoff, segments.data(), bytes) != bytes)
        return false;
    for (const Segment& segment : segments)
        if (segment.p_type != PT_NULL &&
            (segment.p_offset > size || segment.p_filesz > size - segment.p_offset))
            return false;
    return true;
}

} // namespace

std::string header_fault(const fs::path& path) {
    Header header{};
    const File file(std::fopen(path.c_str(), "rb"));
    const std::size_t count = file == nullptr ? 0 : read_at(file, 0, &header, sizeof header);
    if (file == nullptr || std::ferror(file.get()) != 0)
        return std::string("cannot be read: ") + std::strerror(errno);
    if (count < SELFMAG || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return "not a library";
    if (count >= COMMON_START && !is_of_this_machine(header))
        return "wrong architecture";
    std::error_code ignored;
    const bool is_whole =
        count == sizeof header && holds_all_segments(file, header, fs::file_size(path, ignored));
    return is_whole ? "" : "cut off";
}

} // namespace tool::platform
