// SPDX-License-Identifier: MIT
// A scratch table from the keys of one object to their places in its list.
#pragma once

#include "quillon/json/record.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon::json {

// Open addressing with linear probing, at most half full. A slot keeps its key while the table
// lasts; its generation tells whether the current object has that key.
//
// A plain record, so that a stack can hold it: `free_keys` frees its memory.
struct KeyTable {
    struct Slot {
        const cson_string* key;
        cson_value* copy; // of the key, where keys are copied
        std::uint64_t generation;
        std::uint32_t place;
        std::uint32_t follower; // index of the slot that was looked up next
    };

    Slot* slots;
    std::size_t capacity;
    std::size_t used;
    std::size_t last; // index of the slot that was looked up
    std::uint64_t generation;
};

inline void free_keys(KeyTable& table) {
    free(table.slots, "cson_key_table");
    table = {};
}

// Starts an object of up to `count` keys; false without memory.
inline bool start_keys(KeyTable& table, std::size_t count) {
    constexpr std::size_t small = 1024; // up to here the table grows for the keys of many objects
    ++table.generation;
    if (table.slots != nullptr && table.used + count <= table.capacity / 2)
        return true;
    const std::size_t wanted = std::max(std::bit_ceil(std::max<std::size_t>(count, 32)) * 2,
                                        std::min(table.capacity * 4, small));
    if (table.slots == nullptr || wanted > table.capacity) {
        free_keys(table);
        table.slots = static_cast<KeyTable::Slot*>(
            reallocate(nullptr, wanted * sizeof(KeyTable::Slot), "cson_key_table"));
        if (table.slots == nullptr)
            return false;
        table.capacity = wanted;
        table.generation = 1;
    }
    std::fill_n(table.slots, table.capacity, KeyTable::Slot{});
    table.used = 0;
    table.last = 0;
    return true;
}

// Eight bytes at a time by Fibonacci hashing (Knuth, The Art of Computer Programming, 6.4). The
// last load may begin before the text: there are the string's length and its record.
inline std::size_t hash_of(const cson_string* key) {
    constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
    const auto mixed = [](std::uint64_t bits) {
        const std::uint64_t product = bits * golden_ratio;
        return product ^ product >> 32;
    };
    const auto* at = reinterpret_cast<const unsigned char*>(key + 1);
    const unsigned char* end = at + key->length;
    std::uint64_t hash = key->length;
    for (; end - at >= 8; at += 8)
        hash = mixed(hash ^ load_text(at));
    if (at != end)
        hash = mixed(hash ^ load_text(end - 8) >> 8 * (8 - (end - at)));
    return static_cast<std::size_t>(hash);
}

inline bool holds(const KeyTable& table, const KeyTable::Slot& slot) {
    return slot.generation == table.generation;
}

// The key's slot. Objects of one shape have the same keys in the same order, so the one that
// followed before is tried first.
inline KeyTable::Slot& slot_of(KeyTable& table, const cson_string* key) {
    std::uint32_t& follower = table.slots[table.last].follower;
    if (table.slots[follower].key != key) {
        const std::size_t mask = table.capacity - 1;
        std::size_t i = hash_of(key) & mask;
        while (table.slots[i].key != nullptr && view_of(table.slots[i].key) != view_of(key))
            i = (i + 1) & mask;
        if (table.slots[i].key == nullptr) {
            table.slots[i].key = key;
            ++table.used;
        }
        follower = static_cast<std::uint32_t>(i);
    }
    table.last = follower;
    return table.slots[table.last];
}

} // namespace quillon::json
