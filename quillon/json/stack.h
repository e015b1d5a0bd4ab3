// SPDX-License-Identifier: MIT
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

    bool empty() const { return next == entries; }

    std::size_t size() const { return static_cast<std::size_t>(next - entries); }

    // Valid until the next push.
    Entry& top() { return next[-1]; }

    void pop() { --next; }

    Entry* from(std::size_t position) { return entries + position; }

    void shrink(std::size_t new_size) { next = entries + new_size; }

    // False, with nothing changed, when memory runs out.
    bool push(const Entry& entry) {
        if (next == end && !grow())
            return false;
        *next++ = entry;
        return true;
    }

private:
    static constexpr const char* TAG = "cson_stack";

    bool grow() {
        const bool is_inner = entries == inner.data();
        const std::size_t count = size();
        // NOLINTNEXTLINE(bugprone-sizeof-expression): the entries of some stacks are pointers
        void* block = reallocate(is_inner ? nullptr : entries, count * 2 * sizeof(Entry), TAG);
        if (block == nullptr)
            return false;
        if (is_inner)
            std::memcpy(block, inner.data(), sizeof(inner));
        entries = static_cast<Entry*>(block);
        next = entries + count;
        end = next + count;
        return true;
    }

    std::array<Entry, 32> inner;
    Entry* entries = inner.data();
    Entry* next = entries;
    Entry* end = entries + inner.size();
};

} // namespace quillon::json
