// SPDX-License-Identifier: MIT
#include "quillon/platform/memory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using namespace quillon;
using testing::Each;

namespace {

const std::size_t PAGE = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));

// Pages that were never touched.
struct NewPages {
    explicit NewPages(std::size_t count)
        : size(count * PAGE),
          bytes(static_cast<std::byte*>(
              mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {}

    NewPages(const NewPages&) = delete;
    NewPages& operator=(const NewPages&) = delete;

    ~NewPages() { munmap(bytes, size); }

    // 1 for each page that is in memory.
    std::vector<unsigned char> resident() const {
        std::vector<unsigned char> pages(size / PAGE);
        EXPECT_EQ(0, mincore(bytes, size, pages.data()));
        std::ranges::for_each(pages, [](unsigned char& page) { page &= 1; });
        return pages;
    }

    std::size_t size;
    std::byte* bytes;
};

} // namespace

TEST(Memory, MakesTheWholePagesOfAnArrayResidentAndNoOthers) {
    const NewPages probe(1);
    // An emulator of another processor may say yes and do nothing.
    if (madvise(probe.bytes, PAGE, MADV_POPULATE_WRITE) != 0 || probe.resident().front() == 0)
        GTEST_SKIP() << "the kernel makes no pages ahead of their use";
    const NewPages pages(200);
    static_cast<void>(madvise(pages.bytes, pages.size, MADV_NOHUGEPAGE));
    platform::make_resident(pages.bytes + 2 * PAGE + 16, 195 * PAGE);
    const std::vector<unsigned char> resident = pages.resident();
    EXPECT_THAT(std::span(resident).first(3), Each(0));
    EXPECT_THAT(std::span(resident).subspan(3, 194), Each(1));
    EXPECT_THAT(std::span(resident).last(3), Each(0));
}

TEST(Memory, KeepsWhatAnArrayHolds) {
    constexpr std::size_t size = (std::size_t{5} << 20) + 123;
    const NewPages pages(size / PAGE + 2);
    std::byte* const array = pages.bytes + 16;
    const std::size_t places[] = {0, PAGE, size / 3, size - 1};
    for (const std::size_t place : places)
        array[place] = std::byte{7};
    platform::prefer_huge_pages(array, size);
    platform::make_resident(array, size);
    for (const std::size_t place : places)
        EXPECT_EQ(std::byte{7}, array[place]) << place;
    EXPECT_EQ(std::size(places),
              size - static_cast<std::size_t>(std::count(array, array + size, std::byte{0})));
}
