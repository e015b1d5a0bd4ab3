// Operations on whole trees, none of which recurses: copy, footprint, combine.
#include "quillon/json/allocator.h"
#include "quillon/json/containers.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <string_view>
#include <utility>

namespace quillon {

using namespace json;

namespace {

bool is_container(const cson_value* value) {
    return cson_value_is_array(value) || cson_value_is_object(value);
}

// The key's text; the pair must have one.
std::string_view key_text(const cson_kvp* pair) {
    return view_of(static_cast<const cson_string*>(pair->key->value));
}

// --- Footprint ---------------------------------------------------------------------------------

template <class List>
std::size_t list_bytes(const List& list) {
    return sizeof(List) + std::size_t{list.capacity} * sizeof(void*);
}

// What the value takes without what it holds.
std::size_t own_bytes(const cson_value* value) {
    if (value == nullptr || cson_value_is_shared(value))
        return 0;
    if (cson_value_is_string(value))
        return sizeof(cson_value) + sizeof(cson_string) + cson_value_string(value)->length + 1;
    if (cson_value_is_array(value))
        return sizeof(cson_value) + list_bytes(cson_value_array(value)->list);
    if (cson_value_is_object(value))
        return sizeof(cson_value) + list_bytes(cson_value_object(value)->list);
    return sizeof(cson_value) + (value->api != nullptr ? KINDS[value->api->kind].payload_bytes : 0);
}

// All that stands below a container, one entry a call: elements, or keys and members in turn.
class entry_walk {
public:
    entry_walk() = default;

    explicit entry_walk(const cson_value* value) : container(value) {}

    bool next(const cson_value*& entry) {
        if (cson_value_is_array(container)) {
            const cson_value_list& list = cson_value_array(container)->list;
            if (position == list.count)
                return false;
            entry = list.items[position++];
            return true;
        }
        const cson_kvp_list& list = cson_value_object(container)->list;
        if (position == list.count)
            return false;
        const cson_kvp* pair = list.items[position];
        const bool is_key = !key_seen;
        key_seen = is_key;
        position += is_key ? 0 : 1;
        if (pair == nullptr)
            entry = nullptr;
        else
            entry = is_key ? pair->key : pair->value;
        return true;
    }

private:
    const cson_value* container = nullptr;
    std::uint32_t position = 0;
    bool key_seen = false;
};

// --- Copy --------------------------------------------------------------------------------------

// Above this, looking every key up in the copy would take longer than sorting the keys once.
constexpr std::uint32_t many_pairs = 64;

constexpr const char* places_tag = "cson_kvp_list_places";

// The place of every pair in the copy, where pairs of one key share the first one's, and how many
// places there are. Null without memory.
std::uint32_t* places_of(const cson_kvp_list& list, std::uint32_t& place_count) {
    const std::size_t bytes = std::size_t{list.count} * 2 * sizeof(std::uint32_t);
    auto* places = static_cast<std::uint32_t*>(reallocate(nullptr, bytes, places_tag));
    if (places == nullptr)
        return nullptr;
    std::uint32_t* order = places + list.count;
    std::uint32_t* end = order + list.count;
    std::iota(order, end, 0u);
    const auto key = [&list](std::uint32_t index) { return key_text(list.items[index]); };
    std::sort(order, end, [key](std::uint32_t a, std::uint32_t b) {
        const int difference = key(a).compare(key(b));
        return difference != 0 ? difference < 0 : a < b;
    });
    std::uint32_t first = *order; // of the pairs with its key
    for (const std::uint32_t* at = order; at != end; ++at) {
        first = key(*at) == key(first) ? first : *at;
        places[*at] = first;
    }
    place_count = 0;
    for (std::uint32_t i = 0; i < list.count; ++i)
        places[i] = places[i] == i ? place_count++ : places[places[i]];
    return places;
}

// Compares only keys that fall on one of 64 bits.
bool few_keys_are_unique(const cson_kvp_list& list) {
    std::uint64_t seen = 0;
    for (std::uint32_t i = 0; i < list.count; ++i) {
        const std::string_view key = key_text(list.items[i]);
        const auto ends =
            key.empty() ? 0u : static_cast<unsigned>(key.front() * 7 + key.back() * 5);
        const std::uint64_t bit = std::uint64_t{1} << (ends + key.size()) % 64;
        const bool maybe_seen = (seen & bit) != 0;
        seen |= bit;
        if (maybe_seen && std::any_of(list.items, list.items + i, [key](const cson_kvp* earlier) {
                return key_text(earlier) == key;
            }))
            return false;
    }
    return true;
}

bool is_whole(const cson_kvp* pair) {
    return key_of(pair) != nullptr;
}

// What putting `count` pairs into a list of as many entries makes of its capacity.
std::uint32_t capacity_of_copy(std::uint32_t count) {
    return count == 1 ? 6 : std::max(count, 2 * (count - 1));
}

class copier {
public:
    copier() = default;
    copier(const copier&) = delete;
    copier& operator=(const copier&) = delete;

