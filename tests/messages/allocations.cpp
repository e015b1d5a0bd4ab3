#include "allocations.h"

#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
    ++allocations;
    if (allocations_left == 0)
        throw std::bad_alloc();
    --allocations_left;
    if (void* const block = std::malloc(size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
