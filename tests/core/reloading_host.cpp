// SPDX-License-Identifier: MIT
// Loads the library, opens it with the plug-ins of the current folder and unloads it, a thousand
// times, and fails if anything is left. The tests of the plug-ins run it too.
#include "loaded_library.h"

#include "quillon/math/trigonometry.h"

#include <cstdio>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace {

constexpr int CYCLES = 1000;
constexpr int WARM_UP = 50;
// A sanitizer keeps what was freed for a while, and an emulator the code that it has translated.
#ifdef MEMORY_IS_INSTRUMENTED
constexpr long MOST_GROWTH = 512L * 1024 * 1024;
#else
constexpr long MOST_GROWTH = 256L * 1024;
#endif

long open_files() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

long resident_bytes() {
    long all = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

void run_cycles(int count) {
    for (int i = 0; i < count; ++i)
        EXPORT_OF(LoadedLibrary(), __mCore_open)();
}

} // namespace

int main() {
    run_cycles(WARM_UP);
    const long files = open_files();
    const long bytes = resident_bytes();
    run_cycles(CYCLES);
    const long more_files = open_files() - files;
    const long more_bytes = resident_bytes() - bytes;
    EXPORT_OF(LoadedLibrary(), __init_trig_tables)(); // 7.8 MB
    const long with_tables = resident_bytes() - bytes;
    const bool mapped = is_mapped("libquillon") || is_mapped("/plugin/");
    std::fprintf(stderr, "reloading_host: after %d cycles %ld bytes and %ld files more, %s\n",
                 CYCLES, more_bytes, more_files,
                 mapped ? "libraries still mapped" : "nothing mapped");
    return more_bytes < MOST_GROWTH && with_tables < MOST_GROWTH + 4'000'000 && more_files == 0 &&
                   !mapped
               ? 0
               : 1;
}