    ~copier() {
        for (const known_key& known : known_keys)
            cson_value_release(known.copy);
        for (; !open.empty(); open.pop())
            free(open.top().places, places_tag);
    }

    // The copy, or null.
    cson_value* copy(const cson_value* source) {
        cson_value* root = begin(source);
        while (root != nullptr && !open.empty()) {
            const bool is_array = open.top().source->api->kind == cson_kind_array;
            if (!(is_array ? copy_elements() : copy_pairs())) {
                cson_value_release(root);
                return nullptr;
            }
        }
        return root;
    }

private:
    // A container with its copy, of which `next` entries are done.
    struct frame {
        const cson_value* source;
        cson_value* copy;
        std::uint32_t next;
        bool pair_by_pair;     // every entry becomes a pair of the copy
        std::uint32_t* places; // of many pairs that don't, where there was memory for it
    };

    // A key that was copied lately, with an owner of its own: many pairs share one.
    struct known_key {
        const cson_value* source;
        cson_value* copy;
    };

    // The keys of a small object, found to differ: documents repeat a few shapes with the very same
    // keys.
    struct shape {
        std::uint32_t count = 0;
        std::array<const cson_value*, 32> keys = {};
    };

    shape& shape_like(const cson_kvp_list& list) { return shapes[list.count % shapes.size()]; }

    bool has_known_shape(const cson_kvp_list& list) {
        const shape& known = shape_like(list);
        return known.count == list.count &&
               std::equal(list.items, list.items + list.count, known.keys.begin(),
                          [](const cson_kvp* pair, const cson_value* key) {
                              return pair != nullptr && pair->key == key;
                          });
    }

    void learn_shape(const cson_kvp_list& list) {
        shape& known = shape_like(list);
        if (list.count > known.keys.size())
            return;
        known.count = list.count;
        std::transform(list.items, list.items + list.count, known.keys.begin(),
                       [](const cson_kvp* pair) { return pair->key; });
    }

    cson_value* copy_key(const cson_value* source) {
        const auto address = reinterpret_cast<std::uintptr_t>(source);
        known_key& known = known_keys[address / sizeof(cson_value) % known_keys.size()];
        if (known.source == source)
            return known.copy;
        cson_value* made = begin(source);
        if (made == nullptr)
            return nullptr;
        cson_value_release(known.copy);
        known = {source, made};
        add_owner(made);
        return made;
    }

