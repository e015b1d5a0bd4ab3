// SPDX-License-Identifier: MIT
#include "quillon/json/pool.h"

#include "quillon/json/allocator.h"

#include <algorithm>
#include <new>

namespace quillon::json {
namespace {

constexpr const char* CHUNK_TAG = "cson_chunk";
constexpr std::size_t HEADER_BYTES = 16;
constexpr std::size_t LARGEST_BLOCK = 2048;

// Chunks that grow by three come to half as much again as the largest of them. glibc keeps up to
// twice the largest block that it freed and returns more to the system, page by page; so the next
// document gets what one document frees, without a page fault. Growth by two comes to just that
// limit.
constexpr std::size_t GROWTH = 3;

// glibc returns blocks of 32 MiB and more to the system in any case.
constexpr std::size_t LARGEST_CHUNK = (std::size_t{32} << 20) - 8192;

} // namespace

void* Pool::allocate_elsewhere(std::size_t bytes, const char* tag, std::uint32_t& chunk_offset) {
    if (bytes > LARGEST_BLOCK) {
        chunk_offset = 0;
        return reallocate(nullptr, bytes, tag);
    }
    do {
        if (!open_chunk())
            return nullptr;
    } while (bytes > static_cast<std::size_t>(end - next));
    return cut(bytes, chunk_offset);
}

bool Pool::open_chunk() {
    void* block = reallocate(nullptr, chunk_bytes, CHUNK_TAG);
    if (block == nullptr)
        return false;
    close_chunk();
    chunk = new (block) Chunk{1}; // for the pool itself
    next = static_cast<unsigned char*>(block) + HEADER_BYTES;
    // Nothing ends where another allocation may begin: a list knows its inner storage by address.
    end = static_cast<unsigned char*>(block) + chunk_bytes - ALIGNMENT;
    chunk_bytes = std::min(chunk_bytes * GROWTH, LARGEST_CHUNK);
    return true;
}

void Pool::close_chunk() {
    if (chunk != nullptr && --chunk->blocks == 0)
        free_chunk(chunk);
    chunk = nullptr;
}

void free_chunk(Chunk* chunk) {
    free(chunk, CHUNK_TAG);
}

} // namespace quillon::json
