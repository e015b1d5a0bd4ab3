// SPDX-License-Identifier: MIT
// A bitmap in memory whose neighbouring pages fault on any access.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

class GuardedBitmap {
public:
    enum class Place { AtTheFront, AtTheBack, AtAnOddAddress };

    GuardedBitmap(std::size_t count, Place place)
        : page(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          byte_count(count),
          inside((count + page) / page * page) {
        void* const mapped = mmap(nullptr, inside + 2 * page, PROT_NONE,
                                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapped == MAP_FAILED)
            throw std::bad_alloc();
        block = static_cast<std::uint8_t*>(mapped);
        mprotect(block + page, inside, PROT_READ | PROT_WRITE);
        const std::size_t offset = place == Place::AtTheBack ? inside - byte_count : 0;
        first = block + page + offset + (place == Place::AtAnOddAddress ? 1 : 0);
    }

    GuardedBitmap(const GuardedBitmap&) = delete;
    GuardedBitmap& operator=(const GuardedBitmap&) = delete;

    ~GuardedBitmap() { munmap(block, inside + 2 * page); }

    void set(const std::vector<std::uint8_t>& bytes) {
        std::copy(bytes.begin(), bytes.end(), first);
    }

    std::vector<std::uint8_t> bytes() const { return {first, first + byte_count}; }

    // True while the bytes between the bitmap and its guards are as they came.
    bool is_margin_clean() const {
        const auto is_zero = [](std::uint8_t byte) { return byte == 0; };
        return std::all_of(block + page, first, is_zero) &&
               std::all_of(first + byte_count, block + page + inside, is_zero);
    }

    std::uint8_t* pixels() const { return first; }

private:
    std::size_t page;
    std::size_t byte_count;
    std::size_t inside;
    std::uint8_t* block;
    std::uint8_t* first;
};
