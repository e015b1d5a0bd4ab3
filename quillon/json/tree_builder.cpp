#include "quillon/json/tree_builder.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quillon {
namespace {

// What a list that grows one entry before it is full has come to with `count` entries, 0 where that
// is more than a list can have.
std::uint32_t grown_capacity(std::size_t count, std::uint32_t first) {
    std::uint64_t capacity = first;
    while (capacity <= count)
        capacity = (capacity - 1) * 2;
    return capacity <= std::numeric_limits<std::uint32_t>::max()
               ? static_cast<std::uint32_t>(capacity)
               : 0;
}

template <class List>
bool reserve_grown(cson_pool& pool, List* list, std::size_t count, std::uint32_t first) {
    const std::uint32_t capacity = grown_capacity(count, first);
    return capacity != 0 && cson_build_reserve(&pool, list, capacity) == capacity;
}

bool has_text(const cson_value* string, const char* text, std::uint32_t length) {
    const auto* held = cson_payload<cson_string>(string);
    return held->length == length && std::memcmp(held + 1, text, length) == 0;
}

std::size_t hash_of(const char* text, std::uint32_t length) {
    const auto at = [text](std::uint32_t i) { return static_cast<unsigned char>(text[i]); };
    return length != 0 ? length + at(0) * 3u + at(length / 2) * 7u + at(length - 1) * 31u : 0;
}

} // namespace

cson_tree_builder::~cson_tree_builder() {
    for (; !entries.empty(); entries.pop())
        cson_value_release(entries.top());
    for (; !open.empty(); open.pop())
        cson_value_release(open.top().value);
    cson_value_release(root);
}

int cson_tree_builder::begin_container(std::uint32_t kind) {
    cson_value* container = cson_build_value(&pool, kind, 0);
    if (container == nullptr)
        return cson_AllocError;
    if (root != nullptr) {
        const int code = add(container);
        if (code != cson_OK)
            return code;
    } else {
        root = container;
        cson_count_owner(container);
        ++value_count;
    }
    if (!open.push({container, entries.size()}))
        return cson_AllocError;
    cson_count_owner(container);
    return cson_OK;
}

int cson_tree_builder::end_container() {
    if (open.empty())
        return cson_RangeError;
    const auto [container, first] = open.top();
    const int code = container->api->kind == cson_kind_array
                         ? fill(&cson_payload<cson_array>(container)->list, first)
                         : fill(&cson_payload<cson_object>(container)->list, first);
    if (code != cson_OK)
        return code;
    entries.shrink(first);
    open.pop();
    cson_value_release(container);
    return cson_OK;
}

int cson_tree_builder::fill(cson_value_list* list, std::size_t first) {
    const std::size_t count = entries.size() - first;
    if (count == 0)
        return cson_OK;
    if (!reserve_grown(pool, list, count, 7))
        return cson_AllocError;
    std::copy_n(entries.from(first), count, list->items);
    list->count = static_cast<std::uint32_t>(count);
    return cson_OK;
}

int cson_tree_builder::fill(cson_kvp_list* list, std::size_t first) {
    const std::size_t count = (entries.size() - first) / 2;
    if (count == 0)
        return cson_OK;
    if (!reserve_grown(pool, list, count, 5))
        return cson_AllocError;
    cson_value** entry = entries.from(first);
    for (std::size_t i = 0; i < count; ++i) {
        cson_kvp* pair = cson_build_kvp(&pool);
        if (pair == nullptr)
            return cson_AllocError;
        pair->key = std::exchange(*entry++, nullptr);
        pair->value = std::exchange(*entry++, nullptr);
        list->items[list->count++] = pair;
    }
    return cson_OK;
}

int cson_tree_builder::key(const char* text, std::uint32_t length) {
    cson_value* value = key_value(text, length);
    if (value == nullptr)
        return cson_AllocError;
    const int code = file(value);
    if (code == cson_OK)
        ++key_count;
    else if (value->refcount == 0)
        cson_value_release(value);
    return code;
}

// The string is made anew unless the tree holds it already: members of many objects share a key.
cson_value* cson_tree_builder::key_value(const char* text, std::uint32_t length) {
    cson_value*& known = known_keys[hash_of(text, length) % known_keys.size()];
    if (known != nullptr && has_text(known, text, length))
        return known;
    cson_value* made = cson_build_string(&pool, text, length);
    if (!cson_value_is_shared(made))
        known = made;
    return made;
}

int cson_tree_builder::handle(int event, const cson_push_data* data) {
    switch (event) {
    case cson_event_array_begins:
        return begin_container(cson_kind_array);
    case cson_event_object_begins:
        return begin_container(cson_kind_object);
    case cson_event_array_ends:
    case cson_event_object_ends:
        return end_container();
    case cson_event_integer:
        return integer(data->integer);
    case cson_event_float:
        return number(data->number);
    case cson_event_string:
        return string(data->text, data->length);
    case cson_event_null:
        return constant(cson_value_null_constant());
    case cson_event_true:
        return constant(cson_value_true());
    case cson_event_false:
        return constant(cson_value_false());
    case cson_event_key:
        return key(data->text, data->length);
    default:
        return cson_InternalError;
    }
}

int cson_tree_builder::on_event(void* context, int event, const cson_push_data* data) {
    auto& builder = *static_cast<cson_tree_builder*>(context);
    builder.error = builder.handle(event, data);
    return builder.error == cson_OK ? 1 : 0;
}

cson_value* cson_tree_builder::take_root() {
    cson_value* taken = std::exchange(root, nullptr);
    if (taken != nullptr)
        taken->refcount = 0;
    return taken;
}

} // namespace quillon
