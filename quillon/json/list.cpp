// SPDX-License-Identifier: MIT
// The growable lists of arrays and objects, which differ in the type of their entries alone.
#include "quillon/json/record.h"

#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

template <typename List>
void grow(List* list, std::uint32_t capacity) {
    const bool is_inner = has_inner_storage(list);
    const std::size_t old_bytes = list->capacity * sizeof(void*);
    const std::size_t bytes = capacity * sizeof(void*);
    if (bytes / sizeof(void*) != capacity)
        return;
    void* block = reallocate(is_inner ? nullptr : list->items, bytes, tag_of(list));
    if (block == nullptr)
        return;
    if (is_inner)
        std::memcpy(block, list->items, old_bytes);
    std::memset(static_cast<unsigned char*>(block) + old_bytes, 0, bytes - old_bytes);
    list->items = static_cast<decltype(list->items)>(block);
    list->capacity = capacity;
}

template <typename List>
std::uint32_t reserve(List* list, std::uint32_t capacity) {
    if (list == nullptr)
        return 0;
    if (capacity == 0)
        free_storage(list);
    else if (capacity > list->capacity)
        grow(list, capacity);
    return list->capacity;
}

template <typename List, typename Entry>
int push(List* list, Entry* entry) {
    if (list == nullptr || entry == nullptr)
        return cson_ArgError;
    if (list->count == std::numeric_limits<std::uint32_t>::max() ||
        reserve(list, list->count + 1) <= list->count)
        return cson_AllocError;
    list->items[list->count++] = entry;
    return cson_OK;
}

template <typename List, typename Entry>
int visit(List* list, int (*visitor)(Entry*, void*), void* state) {
    if (list == nullptr || visitor == nullptr)
        return cson_OK;
    int result = 0;
    for (std::uint32_t i = 0; i < list->count && result == 0; ++i)
        result = list->items[i] != nullptr ? visitor(list->items[i], state) : 0;
    return result;
}

template <typename List, typename Entry>
void clear(List* list, void (*disposer)(Entry*)) {
    if (list == nullptr)
        return;
    for (std::uint32_t i = 0; disposer != nullptr && i < list->count; ++i)
        if (list->items[i] != nullptr)
            disposer(list->items[i]);
    free_storage(list);
}

} // namespace

std::uint32_t cson_value_list_reserve(cson_value_list* list, std::uint32_t capacity) {
    return reserve(list, capacity);
}

std::uint32_t cson_kvp_list_reserve(cson_kvp_list* list, std::uint32_t capacity) {
    return reserve(list, capacity);
}

int cson_value_list_push(cson_value_list* list, cson_value* entry) {
    return push(list, entry);
}

int cson_kvp_list_push(cson_kvp_list* list, cson_kvp* entry) {
    return push(list, entry);
}

int cson_value_list_visit(cson_value_list* list, int (*visitor)(cson_value*, void*), void* state) {
    return visit(list, visitor, state);
}

int cson_kvp_list_visit(cson_kvp_list* list, int (*visitor)(cson_kvp*, void*), void* state) {
    return visit(list, visitor, state);
}

void cson_value_list_clear(cson_value_list* list, void (*disposer)(cson_value*)) {
    clear(list, disposer);
}

void cson_kvp_list_clear(cson_kvp_list* list, void (*disposer)(cson_kvp*)) {
    clear(list, disposer);
}

} // namespace quillon
