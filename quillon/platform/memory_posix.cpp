// SPDX-License-Identifier: MIT
#include "quillon/platform/memory.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace quillon::platform {
namespace {

// What a system lacks becomes advice to change nothing.
#if defined(MADV_HUGEPAGE)
constexpr int USE_HUGE_PAGES = MADV_HUGEPAGE;
#else
constexpr int USE_HUGE_PAGES = MADV_NORMAL;
#endif
#if defined(MADV_POPULATE_WRITE)
constexpr int MAKE_PAGES = MADV_POPULATE_WRITE;
#else
constexpr int MAKE_PAGES = MADV_NORMAL;
#endif

// An array of twice a huge page holds one wherever it begins.
constexpr std::size_t HUGE_PAGES_FROM = std::size_t{4} << 20;

// Where a shorter array is filled again, the look at a page, a microsecond, would show.
constexpr std::size_t MAKE_PAGES_FROM = std::size_t{512} << 10;

// The whole pages in an array of at least one.
struct Pages {
    Pages(void* array, std::size_t array_size)
        : size(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
        const std::size_t before = -reinterpret_cast<std::uintptr_t>(array) % size;
        first = static_cast<std::byte*>(array) + before;
        count = (array_size - before) / size;
    }

    // A system that refuses leaves the pages as they are.
    void advise(int advice) const { static_cast<void>(madvise(first, count * size, advice)); }

    // Asking for pages that are there costs a tenth of filling them, so one of them is looked at.
    bool are_untouched() const {
        unsigned char middle = 0;
        return mincore(first + count / 2 * size, size, &middle) == 0 && (middle & 1) == 0;
    }

    std::size_t size;
    std::byte* first;
    std::size_t count;
};

} // namespace

void prefer_huge_pages(void* array, std::size_t size) {
    if (size >= HUGE_PAGES_FROM)
        Pages(array, size).advise(USE_HUGE_PAGES);
}

void make_resident(void* array, std::size_t size) {
    if (size < MAKE_PAGES_FROM)
        return;
    const Pages pages(array, size);
    if (pages.are_untouched())
        pages.advise(MAKE_PAGES);
}

} // namespace quillon::platform
