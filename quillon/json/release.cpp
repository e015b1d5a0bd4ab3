// SPDX-License-Identifier: MIT
// Releasing values, and the table of kinds, which holds how each is emptied.
#include "quillon/json/record.h"

namespace quillon {

using namespace json;

namespace {

void make_undefined(cson_value* value) {
    value->api = &KINDS[cson_kind_undefined].api;
    value->value = nullptr;
}

void free_record(cson_value* value) {
    free(value, value->chunk_offset, "cson_value::refcount=0");
}

// Frees whole trees without recursion and without memory of its own, depth first: the containers
// on the way down are chained through their `value`, which nobody needs any more. Each releases its
// entries from the last to the first.
class ReleaseQueue {
public:
    // Removes one reference and returns how many are left. A container without any waits for
    // `drain`.
    std::uint32_t drop(cson_value* value) {
        if (value == nullptr || cson_value_is_shared(value))
            return 0;
        if (value->refcount > 1)
            return --value->refcount;
        if (is_container(value)) {
            value->value = innermost;
            innermost = value;
        } else {
            free_record(value);
        }
        return 0;
    }

    // What an entry of a list refers to.
    struct References {
        cson_value* key;
        cson_value* value;
    };

    static References take_apart(cson_value* element) { return {nullptr, element}; }

    static References take_apart(cson_kvp* pair) {
        if (pair == nullptr)
            return {};
        const References references = {pair->key, pair->value};
        free_pair(pair);
        return references;
    }

    // Takes the last entry, which must be there, off a list.
    template <typename List>
    static References take_last(List& list) {
        auto* entry = list.items[--list.count];
        prefetch(entry, -FETCH_DISTANCE);
        return take_apart(entry);
    }

    void drop(References references) {
        drop(references.key);
        drop(references.value);
    }

    void drain() {
        while (innermost != nullptr) {
            if (innermost->api->kind == cson_kind_array)
                empty(payload_of<cson_array>(innermost)->list);
            else
                empty(payload_of<cson_object>(innermost)->list);
        }
    }

private:
    // Drops entries of the innermost container until one of them is a container to be freed, which
    // is then the innermost. A container is freed before its last entry, so that a chain of
    // containers with one entry each is walked only once.
    template <typename List>
    void empty(List& list) {
        cson_value* container = innermost;
        while (list.count > 1 && innermost == container)
            drop(take_last(list));
        if (innermost != container)
            return;
        const References last = list.count != 0 ? take_last(list) : References{};
        innermost = static_cast<cson_value*>(container->value);
        free_storage(&list);
        free_record(container);
        drop(last);
    }

    cson_value* innermost = nullptr;
};

template <typename Container>
void clean(cson_value* value) {
    auto& list = payload_of<Container>(value)->list;
    ReleaseQueue queue;
    while (list.count != 0) {
        queue.drop(ReleaseQueue::take_last(list));
        queue.drain();
    }
    free_storage(&list);
    make_undefined(value);
}

} // namespace

constinit const std::array<KindInfo, 8> json::KINDS = {{
    {{cson_kind_undefined, make_undefined}, 0, ""},
    {{cson_kind_null, make_undefined}, 0, ""},
    {{cson_kind_boolean, make_undefined}, 0, ""},
    {{cson_kind_integer, make_undefined}, sizeof(std::int32_t), "cson_value:int"},
    {{cson_kind_double, make_undefined}, sizeof(double), "cson_value:double"},
    {{cson_kind_string, make_undefined}, sizeof(cson_string), "cson_value:string"},
    {{cson_kind_array, clean<cson_array>}, sizeof(cson_array), "cson_value:array"},
    {{cson_kind_object, clean<cson_object>}, sizeof(cson_object), "cson_value:object"},
}};

int cson_value_retain(cson_value* value) {
    if (value == nullptr)
        return cson_ArgError;
    if (!can_own(value))
        return cson_RangeError;
    add_owner(value);
    return cson_OK;
}

std::uint32_t cson_value_release(cson_value* value) {
    ReleaseQueue queue;
    const std::uint32_t left = queue.drop(value);
    queue.drain();
    return left;
}

void json::release_pair(cson_kvp* pair) {
    ReleaseQueue queue;
    queue.drop(ReleaseQueue::take_apart(pair));
    queue.drain();
}

void cson_value_clear(cson_value* value) {
    if (value == nullptr || value->api == nullptr || cson_value_is_shared(value))
        return;
    if (value->api->cleanup != nullptr)
        value->api->cleanup(value);
}

void cson_release_string(cson_string* string) {
    cson_value_release(cson_value_of_string(string));
}

void cson_release_array(cson_array* array) {
    cson_value_release(cson_value_of_array(array));
}

void cson_release_object(cson_object* object) {
    cson_value_release(cson_value_of_object(object));
}

} // namespace quillon
