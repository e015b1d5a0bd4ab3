#include "quillon/json/building.h"

#include "quillon/json/allocator.h"

#include <cstring>
#include <limits>
#include <new>

namespace quillon {
namespace {

constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();

// In front of a list's entries.
struct storage_header {
    std::uint32_t distance; // as in cson_value
    std::uint32_t unused;   // keeps the entries aligned
};

const char* tag_of(const cson_value_list*) {
    return "cson_value_list_reserve";
}

const char* tag_of(const cson_kvp_list*) {
    return "cson_kvp_list_reserve";
}

storage_header* header_of(void* items) {
    return static_cast<storage_header*>(items) - 1;
}

// Moves storage from a pool to a new place.
void* move_storage(cson_pool* pool, void* items, std::size_t old_bytes, std::size_t bytes,
                   const char* tag) {
    std::uint32_t distance = 0;
    void* block = cson_take(pool, bytes, tag, distance);
    if (block == nullptr)
        return nullptr;
    auto* header = new (block) storage_header{distance, 0};
    if (items != nullptr) {
        std::memcpy(header + 1, items, old_bytes);
        cson_give_back(header_of(items), header_of(items)->distance, tag);
    }
    return header + 1;
}

void* resize_storage(cson_pool* pool, void* items, std::uint32_t old_capacity,
                     std::uint32_t capacity, const char* tag) {
    constexpr std::size_t entry = sizeof(void*);
    if (std::size_t{capacity} >
        (std::numeric_limits<std::size_t>::max() - sizeof(storage_header)) / entry)
        return nullptr;
    const std::size_t bytes = sizeof(storage_header) + capacity * entry;
    if (items == nullptr || header_of(items)->distance != 0)
        return move_storage(pool, items, old_capacity * entry, bytes, tag);
    auto* header = static_cast<storage_header*>(cson_resize(header_of(items), bytes, tag));
    return header != nullptr ? header + 1 : nullptr;
}

template <class List>
void free_storage(List* list) {
    if (list->items != nullptr)
        cson_give_back(header_of(list->items), header_of(list->items)->distance, tag_of(list));
    *list = {};
}

template <class List>
std::uint32_t reserve(cson_pool* pool, List* list, std::uint32_t capacity) {
    if (list == nullptr)
        return 0;
    if (capacity == 0) {
        free_storage(list);
        return 0;
    }
    if (capacity <= list->capacity)
        return list->capacity;
    void* items = resize_storage(pool, list->items, list->capacity, capacity, tag_of(list));
    if (items == nullptr)
        return list->capacity;
    list->items = static_cast<decltype(list->items)>(items);
    const std::uint32_t added = capacity - list->capacity;
    std::memset(list->items + list->capacity, 0, added * sizeof(void*));
    list->capacity = capacity;
    return capacity;
}

// Grows one entry before the list is full: from nothing to `first`, then to twice the count.
template <class List>
bool grow_for_one(cson_pool* pool, List* list, std::uint32_t first) {
    if (list->capacity != 0 && list->count != list->capacity - 1)
        return true;
    if (list->count > most / 2)
        return false;
    const std::uint32_t wanted = list->count == 0 ? first : list->count * 2;
    return reserve(pool, list, wanted) >= wanted;
}

template <class List, class Entry>
int push(cson_pool* pool, List* list, Entry* entry) {
    if (list == nullptr || entry == nullptr)
        return cson_ArgError;
    if (list->count == most || reserve(pool, list, list->count + 1) <= list->count)
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
    reserve(nullptr, list, 0);
}

} // namespace

cson_value* cson_build_value(cson_pool* pool, std::uint32_t kind, std::uint32_t extra) {
    if (kind < cson_kind_integer || kind > cson_kind_object)
        return nullptr;
    const std::size_t bytes = std::size_t{cson_kinds[kind].payload_bytes} + extra;
    cson_value* value = cson_build_record(pool, kind, bytes);
    if (value != nullptr)
        std::memset(value->value, 0, bytes);
    return value;
}

std::uint32_t cson_build_reserve(cson_pool* pool, cson_value_list* list, std::uint32_t capacity) {
    return reserve(pool, list, capacity);
}

std::uint32_t cson_build_reserve(cson_pool* pool, cson_kvp_list* list, std::uint32_t capacity) {
    return reserve(pool, list, capacity);
}

int cson_build_push(cson_pool* pool, cson_array* array, cson_value* value) {
    if (array == nullptr || value == nullptr)
        return cson_ArgError;
    cson_value_list* list = &array->list;
    if (list->count == most)
        return cson_RangeError;
    if (!grow_for_one(pool, list, 7))
        return cson_AllocError;
    if (list->count == list->capacity)
        return cson_array_put(array, list->count, value);
    const int code = cson_value_retain(value);
    if (code == cson_OK)
        list->items[list->count++] = value;
    return code;
}

int cson_build_append(cson_pool* pool, cson_object* object, cson_value* key, cson_value* value,
                      std::uint32_t first) {
    if (!grow_for_one(pool, &object->list, first))
        return cson_AllocError;
    cson_kvp* pair = cson_build_kvp(pool);
    if (pair == nullptr)
        return cson_AllocError;
    const int code = push(pool, &object->list, pair);
    if (code != cson_OK) {
        cson_give_back(pair, pair->distance, cson_kvp_tag);
        return code;
    }
    pair->key = key;
    pair->value = value;
    cson_count_owner(key);
    cson_count_owner(value);
    return cson_OK;
}

std::uint32_t cson_value_list_reserve(cson_value_list* list, std::uint32_t capacity) {
    return reserve(nullptr, list, capacity);
}

std::uint32_t cson_kvp_list_reserve(cson_kvp_list* list, std::uint32_t capacity) {
    return reserve(nullptr, list, capacity);
}

int cson_value_list_push(cson_value_list* list, cson_value* entry) {
    return push(nullptr, list, entry);
}

int cson_kvp_list_push(cson_kvp_list* list, cson_kvp* entry) {
    return push(nullptr, list, entry);
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
