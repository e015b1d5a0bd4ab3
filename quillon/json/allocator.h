// SPDX-License-Identifier: MIT
// The two functions through which every allocation of the JSON component goes.
#pragma once

#include <cstddef>
#include <memory>

namespace quillon::json {

// The two functions; `state` is passed to both.
//
// `resize` returns memory for `bytes` bytes, aligned for every scalar type.
// For a null `block` it is new; otherwise it replaces `block` and has its content.
// Null means no memory, with `block` unchanged.
struct Allocator {
    void* (*resize)(void* state, void* block, std::size_t bytes, const char* tag);
    void (*release)(void* state, void* block, const char* tag);
    void* state;
};

// Makes `allocator` the one in use, or the platform's for null; returns the one before it.
//
// It is referred to, not copied.
// A block must be freed by the allocator it came from: change it only while no block is alive.
const Allocator* set_allocator(const Allocator* allocator);

// Allocates `bytes` bytes, not zeroed, or resizes `block` if that isn't null.
//
// Null means no memory, with `block` unchanged.
// `tag` names the purpose for an allocator that tracks blocks.
void* reallocate(void* block, std::size_t bytes, const char* tag);

// Frees a block; null and the shared constants are ignored.
void free(void* block, const char* tag);

struct BlockDeleter {
    void operator()(unsigned char* block) const { free(block, tag); }

    const char* tag = nullptr;
};

using Block = std::unique_ptr<unsigned char, BlockDeleter>;

// A block that frees itself, or null without memory.
inline Block make_block(std::size_t bytes, const char* tag) {
    return {static_cast<unsigned char*>(reallocate(nullptr, bytes, tag)), {tag}};
}

} // namespace quillon::json
