// SPDX-License-Identifier: MIT
#include "quillon/platform/loader.h"

#include "quillon/platform/paths.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#ifndef __GLIBC__
    #error "quillon: only glibc says which file a function is from (dladdr1)"
#elif __GLIBC_PREREQ(2, 35)
    #define HAS_FIND_OBJECT
#endif

namespace quillon::platform {
namespace {

// A file that is open for reading, if it could be opened.
class OpenFile {
public:
    // Without O_NONBLOCK the opening of a pipe waits for a writer that never comes.
    explicit OpenFile(const std::string& path)
        : file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    ~OpenFile() {
        if (file >= 0)
            close(file);
    }

    bool read_status(struct stat& status) const { return fstat(file, &status) == 0; }

    template <typename Record>
    bool read(std::span<Record> records, std::uint64_t offset) const {
        const auto size = static_cast<ssize_t>(records.size_bytes());
        return pread(file, records.data(), records.size_bytes(), static_cast<off_t>(offset)) ==
               size;
    }

private:
    int file;
};

// The loader maps segments without checking the length of the file. In a file that was cut off it
// then reads pages after the end, which ends the process by SIGBUS.
bool has_whole_segments(const OpenFile& file, std::uint64_t size) {
    ElfW(Ehdr) header;
    if (!file.read(std::span(&header, 1), 0) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_phentsize != sizeof(ElfW(Phdr)))
        return false;
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    return file.read(std::span(segments), header.e_phoff) &&
           std::ranges::all_of(segments, [size](const ElfW(Phdr) & segment) {
               return segment.p_offset <= size && segment.p_filesz <= size - segment.p_offset;
           });
}

bool can_be_loaded(const std::string& path) {
    const OpenFile file(path);

    struct stat status {};

    return file.read_status(status) && S_ISREG(status.st_mode) &&
           has_whole_segments(file, static_cast<std::uint64_t>(status.st_size));
}

// The library that contains `address`. glibc 2.35 finds it in logarithmic time; dladdr walks every
// loaded library, which makes loading many plug-ins quadratic.
const void* library_at(void* address) {
#ifdef HAS_FIND_OBJECT
    dl_find_object found{};
    return _dl_find_object(address, &found) == 0 ? found.dlfo_link_map : nullptr;
#else
    Dl_info info{};
    link_map* map = nullptr;
    return dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0 ? map
                                                                                         : nullptr;
#endif
}

} // namespace

void* load_library(const std::string& path) {
    if (wide_length(path) > PATH_LIMIT || !can_be_loaded(path))
        return nullptr;
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* find_function(void* library, const char* name) {
    if (library == nullptr)
        return nullptr;
    void* const function = dlsym(library, name);
    // The loader searches a library's dependencies too. A handle is the library's own link map.
    return function != nullptr && library_at(function) == library ? function : nullptr;
}

void release_library(void* library) {
    if (library != nullptr)
        dlclose(library);
}

} // namespace quillon::platform
