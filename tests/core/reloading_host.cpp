// Loads the library, opens it and unloads it, a thousand times, and fails if anything is left
// behind.
#include "loaded_library.h"

#include <cstdio>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace {

constexpr int CYCLES = 1000;
constexpr int WARM_UP = 50;
#ifdef MEMORY_IS_INSTRUMENTED // the sanitizer keeps what was freed for a while
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

void cycle() {
    LoadedLibrary library;
    EXPORT_OF(library, __mCore_open)();
}

bool check(bool condition, const char* what) {
    if (!condition)
        std::fprintf(stderr, "reloading_host: %s\n", what);
    return condition;
}

} // namespace

int main() {
    for (int i = 0; i < WARM_UP; ++i)
        cycle();
    const long files = open_files();
    const long bytes = resident_bytes();
    for (int i = 0; i < CYCLES; ++i)
        cycle();
    const long growth = resident_bytes() - bytes;
    std::fprintf(stderr, "reloading_host: %ld bytes more after %d cycles\n", growth, CYCLES);

    bool sound = check(open_files() == files, "the number of open files changed");
    sound &= check(growth < MOST_GROWTH, "memory grew");
    sound &= check(!is_mapped("libquillon") && !is_mapped("/plugin/"), "something stays mapped");
    return sound ? 0 : 1;
}
