#include "quillon/platform/loader.h"

#include "quillon/platform/paths.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

namespace quillon::platform {
namespace {

// Opening a pipe would wait for a writer that never comes.
bool is_regular_file(const std::string& path) {
    struct stat status {};

    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// The library that holds `address`. glibc finds it in logarithmic time where it can, while dladdr
// walks every loaded library, which makes loading many plug-ins quadratic.
const void* library_at(void* address) {
#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 35)
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
    if (wide_length(path) > PATH_LIMIT || !is_regular_file(path))
        return nullptr;
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* find_function(void* library, const char* name) {
    if (library == nullptr)
        return nullptr;
    void* const function = dlsym(library, name);
    // The loader searches a library's dependencies too; its handle is the library's own link map.
    return function != nullptr && library_at(function) == library ? function : nullptr;
}

void release_library(void* library) {
    if (library != nullptr)
        dlclose(library);
}

} // namespace quillon::platform