    // Copies a scalar, or opens a container for its entries.
    cson_value* begin(const cson_value* source) {
        if (source == nullptr || source->api == nullptr)
            return nullptr;
        Pool* small = open.empty() ? nullptr : &pool;
        switch (source->api->kind) {
        case cson_kind_null:
            return cson_value_null_constant();
        case cson_kind_boolean:
            return cson_value_from_bool(source->value != nullptr);
        case cson_kind_integer:
            return build_int(small, cson_value_int(source));
        case cson_kind_double:
            return build_double(small, cson_value_double(source));
        case cson_kind_string: {
            const auto text = view_of(static_cast<const cson_string*>(source->value));
            return build_string(small, text.data(), static_cast<std::uint32_t>(text.size()));
        }
        case cson_kind_array:
            return begin_array(source, payload_of<cson_array>(source)->list);
        case cson_kind_object:
            return begin_object(source, payload_of<cson_object>(source)->list);
        default:
            return nullptr;
        }
    }

    cson_value* begin_array(const cson_value* source, const cson_value_list& list) {
        return begin_container<cson_value_list>(source, list.count, true);
    }

    cson_value* begin_object(const cson_value* source, const cson_kvp_list& list) {
        bool pair_by_pair = has_known_shape(list);
        if (!pair_by_pair) {
            const bool whole = std::all_of(list.items, list.items + list.count, is_whole);
            if (whole && list.count > many_pairs)
                return begin_wide_object(source, list);
            pair_by_pair = whole && few_keys_are_unique(list);
            if (pair_by_pair)
                learn_shape(list);
        }
        const std::uint32_t capacity =
            pair_by_pair && list.count != 0 ? capacity_of_copy(list.count) : list.count;
        return begin_container<cson_kvp_list>(source, capacity, pair_by_pair);
    }

    cson_value* begin_wide_object(const cson_value* source, const cson_kvp_list& list) {
        std::uint32_t place_count = 0;
        std::uint32_t* places = places_of(list, place_count);
        const bool pair_by_pair = place_count == list.count;
        const std::uint32_t capacity = pair_by_pair ? capacity_of_copy(list.count) : list.count;
        cson_value* made = begin_container<cson_kvp_list>(source, capacity, pair_by_pair);
        if (made == nullptr || pair_by_pair)
            free(places, places_tag);
        else
            open.top().places = places;
        return made;
    }

    template <class List>
    cson_value* begin_container(const cson_value* source, std::uint32_t capacity,
                                bool pair_by_pair) {
        cson_value* made = build_container(&pool, source->api->kind);
        if (made == nullptr)
            return nullptr;
        auto* list = payload_of<List>(made);
        if (capacity != 0)
            list->items = build_storage(&pool, list, capacity, nullptr, 0);
        if ((capacity == 0 || list->items != nullptr) &&
            open.push({source, made, 0, pair_by_pair, nullptr})) {
            list->capacity = capacity;
            return made;
        }
        cson_value_release(made);
        return nullptr;
    }

    // Both go on to the end of the container on top, or up to one within, which comes first.
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
            cson_value* entry = begin(source.items[index]);
            if (entry == nullptr)
                return false;
            target.items[index] = entry;
            add_owner(entry);
        }
        return true;
    }

    bool copy_pairs() {
        const std::size_t depth = open.size();
        const cson_kvp_list& source = payload_of<cson_object>(open.top().source)->list;
        auto* target = payload_of<cson_object>(open.top().copy);
        const bool pair_by_pair = open.top().pair_by_pair;
        std::uint32_t* places = open.top().places;
        while (open.size() == depth) {
            const std::uint32_t index = open.top().next++;
            if (index == source.count) {
                free(places, places_tag);
                open.pop();
                return true;
            }
            const cson_kvp* pair = source.items[index];
            if (pair == nullptr || pair->key == nullptr)
                continue;
            prefetch(pair, 512);
            const bool copied = places != nullptr ? place_pair(target, places[index], pair)
                                : pair_by_pair    ? add_pair(target, pair)
                                                  : put_pair(target, pair);
            if (!copied)
                return false;
        }
        return true;
    }

    bool add_pair(cson_object* target, const cson_kvp* source) {
        cson_value* key = copy_key(source->key);
        cson_kvp* pair = key != nullptr ? build_kvp(&pool, key, nullptr) : nullptr;
        if (pair == nullptr)
            return false;
        target->list.items[target->list.count++] = pair;
        add_owner(key);
        pair->value = begin(source->value);
        if (pair->value != nullptr)
            add_owner(pair->value);
        return pair->value != nullptr;
    }

