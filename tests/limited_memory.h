// SPDX-License-Identifier: MIT
// An operator new that counts, and that fails on demand: for one source of a test program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

inline std::size_t allocations = 0;
inline std::size_t allocations_left = SIZE_MAX; // how many succeed before all fail

// NOLINTBEGIN(misc-definitions-in-headers)
// gcc would take an inlined one for a mismatch with the other.
// NOLINTBEGIN(misc-definitions-in-headers): replacements may not be inline
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    void* const block = allocations_left == 0 ? nullptr : std::malloc(size);
    allocations_left -= block == nullptr ? 0 : 1;
    return block != nullptr ? block : throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

// NOLINTEND(misc-definitions-in-headers)
