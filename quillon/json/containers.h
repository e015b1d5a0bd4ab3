// SPDX-License-Identifier: MIT
// Arrays and objects of the JSON component: growable lists of pointers, paths, merging, copying.
#pragma once

#include "quillon/json/value.h"

#include <cstdint>

namespace quillon {

// Entries from `count` on are null. The storage comes from the reserve operations alone.
struct cson_value_list {
    cson_value** items = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

// A key, which is a string value, and its member; the pair holds one reference to each.
struct cson_kvp {
    cson_value* key;
    cson_value* value;
    bool is_inner; // in the block of its object
};

struct cson_kvp_list {
    cson_kvp** items = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

// An entry can be null: a hole from storing past the end.
struct cson_array {
    cson_value_list list;
};

// Pairs in order of first insertion. A lookup walks the list.
struct cson_object {
    cson_kvp_list list;
};

// Returns the new capacity, or without memory the old one. A capacity of 0 frees the storage.
std::uint32_t cson_value_list_reserve(cson_value_list* list, std::uint32_t capacity);
std::uint32_t cson_kvp_list_reserve(cson_kvp_list* list, std::uint32_t capacity);

// Appends an entry without counting a reference. ArgError for null.
int cson_value_list_push(cson_value_list* list, cson_value* entry);
int cson_kvp_list_push(cson_kvp_list* list, cson_kvp* entry);

// Calls the visitor with each entry other than null, in order. Returns its first result other than
// 0, where the visit ends, or else 0.
int cson_value_list_visit(cson_value_list* list, int (*visitor)(cson_value*, void*), void* state);
int cson_kvp_list_visit(cson_kvp_list* list, int (*visitor)(cson_kvp*, void*), void* state);

// Calls the disposer with each entry other than null, then frees the storage.
void cson_value_list_clear(cson_value_list* list, void (*disposer)(cson_value*));
void cson_kvp_list_clear(cson_kvp_list* list, void (*disposer)(cson_kvp*));

// A new empty container, or null.
cson_value* cson_value_make_array();
cson_value* cson_value_make_object();

// A deep copy, which shares nothing with the original but the shared constants.
//
// Null for null, for undefined, and without memory.
// Members under one key become one, at the place of the first and with the value of the last.
cson_value* cson_value_copy(const cson_value* value);

// The bytes of a value and all below it.
//
// 0 for null and the shared constants, and without the memory to walk a deep tree.
std::uint32_t cson_value_footprint(const cson_value* value);

int cson_array_size(const cson_array* array, std::uint32_t* count);
std::uint32_t cson_array_count(const cson_array* array);

// The entry at `index`, null for a hole. RangeError beyond the end, ArgError for a null array.
int cson_array_at(cson_array* array, std::uint32_t index, cson_value** out);
cson_value* cson_array_item(cson_array* array, std::uint32_t index);
int cson_array_reserve_items(cson_array* array, std::uint32_t capacity);

// Stores a value in place of the old entry, which is released; the array holds a reference to it.
//
// Past the end the array grows, with holes between.
// RangeError for the two largest indices, and for a value whose reference count is full.
int cson_array_put(cson_array* array, std::uint32_t index, cson_value* value);
int cson_array_push(cson_array* array, cson_value* value);

// The pair of a key, or null, and its index. An empty key finds nothing, even where one is stored.
cson_kvp* cson_object_find(const cson_object* object, const char* key, std::uint32_t* index);
cson_value* cson_object_get_text(const cson_object* object, const char* key);
cson_value* cson_object_get_string(const cson_object* object, const cson_string* key);

// Stores a member in place of the key's old one, or at the end. A null value drops the key.
//
// The object holds references to the value and to this very key.
// RangeError where a reference count is full; then nothing changes.
int cson_object_put_string(cson_object* object, cson_string* key, cson_value* value);
int cson_object_put_text(cson_object* object, const char* key, cson_value* value);

// Removes a pair and releases its key and member.
//
// NotFoundError for a missing key, ArgError for null and for an empty key.
int cson_object_drop(cson_object* object, const char* key);

// Removes a pair and passes its member, or null, to the caller.
//
// Values of one reading or one copy share memory with counters that are not atomic: a detached
// member still belongs to the thread of the tree it was read with. For another thread detach a
// member of a copy made for it, as a copy shares nothing.
cson_value* cson_object_detach(cson_object* object, const char* key);

// A walk in order, valid while the object isn't changed.
struct cson_object_walker {
    cson_object* object;
    std::uint32_t position;
};

int cson_object_walk_start(cson_object* object, cson_object_walker* walker);
cson_kvp* cson_object_walk_next(cson_object_walker* walker);
cson_string* cson_kvp_key_string(const cson_kvp* pair);
cson_value* cson_kvp_value(const cson_kvp* pair);

// Follows member names through nested objects and stores the last member in `out`.
//
// Names are the runs of characters between separators, of at most 127 bytes each.
// NotFoundError where a member is missing, or one before the last is no object.
// RangeError for a path without a name, a longer name, or a zero separator.
int cson_object_path(cson_object* object, cson_value** out, const char* path, char separator);
cson_value* cson_object_path_value(cson_object* object, const char* path, char separator);

// The same; the path's first character is the separator.
int cson_object_path_marked(cson_object* object, cson_value** out, const char* path);
cson_value* cson_object_path_marked_value(cson_object* object, const char* path);

enum : int {
    cson_combine_replace = 1, // overwrite members that the destination has; only together with flat
    cson_combine_flat = 2     // don't combine members that are objects on both sides
};

// Puts the source's members into the destination, which then shares them.
//
// A key of both is left alone, but objects under it are combined in turn; the flags change that.
// ArgError if one object is null or both are the same, also for objects below.
// RangeError where a reference count is full.
// What was put before a failure stays.
int cson_object_combine(cson_object* destination, cson_object* source, int flags);

// Puts every argument "-key", "-key=" or "-key=text", with any number of dashes, into an object as
// true, null or the value of the text.
//
// A text is a string if it begins with a digit; otherwise an integer if it is one of 32 bits, a
// double if all of it is a number, and a string if not.
// A null `*target` is set to a new object on success.
// `count`, if not null, is the number of arguments that were put.
int cson_object_from_args(int argc, const char* const* argv, cson_object** target,
                          std::uint32_t* count);

} // namespace quillon
