// The growable lists of arrays and objects, which differ in the type of their entries alone.
#include "quillon/json/record.h"

#include <cstring>
#include <limits>
#include <new>

namespace quillon {

using namespace json;

namespace {

template <typename List>
bool resize(List* list, std::uint32_t capacity) {
    // Storage in a pool's chunk can't be resized: its entries move to a block of their own.
    const bool moves = list->items == nullptr || header_of(list)->chunk_offset != 0;
    void* block =
        reallocate(moves ? nullptr : header_of(list), storage_bytes(capacity), tag_of(list));
    if (block == nullptr)
        return false;
    auto* header = moves ? new (block) StorageHeader{} : static_cast<StorageHeader*>(block);
    auto* items = reinterpret_cast<decltype(list->items)>(header + 1);
    const List grown = {items, list->count, capacity};
    if (moves && list->items != nullptr) {
        std::memcpy(items, list->items, list->capacity * sizeof(void*));
        free(header_of(list), header_of(list)->chunk_offset, tag_of(list));
    }
    std::memset(items + list->capacity, 0, (capacity - list->capacity) * sizeof(void*));
    *list = grown;
    return true;
}

template <typename List>
std::uint32_t reserve(List* list, std::uint32_t capacity) {
    if (list == nullptr)
        return 0;
    if (capacity == 0)
        free_storage(list);
    else if (capacity > list->capacity)
        resize(list, capacity);
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
