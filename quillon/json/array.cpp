// SPDX-License-Identifier: MIT
#include "quillon/json/containers.h"
#include "quillon/json/record.h"

#include <limits>

namespace quillon {

using namespace json;

cson_value* cson_value_make_array() {
    return build_container(nullptr, cson_kind_array);
}

int cson_array_size(const cson_array* array, std::uint32_t* count) {
    if (array == nullptr || count == nullptr)
        return cson_ArgError;
    *count = array->list.count;
    return cson_OK;
}

std::uint32_t cson_array_count(const cson_array* array) {
    return array != nullptr ? array->list.count : 0;
}

int cson_array_at(cson_array* array, std::uint32_t index, cson_value** out) {
    if (array == nullptr)
        return cson_ArgError;
    if (index >= array->list.count)
        return cson_RangeError;
    if (out != nullptr)
        *out = array->list.items[index];
    return cson_OK;
}

cson_value* cson_array_item(cson_array* array, std::uint32_t index) {
    cson_value* item = nullptr;
    cson_array_at(array, index, &item);
    return item;
}

int cson_array_reserve_items(cson_array* array, std::uint32_t capacity) {
    if (array == nullptr)
        return cson_ArgError;
    if (capacity <= array->list.capacity)
        return cson_OK;
    return cson_value_list_reserve(&array->list, capacity) >= capacity ? cson_OK : cson_AllocError;
}

int cson_array_put(cson_array* array, std::uint32_t index, cson_value* value) {
    if (array == nullptr || value == nullptr)
        return cson_ArgError;
    if (index >= std::numeric_limits<std::uint32_t>::max() - 1)
        return cson_RangeError;
    if (cson_array_reserve_items(array, index + 1) != cson_OK)
        return cson_AllocError;
    cson_value* old = array->list.items[index];
    if (old == value)
        return cson_OK;
    // Retained first: the value may live by the old entry alone.
    const int code = cson_value_retain(value);
    if (code != cson_OK)
        return code;
    array->list.items[index] = value;
    if (array->list.count <= index)
        array->list.count = index + 1;
    cson_value_release(old);
    return cson_OK;
}

int cson_array_push(cson_array* array, cson_value* value) {
    if (array == nullptr || value == nullptr)
        return cson_ArgError;
    cson_value_list* list = &array->list;
    if (list->count == std::numeric_limits<std::uint32_t>::max())
        return cson_RangeError;
    if (!grow_for_one(list, 7, cson_value_list_reserve))
        return cson_AllocError;
    const int code = cson_value_retain(value);
    if (code == cson_OK)
        list->items[list->count++] = value;
    return code;
}

} // namespace quillon
