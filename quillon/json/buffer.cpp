// SPDX-License-Identifier: MIT
#include "quillon/json/allocator.h"
#include "quillon/json/value.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

constexpr const char* BUFFER_TAG = "cson_buffer::mem";
constexpr std::uint32_t READ_BLOCK = 4096;

int append_all(cson_buffer* buffer, cson_reader reader, void* state) {
    std::array<unsigned char, READ_BLOCK> block;
    std::uint32_t count = READ_BLOCK;
    while (count == READ_BLOCK) {
        int code = reader(state, block.data(), &count);
        if (code != cson_OK)
            return code;
        if (count > READ_BLOCK || count >= std::numeric_limits<std::uint32_t>::max() - buffer->used)
            return cson_RangeError;
        code = cson_buffer_reserve_bytes(buffer, buffer->used + count + 1);
        if (code != cson_OK)
            return code;
        std::memcpy(buffer->mem + buffer->used, block.data(), count);
        buffer->used += count;
    }
    return cson_OK;
}

} // namespace

int cson_buffer_reserve_bytes(cson_buffer* buffer, std::uint32_t capacity) {
    if (buffer == nullptr)
        return cson_ArgError;
    if (capacity == 0) {
        free(buffer->mem, BUFFER_TAG);
        *buffer = {};
        return cson_OK;
    }
    if (capacity <= buffer->capacity)
        return cson_OK;
    void* grown = reallocate(buffer->mem, capacity, BUFFER_TAG);
    if (grown == nullptr)
        return cson_AllocError;
    buffer->mem = static_cast<unsigned char*>(grown);
    const std::uint32_t kept = std::min(buffer->used, capacity);
    std::memset(buffer->mem + kept, 0, capacity - kept);
    buffer->capacity = capacity;
    ++buffer->times_expanded;
    return cson_OK;
}

std::uint32_t cson_buffer_fill_bytes(cson_buffer* buffer, unsigned char byte) {
    if (buffer == nullptr || buffer->mem == nullptr)
        return 0;
    std::memset(buffer->mem, byte, buffer->capacity);
    return buffer->capacity;
}

int cson_buffer_read_from(cson_buffer* buffer, cson_reader reader, void* state) {
    if (buffer == nullptr || reader == nullptr)
        return cson_ArgError;
    buffer->used = 0;
    const int code = append_all(buffer, reader, state);
    if (code == cson_OK && buffer->used != 0)
        buffer->mem[buffer->used] = 0;
    return code;
}

} // namespace quillon
