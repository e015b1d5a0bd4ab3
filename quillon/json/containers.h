// Arrays and objects of the JSON component: growable lists of pointers, paths, merging, copying.
#pragma once

#include "quillon/json/value.h"

#include <cstdint>

namespace quillon {

// Entries beyond `count` are null. The storage comes from the reserve operations alone.
struct cson_value_list {
    cson_value** items = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

// A key, which is a string value, and its member; the pair holds one reference to each.
struct cson_kvp {
    cson_value* key;
    cson_value* value;
    std::uint32_t chunk_offset; // as in cson_value
};

struct cson_kvp_list {
    cson_kvp** items = nullptr;
    std::uint32_t count = 0;
    std::uint32_t capacity = 0;
};

// An entry can be null: a hole that was left by storing past the end.
struct cson_array {
    cson_value_list list;
};

// Pairs in order of first insertion. A lookup walks the list.
struct cson_object {
    cson_kvp_list list;
};

// Lists. A reserve gives the new capacity, which on lack of memory is the old one; 0 frees the
// storage. A push takes a pointer other than null and counts no reference.
std::uint32_t cson_value_list_reserve(cson_value_list* list, std::uint32_t capacity);
std::uint32_t cson_kvp_list_reserve(cson_kvp_list* list, std::uint32_t capacity);
int cson_value_list_push(cson_value_list* list, cson_value* entry);
int cson_kvp_list_push(cson_kvp_list* list, cson_kvp* entry);

// Calls with each entry other than null, in order; a visit ends at the first result that isn't 0.
int cson_value_list_visit(cson_value_list* list, int (*visitor)(cson_value*, void*), void* state);
int cson_kvp_list_visit(cson_kvp_list* list, int (*visitor)(cson_kvp*, void*), void* state);
void cson_value_list_clear(cson_value_list* list, void (*disposer)(cson_value*));
void cson_kvp_list_clear(cson_kvp_list* list, void (*disposer)(cson_kvp*));

// A new empty container, or null.
cson_value* cson_value_make_array();
cson_value* cson_value_make_object();

// A deep copy that shares nothing but the shared constants; null for null, for undefined, and when
// memory runs out. Of members under one key, the place is the first one's and the value the last's.
cson_value* cson_value_copy(const cson_value* value);

// Bytes that the value and all below it take. 0 for null and the shared constants, and when there
// is no memory to walk a deep tree.
std::uint32_t cson_value_footprint(const cson_value* value);

int cson_array_size(const cson_array* array, std::uint32_t* count);
std::uint32_t cson_array_count(const cson_array* array);

// The entry at `index`, null for a hole. RangeError beyond the end, ArgError for a null array.
int cson_array_at(cson_array* array, std::uint32_t index, cson_value** out);
cson_value* cson_array_item(cson_array* array, std::uint32_t index);
int cson_array_reserve_items(cson_array* array, std::uint32_t capacity);

// Stores the value, which gains an owner, in place of the old entry, which loses one.
// Past the end the array grows, with holes between.
int cson_array_put(cson_array* array, std::uint32_t index, cson_value* value);
int cson_array_push(cson_array* array, cson_value* value);

// The pair of a key, or null. An empty key finds nothing, even where one is stored.
cson_kvp* cson_object_find(const cson_object* object, const char* key, std::uint32_t* index);
cson_value* cson_object_get_text(const cson_object* object, const char* key);
cson_value* cson_object_get_string(const cson_object* object, const cson_string* key);

// Stores the member under the key in place of an old one; a null value drops the key.
// The pair refers to this very key from then on.
int cson_object_put_string(cson_object* object, cson_string* key, cson_value* value);
int cson_object_put_text(cson_object* object, const char* key, cson_value* value);

// Takes the pair out. NotFoundError for a missing key, ArgError for null and for an empty key.
int cson_object_drop(cson_object* object, const char* key);

// Takes the pair out and hands its member to the caller.
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

// Follows member names through nested objects: runs of characters between separators, each of at
// most 127 bytes. NotFoundError where a member is missing or isn't an object on the way,
// RangeError for a path without a name, a longer name, or a zero separator. Sets `out` on success.
int cson_object_path(cson_object* object, cson_value** out, const char* path, char separator);
cson_value* cson_object_path_value(cson_object* object, const char* path, char separator);

// The same with the path's first character as the separator.
int cson_object_path_marked(cson_object* object, cson_value** out, const char* path);
cson_value* cson_object_path_marked_value(cson_object* object, const char* path);

enum : int {
    cson_combine_replace = 1, // overwrite members that the destination has; only together with flat
    cson_combine_flat = 2     // don't combine members that are objects on both sides
};

// Puts the source's members into the destination, which then shares them.
// ArgError if one is null or both are the same, also for objects below.
int cson_object_combine(cson_object* destination, cson_object* source, int flags);

// Files every argument "-key", "-key=" or "-key=text" as true, null or a value; any number of
// dashes.
//
// A text becomes a string if it begins with a digit, else an integer if it is one of 32 bits, else
// a double if all of it is a number, else a string. A null `*target` is set to a new object on
// success.
int cson_object_from_args(int argc, const char* const* argv, cson_object** target,
                          std::uint32_t* count);

} // namespace quillon
