// Operations on whole trees, none of which recurses: copy, footprint, combine.
#include "quillon/json/allocator.h"
#include "quillon/json/building.h"
#include "quillon/json/containers.h"
#include "quillon/json/stack.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace quillon {
namespace {

bool is_container(const cson_value* value) {
    return cson_value_is_array(value) || cson_value_is_object(value);
}

std::string_view key_of(const cson_kvp* pair) {
    const cson_string* key = cson_kvp_key_string(pair);
    return key != nullptr ? std::string_view(cson_string_text(key), key->length)
                          : std::string_view();
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
    return sizeof(cson_value) +
           (value->api != nullptr ? cson_kinds[value->api->kind].payload_bytes : 0);
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

// False if two pairs have the same key, or if there is no memory to tell.
bool keys_are_unique(const cson_kvp_list& list) {
    const std::size_t bytes = list.count * sizeof(void*);
    auto* sorted = static_cast<cson_kvp**>(cson_resize(nullptr, bytes, "cson_kvp_list_sorted"));
    if (sorted == nullptr)
        return false;
    cson_kvp** end = std::copy_n(list.items, list.count, sorted);
    std::sort(sorted, end,
              [](const cson_kvp* a, const cson_kvp* b) { return key_of(a) < key_of(b); });
    const bool unique = std::adjacent_find(sorted, end, [](const cson_kvp* a, const cson_kvp* b) {
                            return key_of(a) == key_of(b);
                        }) == end;
    cson_free(sorted, "cson_kvp_list_sorted");
    return unique;
}

class copier {
public:
    copier() = default;
    copier(const copier&) = delete;
    copier& operator=(const copier&) = delete;

    ~copier() {
        for (const known_key& known : known_keys)
            cson_value_release(known.copy);
    }

    // The copy, or null.
    cson_value* copy(const cson_value* source) {
        cson_value* root = begin(source);
        while (root != nullptr && !open.empty()) {
            if (!copy_next_entry()) {
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
        bool unique_keys;
    };

    // A key that was copied lately, with an owner of its own: many pairs share one.
    struct known_key {
        const cson_value* source;
        cson_value* copy;
    };

    cson_value* copy_key(const cson_value* source) {
        const auto address = reinterpret_cast<std::uintptr_t>(source);
        known_key& known = known_keys[address / sizeof(cson_value) % known_keys.size()];
        if (known.source == source)
            return known.copy;
        cson_value* made = copy_scalar(source);
        if (made == nullptr)
            return nullptr;
        cson_value_release(known.copy);
        known = {source, made};
        cson_count_owner(made);
        return made;
    }

    // Copies a scalar, or opens a container of the same capacity for its entries.
    cson_value* begin(const cson_value* source) {
        if (cson_value_is_array(source))
            return begin_container(source, cson_value_array(source)->list);
        if (cson_value_is_object(source))
            return begin_container(source, cson_value_object(source)->list);
        return copy_scalar(source);
    }

    cson_value* copy_scalar(const cson_value* source) {
        if (cson_value_is_undefined(source))
            return nullptr;
        cson_pool* small = open.empty() ? nullptr : &pool;
        switch (source->api->kind) {
        case cson_kind_null:
            return cson_value_null_constant();
        case cson_kind_boolean:
            return cson_value_from_bool(cson_value_bool(source));
        case cson_kind_integer:
            return cson_build_int(small, cson_value_int(source));
        case cson_kind_double:
            return cson_build_double(small, cson_value_double(source));
        case cson_kind_string:
            return cson_build_string(small, cson_value_text(source),
                                     cson_string_size(cson_value_string(source)));
        default:
            return nullptr;
        }
    }

    template <class List>
    cson_value* begin_container(const cson_value* source, const List& list) {
        cson_value* made = cson_build_value(&pool, source->api->kind, 0);
        if (made == nullptr)
            return nullptr;
        auto* made_list = cson_payload<List>(made);
        const bool unique = prepare(list);
        if (cson_build_reserve(&pool, made_list, list.count) < list.count ||
            !open.push({source, made, 0, unique})) {
            cson_value_release(made);
            return nullptr;
        }
        return made;
    }

    static bool prepare(const cson_value_list&) { return true; }

    static bool prepare(const cson_kvp_list& list) {
        return list.count > many_pairs && keys_are_unique(list);
    }

    bool copy_next_entry() {
        frame& top = open.top();
        const std::uint32_t index = top.next++;
        if (cson_value_is_array(top.source))
            return copy_element(cson_value_array(top.source)->list, cson_value_array(top.copy),
                                index);
        return copy_pair(cson_value_object(top.source)->list, cson_value_object(top.copy), index,
                         top.unique_keys);
    }

    bool copy_element(const cson_value_list& source, cson_array* target, std::uint32_t index) {
        if (index >= source.count) {
            target->list.count = source.count;
            open.pop();
            return true;
        }
        if (source.items[index] == nullptr)
            return true;
        cson_value* entry = begin(source.items[index]);
        if (entry == nullptr)
            return false;
        target->list.items[index] = entry;
        target->list.count = index + 1;
        cson_count_owner(entry);
        return true;
    }

    bool copy_pair(const cson_kvp_list& source, cson_object* target, std::uint32_t index,
                   bool unique_keys) {
        if (index >= source.count) {
            open.pop();
            return true;
        }
        const cson_kvp* pair = source.items[index];
        if (pair == nullptr || pair->key == nullptr)
            return true;
        cson_value* key = copy_key(pair->key);
        cson_value* member = key != nullptr ? begin(pair->value) : nullptr;
        if (member != nullptr && store(target, key, member, unique_keys))
            return true;
        cson_value_release(member);
        return false;
    }

    bool store(cson_object* target, cson_value* key, cson_value* member, bool unique_keys) {
        if (unique_keys)
            return cson_build_append(&pool, target, key, member, 6) == cson_OK;
        return cson_build_put(&pool, target, cson_value_string(key), member) == cson_OK;
    }

    cson_pool pool;
    cson_stack<frame> open;
    std::array<known_key, 64> known_keys = {};
};

// --- Combine -----------------------------------------------------------------------------------

// Two objects being combined, with the source's first `next` pairs done.
struct merge {
    cson_object* destination;
    cson_object* source;
    std::uint32_t next;
};

int begin_merge(cson_stack<merge>& open, cson_object* destination, cson_object* source) {
    if (destination == nullptr || source == nullptr || destination == source)
        return cson_ArgError;
    return open.push({destination, source, 0}) ? cson_OK : cson_AllocError;
}

int merge_pair(cson_stack<merge>& open, cson_object* destination, const cson_kvp* pair, int flags) {
    cson_string* key = cson_kvp_key_string(pair);
    if (key == nullptr || pair->value == nullptr)
        return cson_OK;
    const cson_kvp* present = cson_build_find(destination, key);
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

int merge_all(cson_stack<merge>& open, int flags) {
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
    cson_stack<entry_walk> open;
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
    cson_stack<merge> open;
    int code = begin_merge(open, destination, source);
    if (code != cson_OK)
        return code;
    // A member that is overwritten may have been what kept the source alive.
    cson_value* held = cson_value_of_object(source);
    const bool has_owner = held->refcount != 0;
    cson_count_owner(held);
    code = merge_all(open, flags);
    if (has_owner)
        cson_value_release(held);
    else
        --held->refcount;
    return code;
}

} // namespace quillon
