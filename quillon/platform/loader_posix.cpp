// SPDX-License-Identifier: MIT
#include "quillon/platform/loader.h"

#include "quillon/platform/paths.h"

#include <cstdint>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __GLIBC_PREREQ
    #if __GLIBC_PREREQ(2, 35)
        #define HAS_FIND_OBJECT
    #endif
#endif

namespace quillon::platform {
namespace {

// A file that is open for reading, if it could be opened.
class OpenFile {
public:
    explicit OpenFile(const std::string& path) : file(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    ~OpenFile() {
        if (file >= 0)
            close(file);
    }

    template <typename Record>
    bool read(Record& record, std::uint64_t offset) const {
        constexpr auto size = static_cast<ssize_t>(sizeof(Record));
        return pread(file, &record, sizeof(Record), static_cast<off_t>(offset)) == size;
    }

private:
    int file;
};

// The loader maps segments without checking the length of the file. In a file that was cut off it
// then reads pages after the end, which ends the process by SIGBUS.
bool has_whole_segments(const OpenFile& file, std::uint64_t size) {
    ElfW(Ehdr) header;
    if (!file.read(header, 0) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return false;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment;
        if (!file.read(segment, header.e_phoff + std::uint64_t{i} * header.e_phentsize) ||
            segment.p_offset > size || segment.p_filesz > size - segment.p_offset)
            return false;
    }
    return true;
}

bool can_be_loaded(const std::string& path) {
    struct stat status {};

    // Opening a pipe would wait for a writer that never comes.
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           has_whole_segments(OpenFile(path), static_cast<std::uint64_t>(status.st_size));
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
