#include "quillon/json/containers.h"
#include "quillon/json/record.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace quillon {

using namespace json;

namespace {

std::string_view text_of(const char* text) {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

std::string_view text_of(const cson_string* string) {
    return string != nullptr ? view_of(string) : std::string_view();
}

// The position of the first pair with this key, or `count`.
std::uint32_t position_of(const cson_object* object, std::string_view key) {
    const cson_kvp_list& list = object->list;
    for (std::uint32_t i = 0; i < list.count; ++i) {
        const cson_string* candidate = key_of(list.items[i]);
        if (candidate != nullptr && view_of(candidate) == key)
            return i;
    }
    return list.count;
}

cson_kvp* pair_of(const cson_object* object, std::string_view key) {
    const std::uint32_t position = position_of(object, key);
    return position < object->list.count ? object->list.items[position] : nullptr;
}

cson_kvp* find(const cson_object* object, std::string_view key) {
    return object != nullptr && !key.empty() ? pair_of(object, key) : nullptr;
}

// Adds a pair at the end and counts the two owners.
int append(cson_object* object, cson_value* key, cson_value* value) {
    if (!grow_for_one(&object->list, 6, cson_kvp_list_reserve))
        return cson_AllocError;
    cson_kvp* pair = build_kvp(nullptr, key, value);
    if (pair == nullptr)
        return cson_AllocError;
    const int code = cson_kvp_list_push(&object->list, pair);
    if (code != cson_OK) {
        free(pair, pair->chunk_offset, KVP_TAG);
        return code;
    }
    add_owner(key);
    add_owner(value);
    return cson_OK;
}

// Puts key and member in the place of the old ones, which go last: the new ones may live by them.
void overwrite(cson_kvp* pair, cson_value* key, cson_value* value) {
    add_owner(key);
    add_owner(value);
    cson_value* old_key = std::exchange(pair->key, key);
    cson_value* old_value = std::exchange(pair->value, value);
    cson_value_release(old_key);
    cson_value_release(old_value);
}

// Takes the pair with this key out of the list, or gives null. Later pairs move down by one.
cson_kvp* take_out(cson_object* object, std::string_view key) {
    cson_kvp_list& list = object->list;
    const std::uint32_t position = position_of(object, key);
    if (position == list.count)
        return nullptr;
    cson_kvp** entry = list.items + position;
    cson_kvp* pair = *entry;
    std::copy(entry + 1, list.items + list.count, entry);
    list.items[--list.count] = nullptr;
    return pair;
}

// Frees the pair with its key and hands its member over, still counted.
cson_value* dissolve(cson_kvp* pair) {
    cson_value* member = pair->value;
    cson_value_release(pair->key);
    free(pair, pair->chunk_offset, KVP_TAG);
    return member;
}

int drop(cson_object* object, std::string_view key) {
    if (object == nullptr || key.empty())
        return cson_ArgError;
    cson_kvp* pair = take_out(object, key);
    if (pair == nullptr)
        return cson_NotFoundError;
    cson_value_release(dissolve(pair));
    return cson_OK;
}

} // namespace

cson_value* cson_value_make_object() {
    return build_container(nullptr, cson_kind_object);
}

cson_kvp* cson_object_find(const cson_object* object, const char* key, std::uint32_t* index) {
    cson_kvp* pair = find(object, text_of(key));
    if (pair != nullptr && index != nullptr)
        *index = position_of(object, text_of(key));
    return pair;
}

cson_value* cson_object_get_text(const cson_object* object, const char* key) {
    return cson_kvp_value(find(object, text_of(key)));
}

cson_value* cson_object_get_string(const cson_object* object, const cson_string* key) {
    return cson_kvp_value(find(object, text_of(key)));
}

cson_kvp* json::find_pair(const cson_object* object, const cson_string* key) {
    return pair_of(object, text_of(key));
}

int cson_object_put_string(cson_object* object, cson_string* key, cson_value* value) {
    if (object == nullptr || key == nullptr)
        return cson_ArgError;
    if (value == nullptr)
        return drop(object, text_of(key));
    cson_value* key_value = cson_value_of_string(key);
    if (key_value == cson_value_of_object(object))
        return cson_ArgError;
    if (!can_own(key_value) || !can_own(value))
        return cson_RangeError;
    cson_kvp* pair = pair_of(object, text_of(key));
    if (pair == nullptr)
        return append(object, key_value, value);
    overwrite(pair, key_value, value);
    return cson_OK;
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

cson_value* cson_object_detach(cson_object* object, const char* key) {
    if (find(object, text_of(key)) == nullptr)
        return nullptr;
    cson_value* member = dissolve(take_out(object, text_of(key)));
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
