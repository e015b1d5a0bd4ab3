#include "quillon/json/record.h"

#include "quillon/json/allocator.h"

#include <cstring>
#include <limits>
#include <new>

namespace quillon {

using namespace json;

namespace {

constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();

// Gives the list new storage, as it has none or stands in a reading's or copy's memory.
template <class List>
bool move(List* list, std::uint32_t capacity) {
    auto* entries = reinterpret_cast<void* const*>(list->items);
    const List moved = {build_storage(nullptr, list, capacity, entries, list->capacity),
                        list->count, capacity};
    if (moved.items == nullptr)
        return false;
    free_storage(list);
    *list = moved;
    return true;
}

template <class List>
bool resize(List* list, std::uint32_t capacity) {
    constexpr std::size_t entry = sizeof(void*);
    constexpr std::size_t limit = std::numeric_limits<std::size_t>::max() / entry - 1;
    StorageHeader* header = list->items != nullptr ? header_of(list) : nullptr;
    if (header == nullptr || header->chunk_offset != 0)
        return move(list, capacity);
    void* block = std::size_t{capacity} <= limit
                      ? reallocate(header, sizeof(*header) + capacity * entry, tag_of(list))
                      : nullptr;
    if (block == nullptr)
        return false;
    list->items = reinterpret_cast<decltype(list->items)>(static_cast<StorageHeader*>(block) + 1);
    std::memset(list->items + list->capacity, 0, (capacity - list->capacity) * entry);
    list->capacity = capacity;
    return true;
}

template <class List>
std::uint32_t reserve(List* list, std::uint32_t capacity) {
    if (list == nullptr)
        return 0;
    if (capacity == 0)
        free_storage(list);
    else if (capacity > list->capacity)
        resize(list, capacity);
    return list->capacity;
}

template <class List, class Entry>
int push(List* list, Entry* entry) {
    if (list == nullptr || entry == nullptr)
        return cson_ArgError;
    if (list->count == most || reserve(list, list->count + 1) <= list->count)
        return cson_AllocError;
    list->items[list->count++] = entry;
    return cson_OK;
}

template <class List, class Entry>
int visit(List* list, int (*visitor)(Entry*, void*), void* state) {
    if (list == nullptr || visitor == nullptr)
        return cson_OK;
    for (std::uint32_t i = 0; i < list->count; ++i) {
        const int result = list->items[i] != nullptr ? visitor(list->items[i], state) : 0;
        if (result != 0)
            return result;
    }
    return cson_OK;
}

template <class List, class Entry>
void clear(List* list, void (*disposer)(Entry*)) {
    if (list == nullptr)
        return;
    for (std::uint32_t i = 0; disposer != nullptr && i < list->count; ++i)
        if (list->items[i] != nullptr)
            disposer(list->items[i]);
    reserve(list, 0);
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
