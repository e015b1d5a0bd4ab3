// The two functions through which every allocation of the JSON component goes.
#pragma once

#include <cstddef>

namespace quillon::json {

// Where the two functions lead; `state` is handed to both.
//
// `resize` gives memory for `bytes` bytes, aligned for every scalar type: new for a null `block`,
// else with the content of `block`, which then is gone. Null leaves `block` as it was.
struct Allocator {
    void* (*resize)(void* state, void* block, std::size_t bytes, const char* tag);
    void (*release)(void* state, void* block, const char* tag);
    void* state;
};

// Makes `allocator` the one in use, or the platform's for null; returns the one before it.
//
// It is referred to, not copied. Blocks go back to the allocator that gave them, so swap only while
// nothing of the component is alive.
const Allocator* set_allocator(const Allocator* allocator);

// Gives a block of `bytes` bytes, not zeroed, or null. `tag` tells a tracking allocator what it is.
//
// A `block` other than null is resized; it stays as it was if there is no memory.
void* reallocate(void* block, std::size_t bytes, const char* tag);

// Frees a block; null and the shared constants are left alone.
void free(void* block, const char* tag);

} // namespace quillon::json
