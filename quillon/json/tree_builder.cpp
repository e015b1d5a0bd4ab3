#include "quillon/json/tree_builder.h"

#include "quillon/json/swar.h"

#include <bit>
#include <utility>

namespace quillon {

using namespace json;

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

// One of `Count`, a power of two, by a multiplicative hash.
template <std::size_t Count>
std::size_t slot_of(const char* text, std::uint32_t length) {
    constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
    return (sample_of(text, length) + length) * golden_ratio >> (65 - std::bit_width(Count));
}

bool has_text(const cson_value* string, const char* text, std::uint32_t length) {
    const auto* held = payload_of<cson_string>(string);
    return held->length == length && same_bytes(held + 1, text, length);
}

} // namespace

cson_tree_builder::~cson_tree_builder() {
    for (; !open.empty(); open.pop())
        drop_entries(open.top());
    cson_value_release(root);
}

// Frees what waits for the list of a container; the container itself is one of its parent's.
void cson_tree_builder::drop_entries(const open_container& container) {
    const bool is_array = container.value->api->kind == cson_kind_array;
    for (; entries.size() > container.first; entries.pop()) {
        if (is_array) {
            cson_value_release(static_cast<cson_value*>(entries.top()));
            continue;
        }
        auto* pair = static_cast<cson_kvp*>(entries.top());
        cson_value_release(pair->key);
        cson_value_release(pair->value);
        free(pair, pair->chunk_offset, KVP_TAG);
    }
}

int cson_tree_builder::begin_root(cson_value* container) {
    if (container == nullptr)
        return cson_AllocError;
    root = container;
    add_owner(container);
    ++value_count;
    return cson_OK;
}

// The string is made anew unless the tree holds it already: members of many objects share a key.
int cson_tree_builder::key(const char* text, std::uint32_t length) {
    cson_value*& known = known_keys[slot_of<known_key_count>(text, length)];
    if (known != nullptr && has_text(known, text, length))
        return file_key(known);
    cson_value* made = build_string(&pool, text, length);
    if (!cson_value_is_shared(made))
        known = made;
    return file_key(made);
}

int cson_tree_builder::file_key(cson_value* value) {
    if (value == nullptr)
        return cson_AllocError;
    cson_kvp* pair = build_kvp(&pool, value, nullptr);
    if (pair != nullptr && entries.push(pair)) {
        add_owner(value);
        waiting = pair;
        ++key_count;
        return cson_OK;
    }
    if (pair != nullptr)
        free(pair, pair->chunk_offset, KVP_TAG);
    if (value->refcount == 0)
        cson_value_release(value);
    return cson_AllocError;
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
