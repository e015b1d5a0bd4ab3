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

// Precedes a list's entries in a block of their own.
struct StorageHeader {
    std::uint32_t chunk_offset; // as in cson_value
    std::uint32_t unused;       // keeps the entries aligned
};

inline const char* tag_of(const cson_value_list*) {
    return "cson_value_list_reserve";
}

inline const char* tag_of(const cson_kvp_list*) {
    return "cson_kvp_list_reserve";
}

// Memory from the pool, or for a null pool a block of its own; null without memory.
inline void* allocate(Pool* pool, std::size_t bytes, const char* tag, std::uint32_t& chunk_offset) {
    if (pool != nullptr)
        return pool->allocate(bytes, tag, chunk_offset);
    chunk_offset = 0;
    return reallocate(nullptr, bytes, tag);
}

// A value whose payload of `bytes` bytes is still to be written, or null.
inline cson_value* build_record(Pool* pool, std::uint32_t kind, std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(cson_value))
        return nullptr;
    std::uint32_t chunk_offset = 0;
    void* block = allocate(pool, sizeof(cson_value) + bytes, KINDS[kind].tag, chunk_offset);
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

// A pair whose two references are still to be counted, or null.
inline cson_kvp* build_kvp(Pool* pool, cson_value* key, cson_value* value) {
    std::uint32_t chunk_offset = 0;
    void* block = allocate(pool, sizeof(cson_kvp), KVP_TAG, chunk_offset);
    return block != nullptr ? new (block) cson_kvp{key, value, chunk_offset} : nullptr;
}

// Bytes of a list's storage; a size that no allocation can have where `capacity` is too large.
inline std::size_t storage_bytes(std::uint32_t capacity) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    const bool fits = std::size_t{capacity} <= (most - sizeof(StorageHeader)) / sizeof(void*);
    return fits ? sizeof(StorageHeader) + capacity * sizeof(void*) : most;
}

// Entries for a list, all null; or null without memory.
template <typename List>
auto build_storage(Pool* pool, const List* list, std::uint32_t capacity) -> decltype(list->items) {
    std::uint32_t chunk_offset = 0;
    void* block = allocate(pool, storage_bytes(capacity), tag_of(list), chunk_offset);
    if (block == nullptr)
        return nullptr;
    auto* items = new (block) StorageHeader{chunk_offset, 0} + 1;
    std::memset(static_cast<void*>(items), 0, capacity * sizeof(void*));
    return reinterpret_cast<decltype(list->items)>(items);
}

template <typename List>
StorageHeader* header_of(const List* list) {
    return reinterpret_cast<StorageHeader*>(list->items) - 1;
}

// True if the entries are in the block of their container, directly after the list.
template <typename List>
bool has_inner_storage(const List* list) {
    return static_cast<const void*>(list->items) == list + 1;
}

template <typename List>
void free_storage(List* list) {
    if (list->items != nullptr && !has_inner_storage(list))
        free(header_of(list), header_of(list)->chunk_offset, tag_of(list));
    *list = {};
}

// Makes room for a push: one entry before a list is full its capacity becomes twice the count, and
// `first` for an empty one; a full list gets one entry. False without memory.
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

// Releases key and member, and frees the pair.
void release_pair(cson_kvp* pair);

// The first pair with this key, which here may be empty, or null.
cson_kvp* find_pair(const cson_object* object, std::string_view key);

// Stores a member whose key the object does not hold (first) or holds (second), with their
// references. RangeError where a reference count is at its largest; then nothing has changed.
int append_pair(cson_object* object, cson_value* key, cson_value* value);
int replace_pair(cson_kvp* pair, cson_value* key, cson_value* value);

} // namespace quillon::json
