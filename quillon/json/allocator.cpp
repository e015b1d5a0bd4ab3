#include "quillon/json/allocator.h"

#include "quillon/json/value.h"

#include <cstdlib>

namespace quillon {
namespace {

void* platform_resize(void*, void* block, std::size_t bytes, const char*) {
    return std::realloc(block, bytes);
}

void platform_release(void*, void* block, const char*) {
    std::free(block);
}

constexpr cson_allocator platform_allocator = {platform_resize, platform_release, nullptr};
constinit const cson_allocator* current = &platform_allocator;

} // namespace

const cson_allocator* cson_set_allocator(const cson_allocator* allocator) {
    const cson_allocator* before = current;
    current = allocator != nullptr ? allocator : &platform_allocator;
    return before;
}

void* cson_resize(void* block, std::size_t bytes, const char* tag) {
    return current->resize(current->state, block, bytes, tag);
}

void cson_free(void* block, const char* tag) {
    if (block != nullptr && !cson_value_is_shared(block))
        current->release(current->state, block, tag);
}

} // namespace quillon
