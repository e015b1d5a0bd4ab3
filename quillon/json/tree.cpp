// SPDX-License-Identifier: MIT
// Operations on whole trees, none of which recurses: footprint and combining.
#include "quillon/json/key_table.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"

namespace quillon {

using namespace json;

namespace {

// The bytes of a value without those of its entries.
std::size_t own_bytes(const cson_value* value) {
    if (value == nullptr || cson_value_is_shared(value))
        return 0;
    const std::uint32_t kind = value->api != nullptr ? value->api->kind : cson_kind_undefined;
    const std::size_t record = sizeof(cson_value) + KINDS[kind].payload_bytes;
    switch (kind) {
    case cson_kind_string:
        return record + payload_of<cson_string>(value)->length + 1;
    case cson_kind_array:
        return record + std::size_t{payload_of<cson_array>(value)->list.capacity} * sizeof(void*);
    case cson_kind_object:
        return record + std::size_t{payload_of<cson_object>(value)->list.capacity} * sizeof(void*);
    default:
        return record;
    }
}

// Adds up values; containers wait on a stack for their entries.
class Footprint {
public:
    // False without memory.
    bool add(const cson_value* value) {
        total += own_bytes(value);
        return !is_container(value) || open.push(value);
    }

    bool add_entries() {
        bool added = true;
        while (!open.empty() && added) {
            const cson_value* container = open.top();
            open.pop();
            added = container->api->kind == cson_kind_array
                        ? add_all(payload_of<cson_array>(container)->list)
                        : add_all(payload_of<cson_object>(container)->list);
        }
        return added;
    }

    std::size_t total = 0;

private:
    bool add(const cson_kvp* pair) {
        return pair == nullptr || (add(pair->key) && add(pair->value));
    }

    template <typename List>
    bool add_all(const List& list) {
        for (std::uint32_t i = 0; i < list.count; ++i)
            if (!add(list.items[i]))
                return false;
        return true;
    }

    Stack<const cson_value*> open;
};

// Combines two objects, and depth first those that are members of both.
class Combination {
public:
    explicit Combination(int used_flags) : flags(used_flags) {}

    Combination(const Combination&) = delete;
    Combination& operator=(const Combination&) = delete;

    ~Combination() {
        for (; !open.empty(); open.pop())
            free_keys(open.top().keys);
    }

    int begin(cson_object* destination, cson_object* source) {
        if (destination == nullptr || source == nullptr || destination == source)
            return cson_ArgError;
        if (!open.push({destination, source, 0, 0, {}}))
            return cson_AllocError;
        const bool is_ready = source->list.count <= MANY_PAIRS || index(open.top());
        return is_ready ? cson_OK : cson_AllocError;
    }

    int run() {
        int code = cson_OK;
        while (code == cson_OK && !open.empty())
            code = merge_next();
        return code;
    }

private:
    // Above this a table costs less than a walk along the destination for each pair.
    static constexpr std::uint32_t MANY_PAIRS = 64;

    struct Merge {
        cson_object* destination;
        cson_object* source;
        std::uint32_t next;    // pair of the source
        std::uint32_t indexed; // pairs of the source that `keys` has space for
        KeyTable keys;         // of the destination
    };

    static bool index(Merge& merge) {
        const cson_kvp_list& list = merge.destination->list;
        merge.indexed = merge.source->list.count;
        if (!start_keys(merge.keys, std::size_t{list.count} + merge.indexed))
            return false;
        for (std::uint32_t i = 0; i < list.count; ++i) {
            const cson_string* key = key_of(list.items[i]);
            KeyTable::Slot* slot = key != nullptr ? &slot_of(merge.keys, key) : nullptr;
            if (slot != nullptr && !holds(merge.keys, *slot)) {
                slot->generation = merge.keys.generation;
                slot->place = i;
            }
        }
        return true;
    }

    // The destination's pair with the key, or null. A source that grows while it is being combined,
    // as it is itself a member below the destination, has pairs that the table has no space for.
    static cson_kvp* find(Merge& merge, const cson_string* key, KeyTable::Slot*& slot) {
        if (merge.next > merge.indexed)
            return find_pair(merge.destination, view_of(key));
        slot = &slot_of(merge.keys, key);
        return holds(merge.keys, *slot) ? merge.destination->list.items[slot->place] : nullptr;
    }

    int merge_next() {
        Merge& top = open.top();
        if (top.next >= top.source->list.count) {
            free_keys(top.keys);
            open.pop();
            return cson_OK;
        }
        const cson_kvp* pair = top.source->list.items[top.next++];
        const cson_string* key = key_of(pair);
        if (key == nullptr || pair->value == nullptr)
            return cson_OK;
        KeyTable::Slot* slot = nullptr;
        cson_kvp* present = find(top, key, slot);
        if (present != nullptr && (flags & cson_combine_flat) == 0)
            return begin_member(present->value, pair->value);
        if (present != nullptr && (flags & cson_combine_replace) == 0)
            return cson_OK;
        const int code = present != nullptr ? replace_pair(present, pair->key, pair->value)
                                            : append_pair(top.destination, pair->key, pair->value);
        if (slot == nullptr || code != cson_OK)
            return code;
        slot->key = key; // of the replaced pair as well, whose own may be gone
        slot->generation = top.keys.generation;
        slot->place = present != nullptr ? slot->place : top.destination->list.count - 1;
        return code;
    }

    int begin_member(cson_value* destination, cson_value* source) {
        if (!cson_value_is_object(destination) || !cson_value_is_object(source))
            return cson_OK;
        return begin(cson_value_object(destination), cson_value_object(source));
    }

    Stack<Merge> open;
    int flags;
};

} // namespace

std::uint32_t cson_value_footprint(const cson_value* value) {
    Footprint footprint;
    const bool complete = footprint.add(value) && footprint.add_entries();
    return complete ? static_cast<std::uint32_t>(footprint.total) : 0;
}

int cson_object_combine(cson_object* destination, cson_object* source, int flags) {
    Combination work(flags);
    const int begin_code = work.begin(destination, source);
    if (begin_code != cson_OK)
        return begin_code;
    // A member that is overwritten may have been what kept the source alive.
    cson_value* held = cson_value_of_object(source);
    if (!can_own(held))
        return cson_RangeError;
    const bool has_owner = held->refcount++ != 0;
    const int code = work.run();
    if (has_owner)
        cson_value_release(held);
    else
        --held->refcount;
    return code;
}

} // namespace quillon
