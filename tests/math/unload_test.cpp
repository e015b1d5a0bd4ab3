// The shared library, loaded and unloaded by its path.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <malloc.h>

namespace {

std::size_t bytes_in_use() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

TEST(UnloadedLibrary, LeavesNoTable) {
    const std::size_t before = bytes_in_use();
    void* library = dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library) << dlerror();
    reinterpret_cast<void (*)()>(dlsym(library, "__init_trig_tables"))();
    dlclose(library);
    EXPECT_LT(bytes_in_use(), before + 1'000'000);
}
