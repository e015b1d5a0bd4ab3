#include "quillon/json/pool.h"

#include "quillon/json/allocator.h"

#include <algorithm>
#include <new>

namespace quillon {
namespace {

constexpr const char* chunk_tag = "cson_chunk";
constexpr std::size_t header_bytes = 16;
// Growing that far, a chunk is as big as all before it together. An allocator that adapts itself to
// what it gets back then keeps that memory for the next document, where many small chunks would go
// back to the system and come anew, page by page.
constexpr std::size_t largest_chunk = 8192 * 1024;
constexpr std::size_t largest_block = 512;

} // namespace

void* cson_pool::take_elsewhere(std::size_t bytes, const char* tag, std::uint32_t& distance) {
    if (bytes > largest_block) {
        distance = 0;
        return cson_resize(nullptr, bytes, tag);
    }
    do {
        if (!open_chunk())
            return nullptr;
    } while (bytes > static_cast<std::size_t>(end - next));
    return cut(bytes, distance);
}

bool cson_pool::open_chunk() {
    void* block = cson_resize(nullptr, chunk_bytes, chunk_tag);
    if (block == nullptr)
        return false;
    close_chunk();
    chunk = new (block) cson_chunk{1}; // the pool's own hold
    next = static_cast<unsigned char*>(block) + header_bytes;
    end = static_cast<unsigned char*>(block) + chunk_bytes;
    chunk_bytes = std::min(chunk_bytes * 2, largest_chunk);
    return true;
}

void cson_pool::close_chunk() {
    if (chunk != nullptr && --chunk->blocks == 0)
        cson_free_chunk(chunk);
    chunk = nullptr;
}

void cson_free_chunk(cson_chunk* chunk) {
    cson_free(chunk, chunk_tag);
}

} // namespace quillon
