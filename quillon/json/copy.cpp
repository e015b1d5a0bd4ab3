// SPDX-License-Identifier: MIT
// Deep copies, without recursion.
#include "quillon/json/key_table.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace quillon {

using namespace json;

namespace {

// The capacity that a list of as many entries comes to when so many pairs are put into it one by
// one: it grows when the last entry is about to be used.
std::uint32_t grown_capacity(std::uint32_t pairs) {
    return pairs == 1 ? 6 : std::max(pairs, 2 * (pairs - 1));
}

// An object's copy gets all its pairs when it begins, with members still to come. Pairs that repeat
// a key are merged when all members are there: the place is the first one's, the member the last's.
class Copier {
public:
    Copier() = default;
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;

    ~Copier() { free_keys(keys); }

    // The copy, or null.
    cson_value* copy(const cson_value* source) {
        cson_value* root = begin(source);
        while (root != nullptr && !open.empty()) {
            const bool is_array = open.top().source->api->kind == cson_kind_array;
            if (!(is_array ? copy_elements() : copy_members())) {
                cson_value_release(root);
                return nullptr;
            }
        }
        return root;
    }

private:
    // A container with its copy.
    struct Frame {
        const cson_value* source;
        cson_value* copy;
        std::uint32_t next;   // entry of the source
        std::uint32_t filled; // pairs of the copy that have their members
        bool repeats;         // a key is there twice
    };

    // Copies a scalar, or opens a container for its entries; null for what can't be copied.
    cson_value* begin(const cson_value* source) {
        if (source == nullptr || source->api == nullptr)
            return nullptr;
        // A scalar on its own has a block of its own: a chunk would be kept for it alone.
        Pool* small = open.empty() ? nullptr : &pool;
        switch (source->api->kind) {
        case cson_kind_null:
            return cson_value_null_constant();
        case cson_kind_boolean:
            return cson_value_from_bool(source->value != nullptr);
        case cson_kind_integer:
            return build_int(small, number_of<std::int32_t>(source));
        case cson_kind_double:
            return build_double(small, number_of<double>(source));
        case cson_kind_string:
            return copy_string(small, static_cast<const cson_string*>(source->value));
        case cson_kind_array: {
            const std::uint32_t count = payload_of<cson_array>(source)->list.count;
            return begin_container<cson_value_list>(source, count, 0);
        }
        case cson_kind_object:
            return begin_object(source, payload_of<cson_object>(source)->list);
        default:
            return nullptr;
        }
    }

    static cson_value* copy_string(Pool* pool, const cson_string* source) {
        return build_string(pool, view_of(source).data(), source->length);
    }

    template <typename List>
    cson_value* begin_container(const cson_value* source, std::uint32_t capacity,
                                std::size_t extra) {
        cson_value* made = build_filled<List>(pool, source->api->kind, capacity, extra);
        if (made == nullptr)
            return nullptr;
        auto* list = payload_of<List>(made);
        std::memset(static_cast<void*>(list->items), 0, capacity * sizeof(void*));
        if (capacity == 0)
            list->items = nullptr;
        if (open.push({source, made, 0, 0, false}))
            return made;
        cson_value_release(made);
        return nullptr;
    }

    cson_value* begin_object(const cson_value* source, const cson_kvp_list& pairs) {
        const std::uint32_t capacity = pairs.count != 0 ? grown_capacity(pairs.count) : 0;
        cson_value* made =
            begin_container<cson_kvp_list>(source, capacity, pairs.count * sizeof(cson_kvp));
        if (made == nullptr || copy_keys(pairs, payload_of<cson_object>(made)->list))
            return made;
        cson_value_release(made);
        return nullptr;
    }

    bool copy_keys(const cson_kvp_list& source, cson_kvp_list& target) {
        if (!start_keys(keys, source.count))
            return false;
        for (std::uint32_t i = 0; i < source.count; ++i)
            if (has_key(source.items[i]) && !copy_key(key_of(source.items[i]), target))
                return false;
        return true;
    }

    static bool has_key(const cson_kvp* pair) { return pair != nullptr && pair->key != nullptr; }

    // Appends a pair. Objects of one shape have the same keys, so one copied key serves them all.
    bool copy_key(const cson_string* source, cson_kvp_list& target) {
        if (source == nullptr)
            return false;
        KeyTable::Slot& slot = slot_of(keys, source);
        open.top().repeats |= holds(keys, slot);
        slot.generation = keys.generation;
        if (slot.copy == nullptr)
            slot.copy = copy_string(&pool, source);
        if (slot.copy == nullptr)
            return false;
        add_owner(slot.copy);
        auto* pairs = reinterpret_cast<cson_kvp*>(target.items + target.capacity);
        cson_kvp* pair = pairs + target.count;
        target.items[target.count++] = new (pair) cson_kvp{slot.copy, nullptr, true};
        return true;
    }

    // Both copy entries of the container on top, up to its end or to the first container among
    // them.
    bool copy_elements() {
        const std::size_t depth = open.size();
        const cson_value_list& source = payload_of<cson_array>(open.top().source)->list;
        cson_value_list& target = payload_of<cson_array>(open.top().copy)->list;
        while (open.size() == depth) {
            const std::uint32_t index = open.top().next++;
            if (index == source.count) {
                open.pop();
                return true;
            }
            target.count = index + 1;
            if (source.items[index] == nullptr)
                continue;
            prefetch(source.items[index], FETCH_DISTANCE);
            cson_value* entry = begin(source.items[index]);
            if (entry == nullptr)
                return false;
            target.items[index] = entry;
            add_owner(entry);
        }
        return true;
    }

    bool copy_members() {
        const std::size_t depth = open.size();
        const cson_kvp_list& source = payload_of<cson_object>(open.top().source)->list;
        cson_kvp_list& target = payload_of<cson_object>(open.top().copy)->list;
        while (open.size() == depth) {
            if (open.top().next == source.count) {
                end_object(source.count, target);
                return true;
            }
            const cson_kvp* pair = source.items[open.top().next++];
            if (!has_key(pair))
                continue;
            prefetch(pair, FETCH_DISTANCE);
            cson_kvp* copied = target.items[open.top().filled++];
            copied->value = begin(pair->value);
            if (copied->value == nullptr)
                return false;
            add_owner(copied->value);
        }
        return true;
    }

    void end_object(std::uint32_t source_count, cson_kvp_list& target) {
        if (open.top().repeats)
            merge_repeats(target);
        // Fewer pairs than entries: the list would not have grown.
        if (target.count != source_count)
            target.capacity = source_count;
        open.pop();
    }

    void merge_repeats(cson_kvp_list& list) {
        start_keys(keys, list.count); // has had space for them before
        std::uint32_t kept = 0;
        for (std::uint32_t i = 0; i < list.count; ++i) {
            cson_kvp* pair = list.items[i];
            KeyTable::Slot& slot = slot_of(keys, key_of(pair));
            if (holds(keys, slot)) {
                std::swap(list.items[slot.place]->value, pair->value);
                release_pair(pair);
            } else {
                slot.generation = keys.generation;
                slot.place = kept;
                list.items[kept++] = pair;
            }
        }
        std::fill(list.items + kept, list.items + list.count, nullptr);
        list.count = kept;
    }

    Pool pool;
    Stack<Frame> open;
    KeyTable keys = {};
};

} // namespace

cson_value* cson_value_copy(const cson_value* value) {
    Copier work;
    return work.copy(value);
}

} // namespace quillon
