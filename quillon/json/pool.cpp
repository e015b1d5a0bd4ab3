#include "quillon/json/pool.h"

#include "quillon/json/allocator.h"

#include <algorithm>
#include <new>

namespace quillon::json {
namespace {

constexpr const char* chunk_tag = "cson_chunk";
constexpr std::size_t header_bytes = 16;
// Growing that far, a chunk is as big as all before it together. An allocator that adapts itself to
// what it gets back then keeps that memory for the next document, where many small chunks would go
// back to the system and come anew, page by page.
constexpr std::size_t largest_chunk = (std::size_t{32} << 20) - 8192;
constexpr std::size_t largest_block = 2048;

} // namespace

void* Pool::allocate_elsewhere(std::size_t bytes, const char* tag, std::uint32_t& chunk_offset) {
    if (bytes > largest_block) {
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
    void* block = reallocate(nullptr, chunk_bytes, chunk_tag);
    if (block == nullptr)
        return false;
    close_chunk();
    chunk = new (block) Chunk{1}; // the pool's own hold
    next = static_cast<unsigned char*>(block) + header_bytes;
    end = static_cast<unsigned char*>(block) + chunk_bytes;
    chunk_bytes = std::min(chunk_bytes * 3, largest_chunk);
    return true;
}

void Pool::close_chunk() {
    if (chunk != nullptr && --chunk->blocks == 0)
        free_chunk(chunk);
    chunk = nullptr;
}

void free_chunk(Chunk* chunk) {
    free(chunk, chunk_tag);
}

} // namespace quillon::json
