// What makers, parser and copy share: values and containers built on memory of a pool.
#pragma once

#include "quillon/json/allocator.h"
#include "quillon/json/containers.h"
#include "quillon/json/pool.h"
#include "quillon/json/value.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

namespace quillon {

struct cson_kind_info {
    cson_value_api api;
    std::uint32_t payload_bytes;
    const char* tag;
};

extern const std::array<cson_kind_info, 8> cson_kinds; // by kind id

inline constexpr const char* cson_kvp_tag = "cson_kvp";

// The typed payload, whether or not the record refers to it at the moment.
template <class Payload>
Payload* cson_payload(cson_value* value) {
    return reinterpret_cast<Payload*>(value + 1);
}

template <class Payload>
const Payload* cson_payload(const cson_value* value) {
    return reinterpret_cast<const Payload*>(value + 1);
}

// True if the value has an `api` of this kind.
inline bool cson_value_has_kind(const cson_value* value, std::uint32_t kind) {
    return value != nullptr && value->api != nullptr && value->api->kind == kind;
}

// Memory from the pool, or for a null pool a block of its own.
inline void* cson_take(cson_pool* pool, std::size_t bytes, const char* tag,
                       std::uint32_t& distance) {
    if (pool != nullptr)
        return pool->take(bytes, tag, distance);
    distance = 0;
    return cson_resize(nullptr, bytes, tag);
}

// A value of a kind with a payload, whose content, of `bytes` bytes, is yet to be written; or null.
inline cson_value* cson_build_record(cson_pool* pool, std::uint32_t kind, std::size_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(cson_value))
        return nullptr;
    std::uint32_t distance = 0;
    void* block = cson_take(pool, sizeof(cson_value) + bytes, cson_kinds[kind].tag, distance);
    if (block == nullptr)
        return nullptr;
    auto* value = static_cast<cson_value*>(block);
    return new (block) cson_value{&cson_kinds[kind].api, value + 1, 0, distance};
}

// As the operations of the same name; a null pool gives every block an allocation of its own.
cson_value* cson_build_value(cson_pool* pool, std::uint32_t kind, std::uint32_t extra);

inline cson_value* cson_build_string(cson_pool* pool, const char* text, std::uint32_t length) {
    if (text == nullptr || length == 0 || *text == 0)
        return &cson_shared.empty_string;
    if (length == std::numeric_limits<std::uint32_t>::max())
        return nullptr;
    const std::size_t bytes = sizeof(cson_string) + 1 + length;
    cson_value* value = cson_build_record(pool, cson_kind_string, bytes);
    if (value == nullptr)
        return nullptr;
    auto* string = cson_payload<cson_string>(value);
    auto* own_text = reinterpret_cast<char*>(string + 1);
    string->length = length;
    std::memcpy(own_text, text, length);
    own_text[length] = 0;
    return value;
}

inline cson_value* cson_build_int(cson_pool* pool, std::int32_t number) {
    if (number == 0)
        return &cson_shared.zero;
    cson_value* value = cson_build_record(pool, cson_kind_integer, sizeof(number));
    if (value != nullptr)
        *cson_payload<std::int32_t>(value) = number;
    return value;
}

inline cson_value* cson_build_double(cson_pool* pool, double number) {
    if (number == 0.0)
        return &cson_shared.double_zero;
    cson_value* value = cson_build_record(pool, cson_kind_double, sizeof(number));
    if (value != nullptr)
        *cson_payload<double>(value) = number;
    return value;
}

inline cson_kvp* cson_build_kvp(cson_pool* pool) {
    std::uint32_t distance = 0;
    void* block = cson_take(pool, sizeof(cson_kvp), cson_kvp_tag, distance);
    return block != nullptr ? new (block) cson_kvp{nullptr, nullptr, distance} : nullptr;
}

std::uint32_t cson_build_reserve(cson_pool* pool, cson_value_list* list, std::uint32_t capacity);
std::uint32_t cson_build_reserve(cson_pool* pool, cson_kvp_list* list, std::uint32_t capacity);
int cson_build_push(cson_pool* pool, cson_array* array, cson_value* value);

// Adds a pair at the end without a lookup, growing from `first` entries, and retains both.
int cson_build_append(cson_pool* pool, cson_object* object, cson_value* key, cson_value* value,
                      std::uint32_t first);
int cson_build_put(cson_pool* pool, cson_object* object, cson_string* key, cson_value* value);

// The pair of a key, which here may be empty, or null.
cson_kvp* cson_build_find(const cson_object* object, const cson_string* key);

// True while the count of owners isn't full.
inline bool cson_can_own(const cson_value* value) {
    return value->refcount != std::numeric_limits<std::uint32_t>::max();
}

// Counts one owner more, where counting applies.
inline void cson_count_owner(cson_value* value) {
    if (!cson_value_is_shared(value))
        ++value->refcount;
}

} // namespace quillon
