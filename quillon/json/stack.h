// A stack for walking trees without recursion.
#pragma once

#include "quillon/json/allocator.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace quillon::json {

// Holds the first entries in itself, and more of them in a block of the component's allocator.
template <typename Entry>
class Stack {
    static_assert(std::is_trivially_copyable_v<Entry>);

public:
    Stack() = default;
    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;

    ~Stack() {
        if (entries != inner.data())
            free(entries, TAG);
    }

    bool empty() const { return count == 0; }

    std::size_t size() const { return count; }

    // Valid until the next push.
    Entry& top() { return entries[count - 1]; }

    void pop() { --count; }

    Entry* from(std::size_t position) { return entries + position; }

    void shrink(std::size_t new_size) { count = new_size; }

    // False, with nothing changed, when memory runs out.
    bool push(const Entry& entry) {
        if (count == capacity && !grow())
            return false;
        entries[count++] = entry;
        return true;
    }

private:
    static constexpr const char* TAG = "cson_stack";
    static constexpr std::size_t ENTRY_BYTES = sizeof(std::array<Entry, 1>);

    bool grow() {
        const bool is_inner = entries == inner.data();
        const std::size_t bytes = capacity * 2 * ENTRY_BYTES;
        void* block = reallocate(is_inner ? nullptr : entries, bytes, TAG);
        if (block == nullptr)
            return false;
        if (is_inner)
            std::memcpy(block, inner.data(), sizeof(inner));
        entries = static_cast<Entry*>(block);
        capacity *= 2;
        return true;
    }

    std::array<Entry, 32> inner;
    Entry* entries = inner.data();
    std::size_t count = 0;
    std::size_t capacity = inner.size();
};

} // namespace quillon::json
