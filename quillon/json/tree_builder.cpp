// SPDX-License-Identifier: MIT
#include "quillon/json/tree_builder.h"

#include "quillon/json/swar.h"

#include <bit>
#include <cstring>
#include <limits>
#include <new>

namespace quillon::json {
namespace {

// The first and the last bytes, up to eight of each.
std::uint64_t sample_of(const char* text, std::uint32_t length) {
    if (length >= 8)
        return load<std::uint64_t>(text) ^ std::rotl(load<std::uint64_t>(text + length - 8), 29);
    if (length >= 4)
        return load<std::uint32_t>(text) | std::uint64_t{load<std::uint32_t>(text + length - 4)}
                                               << 32;
    const auto at = [text](std::uint32_t i) {
        return std::uint64_t{static_cast<unsigned char>(text[i])};
    };
    return length != 0 ? at(0) | at(length / 2) << 8 | at(length - 1) << 16 : 0;
}

// One of `count`, a power of two, by Fibonacci hashing.
// Source: D. E. Knuth, "The Art of Computer Programming", volume 3, 6.4.
template <std::size_t count>
std::size_t slot_of(const char* text, std::uint32_t length) {
    constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15; // of 2^64
    const std::uint64_t product = (sample_of(text, length) + length) * golden_ratio;
    return static_cast<std::size_t>(product >> (65 - std::bit_width(count)));
}

bool has_text(const cson_value* string, const char* text, std::uint32_t length) {
    const auto* held = payload_of<cson_string>(string);
    return held->length == length && same_bytes(held + 1, text, length);
}

// The capacity of a list that grew one entry before it was full up to `count` entries; 0 where that
// is more than a list can have.
std::uint32_t grown_capacity(std::size_t count, std::uint32_t first) {
    std::uint64_t capacity = first;
    while (capacity <= count)
        capacity = (capacity - 1) * 2;
    return capacity <= std::numeric_limits<std::uint32_t>::max()
               ? static_cast<std::uint32_t>(capacity)
               : 0;
}

// Makes a container for `count` entries, which are still to be written, with nulls after them.
template <typename List, std::uint32_t first>
cson_value* build_grown(Pool& pool, std::uint32_t kind, std::size_t count, std::size_t extra) {
    const std::uint32_t capacity = grown_capacity(count, first);
    cson_value* value = capacity != 0 ? build_filled<List>(pool, kind, capacity, extra) : nullptr;
    if (value == nullptr)
        return nullptr;
    auto* list = payload_of<List>(value);
    list->count = static_cast<std::uint32_t>(count);
    // Most containers are small, and a size that is known takes no call.
    std::memset(static_cast<void*>(list->items), 0, first * sizeof(void*));
    if (capacity != first)
        std::memset(static_cast<void*>(list->items + count), 0, (capacity - count) * sizeof(void*));
    return value;
}

} // namespace

TreeBuilder::~TreeBuilder() {
    for (; !entries.empty(); entries.pop())
        cson_value_release(entries.top());
}

// A key that the tree holds already is used again: many objects have the same member names.
int TreeBuilder::key(const char* text, std::uint32_t length) {
    cson_value*& known = known_keys[slot_of<KNOWN_KEYS>(text, length)];
    const bool is_known = known != nullptr && has_text(known, text, length);
    cson_value* used = is_known ? known : build_string(&pool, text, length);
    const int code = push(used);
    if (code != cson_OK)
        return code;
    ++key_count;
    if (!cson_value_is_shared(used))
        known = used;
    return cson_OK;
}

cson_value* TreeBuilder::make_array(std::size_t first) {
    const std::size_t count = entries.size() - first;
    if (count == 0)
        return build_container(&pool, cson_kind_array);
    cson_value* value = build_grown<cson_value_list, 7>(pool, cson_kind_array, count, 0);
    if (value != nullptr)
        copy_bytes(payload_of<cson_array>(value)->list.items, entries.from(first),
                   count * sizeof(void*));
    return value;
}

cson_value* TreeBuilder::make_object(std::size_t first) {
    const std::size_t count = (entries.size() - first) / 2;
    if (count == 0)
        return build_container(&pool, cson_kind_object);
    cson_value* value =
        build_grown<cson_kvp_list, 5>(pool, cson_kind_object, count, count * sizeof(cson_kvp));
    if (value == nullptr)
        return nullptr;
    auto& list = payload_of<cson_object>(value)->list;
    auto* pairs = reinterpret_cast<cson_kvp*>(list.items + list.capacity);
    cson_value* const* members = entries.from(first);
    for (std::size_t i = 0; i < count; ++i)
        list.items[i] = new (pairs + i) cson_kvp{members[2 * i], members[2 * i + 1], true};
    return value;
}

cson_value* TreeBuilder::take_root() {
    if (entries.empty())
        return nullptr;
    cson_value* root = entries.top();
    entries.pop();
    root->refcount = 0;
    return root;
}

} // namespace quillon::json