    // The new member takes an old one's place, if there is one.
    bool place_pair(cson_object* target, std::uint32_t place, const cson_kvp* source) {
        if (place == target->list.count)
            return add_pair(target, source);
        cson_value* member = begin(source->value);
        if (member == nullptr)
            return false;
        add_owner(member);
        cson_value_release(std::exchange(target->list.items[place]->value, member));
        return true;
    }

    bool put_pair(cson_object* target, const cson_kvp* source) {
        cson_value* key = copy_key(source->key);
        cson_value* member = key != nullptr ? begin(source->value) : nullptr;
        if (member != nullptr &&
            cson_object_put_string(target, cson_value_string(key), member) == cson_OK)
            return true;
        cson_value_release(member);
        return false;
    }

    Pool pool;
    Stack<frame> open;
    std::array<known_key, 64> known_keys = {};
    std::array<shape, 8> shapes = {};
};

// --- Combine -----------------------------------------------------------------------------------

// Two objects being combined, with the source's first `next` pairs done.
struct merge {
    cson_object* destination;
    cson_object* source;
    std::uint32_t next;
};

int begin_merge(Stack<merge>& open, cson_object* destination, cson_object* source) {
    if (destination == nullptr || source == nullptr || destination == source)
        return cson_ArgError;
    return open.push({destination, source, 0}) ? cson_OK : cson_AllocError;
}

int merge_pair(Stack<merge>& open, cson_object* destination, const cson_kvp* pair, int flags) {
    cson_string* key = cson_kvp_key_string(pair);
    if (key == nullptr || pair->value == nullptr)
        return cson_OK;
    const cson_kvp* present = find_pair(destination, key);
    if (present == nullptr)
        return cson_object_put_string(destination, key, pair->value);
    if ((flags & cson_combine_flat) != 0)
        return (flags & cson_combine_replace) != 0
                   ? cson_object_put_string(destination, key, pair->value)
                   : cson_OK;
    if (!cson_value_is_object(present->value) || !cson_value_is_object(pair->value))
        return cson_OK;
    return begin_merge(open, cson_value_object(present->value), cson_value_object(pair->value));
}

int merge_all(Stack<merge>& open, int flags) {
    int code = cson_OK;
    while (code == cson_OK && !open.empty()) {
        merge& top = open.top();
        const cson_kvp_list& pairs = top.source->list;
        if (top.next >= pairs.count)
            open.pop();
        else
            code = merge_pair(open, top.destination, pairs.items[top.next++], flags);
    }
    return code;
}

} // namespace

cson_value* cson_value_copy(const cson_value* value) {
    copier work;
    return work.copy(value);
}

std::uint32_t cson_value_footprint(const cson_value* value) {
    Stack<entry_walk> open;
    std::size_t total = own_bytes(value);
    if (is_container(value))
        open.push(entry_walk(value));
    while (!open.empty()) {
        const cson_value* entry = nullptr;
        if (!open.top().next(entry)) {
            open.pop();
            continue;
        }
        total += own_bytes(entry);
        if (is_container(entry) && !open.push(entry_walk(entry)))
            return 0;
    }
    return static_cast<std::uint32_t>(total);
}

int cson_object_combine(cson_object* destination, cson_object* source, int flags) {
    Stack<merge> open;
    int code = begin_merge(open, destination, source);
    if (code != cson_OK)
        return code;
    // A member that is overwritten may have been what kept the source alive.
    cson_value* held = cson_value_of_object(source);
    const bool has_owner = held->refcount != 0;
    add_owner(held);
    code = merge_all(open, flags);
    if (has_owner)
        cson_value_release(held);
    else
        --held->refcount;
    return code;
}

} // namespace quillon
