// SPDX-License-Identifier: MIT
#include "quillon/json/allocator.h"

#include "quillon/json/value.h"

#include <cstdlib>

namespace quillon::json {
namespace {

void* platform_resize(void*, void* block, std::size_t bytes, const char*) {
    return std::realloc(block, bytes);
}

void platform_release(void*, void* block, const char*) {
    std::free(block);
}

constexpr Allocator PLATFORM_ALLOCATOR = {platform_resize, platform_release, nullptr};
constinit const Allocator* current = &PLATFORM_ALLOCATOR;

} // namespace

const Allocator* set_allocator(const Allocator* allocator) {
    const Allocator* before = current;
    current = allocator != nullptr ? allocator : &PLATFORM_ALLOCATOR;
    return before;
}

void* reallocate(void* block, std::size_t bytes, const char* tag) {
    return current->resize(current->state, block, bytes, tag);
}

void free(void* block, const char* tag) {
    if (block != nullptr && !cson_value_is_shared(block))
        current->release(current->state, block, tag);
}

} // namespace quillon::json
