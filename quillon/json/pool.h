// Memory for many small blocks of one tree, taken from the allocator in chunks.
#pragma once

#include "quillon/json/allocator.h"

#include <cstddef>
#include <cstdint>

namespace quillon {

// A chunk lives until its last block is back, whoever held it last and in whatever order they come.
struct cson_chunk {
    std::uint32_t blocks;
};

// Fetches ahead in a walk over a tree, whose blocks mostly stand in the order they were made in.
inline void cson_fetch(const void* block, std::intptr_t bytes_ahead) {
    const auto address = reinterpret_cast<std::intptr_t>(block) + bytes_ahead;
    __builtin_prefetch(reinterpret_cast<const void*>(address));
}

// Hands out blocks from growing chunks; big ones get an allocation of their own.
//
// The blocks may outlive the pool. Blocks of one chunk belong to one thread together.
class cson_pool {
public:
    cson_pool() = default;
    cson_pool(const cson_pool&) = delete;
    cson_pool& operator=(const cson_pool&) = delete;

    ~cson_pool() { close_chunk(); }

    // A block aligned for a pointer and not zeroed, or null. `distance` leads back to its chunk and
    // is 0 for a block of its own, which goes by `tag`.
    void* take(std::size_t bytes, const char* tag, std::uint32_t& distance) {
        const std::size_t rounded = (bytes + alignment - 1) & ~(alignment - 1);
        if (rounded > static_cast<std::size_t>(end - next))
            return take_elsewhere(rounded, tag, distance);
        return cut(rounded, distance);
    }

private:
    static constexpr std::size_t alignment = 8;

    void* cut(std::size_t bytes, std::uint32_t& distance) {
        unsigned char* block = next;
        next += bytes;
        ++chunk->blocks;
        distance = static_cast<std::uint32_t>(block - reinterpret_cast<unsigned char*>(chunk));
        return block;
    }

    void* take_elsewhere(std::size_t bytes, const char* tag, std::uint32_t& distance);
    bool open_chunk();
    void close_chunk();

    cson_chunk* chunk = nullptr;
    unsigned char* next = nullptr;
    unsigned char* end = nullptr;
    std::size_t chunk_bytes = 512;
};

// Frees a chunk whose last block is back.
void cson_free_chunk(cson_chunk* chunk);

// Gives a block back to where `distance` says it came from.
inline void cson_give_back(void* block, std::uint32_t distance, const char* tag) {
    if (distance == 0) {
        cson_free(block, tag);
        return;
    }
    auto* chunk = reinterpret_cast<cson_chunk*>(static_cast<unsigned char*>(block) - distance);
    if (--chunk->blocks == 0)
        cson_free_chunk(chunk);
}

} // namespace quillon
