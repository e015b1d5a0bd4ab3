// SPDX-License-Identifier: MIT
// Objects: pairs in order of first insertion, found by walking the list.
#include "quillon/json/record.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace quillon {

using namespace json;

namespace {

std::string_view text_of(const char* key) {
    return key != nullptr ? std::string_view(key) : std::string_view();
}

std::string_view text_of(const cson_string* key) {
    return key != nullptr ? view_of(key) : std::string_view();
}

// The entry of the first pair with this key, or null.
cson_kvp** entry_of(const cson_object* object, std::string_view key) {
    cson_kvp** end = object->list.items + object->list.count;
    cson_kvp** entry = std::find_if(object->list.items, end, [key](const cson_kvp* pair) {
        const cson_string* candidate = key_of(pair);
        return candidate != nullptr && view_of(candidate) == key;
    });
    return entry != end ? entry : nullptr;
}

// The pair of a caller's key, or null. An empty key finds nothing, even where one is stored.
cson_kvp* find(const cson_object* object, std::string_view key, std::uint32_t* index) {
    cson_kvp** entry = object != nullptr && !key.empty() ? entry_of(object, key) : nullptr;
    if (entry != nullptr && index != nullptr)
        *index = static_cast<std::uint32_t>(entry - object->list.items);
    return entry != nullptr ? *entry : nullptr;
}

// True unless a reference count would pass its largest; one string can be key and member at once.
bool can_own_both(const cson_value* key, const cson_value* value) {
    constexpr std::uint32_t last = std::numeric_limits<std::uint32_t>::max() - 1;
    return can_own(key) && can_own(value) && (key != value || key->refcount != last);
}

// Removes the pair with this key, moves the later ones down, and stores the member, which keeps the
// pair's reference.
int take_out(cson_object* object, std::string_view key, cson_value*& member) {
    if (object == nullptr || key.empty())
        return cson_ArgError;
    cson_kvp_list& list = object->list;
    cson_kvp** entry = entry_of(object, key);
    if (entry == nullptr)
        return cson_NotFoundError;
    cson_kvp* pair = *entry;
    std::copy(entry + 1, list.items + list.count, entry);
    list.items[--list.count] = nullptr;
    member = pair->value;
    cson_value_release(pair->key);
    free_pair(pair);
    return cson_OK;
}

int drop(cson_object* object, std::string_view key) {
    cson_value* member = nullptr;
    const int code = take_out(object, key, member);
    cson_value_release(member);
    return code;
}

} // namespace

cson_kvp* json::find_pair(const cson_object* object, std::string_view key) {
    cson_kvp** entry = entry_of(object, key);
    return entry != nullptr ? *entry : nullptr;
}

int json::append_pair(cson_object* object, cson_value* key, cson_value* value) {
    if (!can_own_both(key, value))
        return cson_RangeError;
    if (!grow_for_one(&object->list, 6, cson_kvp_list_reserve))
        return cson_AllocError;
    void* block = reallocate(nullptr, sizeof(cson_kvp), KVP_TAG);
    if (block == nullptr)
        return cson_AllocError;
    object->list.items[object->list.count++] = new (block) cson_kvp{key, value, false};
    add_owner(key);
    add_owner(value);
    return cson_OK;
}

// The old ones are released last: the new ones may live by them alone.
int json::replace_pair(cson_kvp* pair, cson_value* key, cson_value* value) {
    if (!can_own_both(key, value))
        return cson_RangeError;
    add_owner(key);
    add_owner(value);
    cson_value* old_key = std::exchange(pair->key, key);
    cson_value* old_value = std::exchange(pair->value, value);
    cson_value_release(old_key);
    cson_value_release(old_value);
    return cson_OK;
}

cson_value* cson_value_make_object() {
    return build_container(nullptr, cson_kind_object);
}

cson_kvp* cson_object_find(const cson_object* object, const char* key, std::uint32_t* index) {
    return find(object, text_of(key), index);
}

cson_value* cson_object_get_text(const cson_object* object, const char* key) {
    return cson_kvp_value(cson_object_find(object, key, nullptr));
}

cson_value* cson_object_get_string(const cson_object* object, const cson_string* key) {
    return cson_kvp_value(find(object, text_of(key), nullptr));
}

int cson_object_put_string(cson_object* object, cson_string* key, cson_value* value) {
    if (object == nullptr || key == nullptr)
        return cson_ArgError;
    if (value == nullptr)
        return drop(object, view_of(key));
    cson_value* key_value = cson_value_of_string(key);
    if (key_value == cson_value_of_object(object))
        return cson_ArgError;
    cson_kvp* pair = find_pair(object, view_of(key));
    return pair == nullptr ? append_pair(object, key_value, value)
                           : replace_pair(pair, key_value, value);
}

int cson_object_put_text(cson_object* object, const char* key, cson_value* value) {
    if (object == nullptr || key == nullptr || *key == 0)
        return cson_ArgError;
    if (value == nullptr)
        return cson_object_drop(object, key);
    cson_string* string = cson_string_make(key, static_cast<std::uint32_t>(std::strlen(key)));
    if (string == nullptr)
        return cson_AllocError;
    const int code = cson_object_put_string(object, string, value);
    if (code != cson_OK)
        cson_release_string(string);
    return code;
}

int cson_object_drop(cson_object* object, const char* key) {
    return drop(object, text_of(key));
}

// The member's reference passes to the caller; unlike a release this leaves a count of 0 alive.
cson_value* cson_object_detach(cson_object* object, const char* key) {
    cson_value* member = nullptr;
    take_out(object, text_of(key), member);
    if (member != nullptr && !cson_value_is_shared(member) && member->refcount > 0)
        --member->refcount;
    return member;
}

int cson_object_walk_start(cson_object* object, cson_object_walker* walker) {
    if (object == nullptr || walker == nullptr)
        return cson_ArgError;
    *walker = {object, 0};
    return cson_OK;
}

cson_kvp* cson_object_walk_next(cson_object_walker* walker) {
    if (walker == nullptr || walker->object == nullptr)
        return nullptr;
    const cson_kvp_list& list = walker->object->list;
    while (walker->position < list.count) {
        cson_kvp* pair = list.items[walker->position++];
        if (pair != nullptr)
            return pair;
    }
    return nullptr;
}

cson_string* cson_kvp_key_string(const cson_kvp* pair) {
    return pair != nullptr ? cson_value_string(pair->key) : nullptr;
}

cson_value* cson_kvp_value(const cson_kvp* pair) {
    return pair != nullptr ? pair->value : nullptr;
}

} // namespace quillon
