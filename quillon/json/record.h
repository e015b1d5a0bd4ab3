// SPDX-License-Identifier: MIT
// Building values and containers, in memory of a pool or in blocks of their own.
#pragma once

#include "quillon/json/allocator.h"
#include "quillon/json/containers.h"
#include "quillon/json/pool.h"
#include "quillon/json/swar.h"
#include "quillon/json/value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

namespace quillon::json {

struct KindInfo {
    cson_value_api api;
    std::uint32_t payload_bytes;
    const char* tag;
};

extern const std::array<KindInfo, 8> KINDS; // by kind id

inline constexpr const char* KVP_TAG = "cson_kvp";

// The typed payload, also of a record whose `value` is in use for something else.
template <typename Payload>
Payload* payload_of(cson_value* value) {
    return reinterpret_cast<Payload*>(value + 1);
}

template <typename Payload>
const Payload* payload_of(const cson_value* value) {
    return reinterpret_cast<const Payload*>(value + 1);
}

// The number of an integer or double. The shared zeros have no payload.
template <typename Number>
Number number_of(const cson_value* value) {
    return value->value != nullptr ? *static_cast<const Number*>(value->value) : Number{0};
}

inline bool has_kind(const cson_value* value, std::uint32_t kind) {
    return value != nullptr && value->api != nullptr && value->api->kind == kind;
}

inline bool is_container(const cson_value* value) {
    return has_kind(value, cson_kind_array) || has_kind(value, cson_kind_object);
}

// The text, zero bytes included; the string must not be null.
inline std::string_view view_of(const cson_string* string) {
    return {reinterpret_cast<const char*>(string + 1), string->length};
}

// The pair's key; null for a null pair, and where the key is no string.
inline const cson_string* key_of(const cson_kvp* pair) {
    return pair != nullptr && has_kind(pair->key, cson_kind_string)
               ? static_cast<const cson_string*>(pair->key->value)
               : nullptr;
}

inline const char* tag_of(const cson_value_list*) {
    return "cson_value_list_reserve";
}

inline const char* tag_of(const cson_kvp_list*) {
    return "cson_kvp_list_reserve";
}

// A value whose payload of `bytes` bytes is still to be written, in a block of the pool or, for a
// null pool, of its own. Null without memory.
inline cson_value* build_record(Pool* pool, std::uint32_t kind, std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(cson_value))
        return nullptr;
    std::uint32_t chunk_offset = 0;
    bytes += sizeof(cson_value);
    void* block = pool != nullptr ? pool->allocate(bytes, KINDS[kind].tag, chunk_offset)
                                  : reallocate(nullptr, bytes, KINDS[kind].tag);
    if (block == nullptr)
        return nullptr;
    auto* value = static_cast<cson_value*>(block);
    return new (block) cson_value{&KINDS[kind].api, value + 1, 0, chunk_offset};
}

// An empty array or object, or null.
inline cson_value* build_container(Pool* pool, std::uint32_t kind) {
    static_assert(sizeof(cson_array) == sizeof(cson_object));
    cson_value* value = build_record(pool, kind, sizeof(cson_array));
    if (value != nullptr)
        std::memset(value->value, 0, sizeof(cson_array));
    return value;
}

inline cson_value* build_string(Pool* pool, const char* text, std::uint32_t length) {
    if (text == nullptr || length == 0 || *text == 0)
        return &shared_constants.empty_string;
    // One more would not fit into the 32 bits of extra bytes that a value can have.
    if (length == std::numeric_limits<std::uint32_t>::max())
        return nullptr;
    const std::size_t bytes = sizeof(cson_string) + 1 + length;
    cson_value* value = build_record(pool, cson_kind_string, bytes);
    if (value == nullptr)
        return nullptr;
    auto* string = payload_of<cson_string>(value);
    auto* own_text = reinterpret_cast<char*>(string + 1);
    string->length = length;
    copy_bytes(own_text, text, length);
    own_text[length] = 0;
    return value;
}

// An integer or a double; `zero` is the shared constant.
template <typename Number>
cson_value* build_number(Pool* pool, std::uint32_t kind, Number number, cson_value* zero) {
    if (number == 0)
        return zero;
    cson_value* value = build_record(pool, kind, sizeof(number));
    if (value != nullptr)
        *payload_of<Number>(value) = number;
    return value;
}

inline cson_value* build_int(Pool* pool, std::int32_t number) {
    return build_number(pool, cson_kind_integer, number, &shared_constants.zero);
}

inline cson_value* build_double(Pool* pool, double number) {
    return build_number(pool, cson_kind_double, number, &shared_constants.double_zero);
}

// A container with a list of `capacity` entries that are still to be written, in one block with
// `extra` bytes after them; or null.
template <typename List>
cson_value* build_filled(Pool& pool, std::uint32_t kind, std::uint32_t capacity,
                         std::size_t extra) {
    cson_value* value = build_record(&pool, kind, sizeof(List) + capacity * sizeof(void*) + extra);
    if (value != nullptr) {
        auto* list = new (value->value) List;
        list->items = reinterpret_cast<decltype(list->items)>(list + 1);
        list->capacity = capacity;
    }
    return value;
}

// True if the entries are in the block of their container, directly after the list.
template <typename List>
bool has_inner_storage(const List* list) {
    return static_cast<const void*>(list->items) == list + 1;
}

template <typename List>
void free_storage(List* list) {
    if (!has_inner_storage(list))
        free(list->items, tag_of(list));
    *list = {};
}

// Grows a list for a push. The capacity of an empty list becomes `first`; one entry before a list
// is full, twice its count; a full list gets one entry more. False without memory.
template <typename List>
bool grow_for_one(List* list, std::uint32_t first, std::uint32_t (*reserve)(List*, std::uint32_t)) {
    const std::uint64_t count = list->count;
    if (count + 1 < list->capacity)
        return true;
    const bool is_full = list->capacity != 0 && count == list->capacity;
    const std::uint64_t grown = count == 0 ? first : 2 * count;
    const std::uint64_t wanted = is_full ? count + 1 : grown;
    return wanted <= std::numeric_limits<std::uint32_t>::max() &&
           reserve(list, static_cast<std::uint32_t>(wanted)) >= wanted;
}

// False once the reference count is at its largest.
inline bool can_own(const cson_value* value) {
    return value->refcount != std::numeric_limits<std::uint32_t>::max();
}

// Counts one reference more, except of a shared constant.
inline void add_owner(cson_value* value) {
    if (!cson_value_is_shared(value))
        ++value->refcount;
}

// Frees a pair, without its references, unless it is in the block of its object.
inline void free_pair(cson_kvp* pair) {
    if (!pair->is_inner)
        free(pair, KVP_TAG);
}

// Releases key and member, and frees the pair.
void release_pair(cson_kvp* pair);

// The first pair with this key, which here may be empty, or null.
cson_kvp* find_pair(const cson_object* object, std::string_view key);

// Stores a member whose key the object does not hold (first) or holds (second), with their
// references. RangeError where a reference count is at its largest; then nothing has changed.
int append_pair(cson_object* object, cson_value* key, cson_value* value);
int replace_pair(cson_kvp* pair, cson_value* key, cson_value* value);

} // namespace quillon::json
