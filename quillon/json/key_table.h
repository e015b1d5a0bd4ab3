// A scratch table from the keys of one object to their places in its list.
#pragma once

#include "quillon/json/record.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon::json {

// Open addressing with linear probing, at most half full. Raising the generation forgets all keys.
//
// A plain record, so that a stack can hold it: `free_keys` frees its memory.
struct KeyTable {
    struct Slot {
        const cson_string* key;
        cson_value* copy; // of the key, where keys are copied; outlasts the generation
        std::uint64_t generation;
        std::uint32_t place;
    };

    Slot* slots;
    std::size_t capacity;
    std::size_t mask; // of the slots in use, so that small objects stay within a few cache lines
    std::uint64_t generation;
};

inline void free_keys(KeyTable& table) {
    free(table.slots, "cson_key_table");
    table = {};
}

// Empties the table, with space for `count` keys; false without memory.
inline bool start_keys(KeyTable& table, std::size_t count) {
    const std::size_t wanted = std::bit_ceil(std::max<std::size_t>(count, 32)) * 2;
    if (wanted > table.capacity) {
        free_keys(table);
        const std::size_t bytes = wanted * sizeof(KeyTable::Slot);
        table.slots = static_cast<KeyTable::Slot*>(reallocate(nullptr, bytes, "cson_key_table"));
        if (table.slots == nullptr)
            return false;
        std::memset(table.slots, 0, bytes);
        table.capacity = wanted;
    }
    table.mask = wanted - 1;
    ++table.generation;
    return true;
}

// Eight bytes at a time by Fibonacci hashing (Knuth, The Art of Computer Programming, 6.4). The last
// load may begin before the text: there are the string's length and its record.
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

// The slot that holds the key, or else a free one for it.
inline KeyTable::Slot& slot_of(const KeyTable& table, const cson_string* key) {
    for (std::size_t i = hash_of(key) & table.mask;; i = (i + 1) & table.mask) {
        KeyTable::Slot& slot = table.slots[i];
        if (!holds(table, slot) || slot.key == key || view_of(slot.key) == view_of(key))
            return slot;
    }
}

} // namespace quillon::json
