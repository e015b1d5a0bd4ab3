// SPDX-License-Identifier: MIT
// A hash index by 32-bit key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillon {

// Finds pointers by 32-bit key in constant time, in no order.
//
// Refers to the pointers and owns none.
// Open addressing with linear probing and multiplicative hashing; at most a quarter of the slots is
// taken. No entry leaves, and null is never stored.
template <typename T>
class KeyIndex {
public:
    // The value under `key`, or null.
    T* find(std::uint32_t key) const {
        return table.empty() ? nullptr : table[position_of(key)].value;
    }

    // Makes the next `add` one that cannot fail.
    void make_room_for_one() {
        if (used * 4 < table.size())
            return;
        KeyIndex larger(table.empty() ? FIRST_BITS : bits + 1);
        for (const Slot& slot : table)
            if (slot.value != nullptr)
                larger.add(slot.value, slot.key);
        *this = std::move(larger);
    }

    // Files `value` under a key that is not taken. Call make_room_for_one before.
    void add(T* value, std::uint32_t key) {
        table[position_of(key)] = {value, key};
        ++used;
    }

    KeyIndex() = default;

private:
    struct Slot {
        T* value = nullptr;
        std::uint32_t key = 0;
    };

    static constexpr std::uint32_t FIRST_BITS = 4;

    explicit KeyIndex(std::uint32_t size_bits)
        : table(std::size_t{1} << size_bits), bits(size_bits) {}

    // The slot of `key`, or the free one where it would be.
    // Fibonacci hashing (Knuth, The Art of Computer Programming, volume 3, section 6.4): the upper
    // bits of a product with 2^32 over the golden ratio spread runs of keys evenly.
    std::size_t position_of(std::uint32_t key) const {
        constexpr std::uint32_t golden_ratio = 0x9E3779B9;
        std::size_t position = (key * golden_ratio) >> (32 - bits);
        while (table[position].value != nullptr && table[position].key != key)
            position = (position + 1) & (table.size() - 1);
        return position;
    }

    std::vector<Slot> table;
    std::size_t used = 0;
    std::uint32_t bits = FIRST_BITS;
};

} // namespace quillon
