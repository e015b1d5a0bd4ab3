// SPDX-License-Identifier: MIT
// Values of the JSON component: one record for every kind, strings, and the byte buffer.
//
// Plain records, free functions, reference counts by hand, codes for errors; nothing is locked.
// A new value has a count of 0 and belongs to the caller.
// The first container that takes it raises the count, and a release at 0 frees it at once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

struct cson_array;
struct cson_object;
struct cson_value;

enum : std::uint32_t {
    cson_kind_undefined,
    cson_kind_null,
    cson_kind_boolean,
    cson_kind_integer,
    cson_kind_double,
    cson_kind_string,
    cson_kind_array,
    cson_kind_object
};

enum : int {
    cson_OK,
    cson_ArgError,
    cson_RangeError,
    cson_TypeError,
    cson_IOError,
    cson_AllocError,
    cson_NYIError,
    cson_InternalError,
    cson_UnsupportedError,
    cson_NotFoundError,
    cson_UnknownError,
    cson_Parse_INVALID_CHAR,
    cson_Parse_INVALID_KEYWORD,
    cson_Parse_INVALID_ESCAPE_SEQUENCE,
    cson_Parse_INVALID_UNICODE_SEQUENCE,
    cson_Parse_INVALID_NUMBER,
    cson_Parse_NESTING_DEPTH_REACHED,
    cson_Parse_UNBALANCED_COLLECTION,
    cson_Parse_EXPECTED_KEY,
    cson_Parse_EXPECTED_COLON
};

// The name of a code, such as "ArgError"; "UnknownError" for a number that is no code.
const char* cson_error_name(int code);

struct cson_value_api {
    std::uint32_t kind;
    void (*cleanup)(cson_value*); // empties the value
};

struct cson_value {
    const cson_value_api* api;
    void* value; // the payload, directly after this record; null where the kind has none
    std::uint32_t refcount;
    std::uint32_t chunk_offset; // from its pool chunk; 0 for a block of its own
};

// Length in bytes; the text and a zero byte follow in the same block. Never changed after creation.
struct cson_string {
    std::uint32_t length;
};

struct cson_buffer {
    std::uint32_t capacity = 0;
    std::uint32_t used = 0;
    std::uint32_t times_expanded = 0;
    unsigned char* mem = nullptr;
};

namespace json {

// The values that are never counted, emptied or freed: static memory, known by its address.
struct SharedConstants {
    cson_value undefined, null, true_value, false_value, zero, double_zero, empty_string;
    std::int32_t one;
    cson_string empty;
    std::array<char, 4> empty_text;
};

extern SharedConstants shared_constants;

} // namespace json

// True for the shared constants and their payloads; any address may be asked about.
inline bool cson_value_is_shared(const void* address) {
    const auto offset = reinterpret_cast<std::uintptr_t>(address) -
                        reinterpret_cast<std::uintptr_t>(&json::shared_constants);
    return offset < sizeof(json::shared_constants);
}

// A value of `kind` 3 to 7 with a zeroed payload and `extra` zeroed bytes after it.
//
// Null for any other kind, and without memory.
cson_value* cson_value_new(std::uint32_t kind, std::uint32_t extra);

cson_value* cson_value_from_bool(bool flag);
cson_value* cson_value_true();
cson_value* cson_value_false();
cson_value* cson_value_null_constant();
cson_value* cson_value_from_int(std::int32_t number);
cson_value* cson_value_from_double(double number);
cson_value* cson_value_from_text(const char* text, std::uint32_t length);

// Adds a reference. RangeError when the count is full.
int cson_value_retain(cson_value* value);

// Removes a reference and returns how many are left; at 0 the value is freed with all it held.
//
// Trees of any depth are freed without recursion.
std::uint32_t cson_value_release(cson_value* value);

// Empties the value, which becomes undefined and keeps its count.
void cson_value_clear(cson_value* value);

bool cson_value_is_undefined(const cson_value* value);
bool cson_value_is_null(const cson_value* value);
bool cson_value_is_bool(const cson_value* value);
bool cson_value_is_int(const cson_value* value);
bool cson_value_is_double(const cson_value* value);
bool cson_value_is_number(const cson_value* value);
bool cson_value_is_string(const cson_value* value);
bool cson_value_is_array(const cson_value* value);
bool cson_value_is_object(const cson_value* value);

// Converts a value; `out` may be null.
//
// ArgError for null.
// Strings, arrays and objects are 0 as an integer; as a double they are 0 and a TypeError.
// A double beyond 32 bits becomes the nearest integer, NaN becomes 0.
int cson_value_to_bool(const cson_value* value, bool* out);
int cson_value_to_int(const cson_value* value, std::int32_t* out);
int cson_value_to_double(const cson_value* value, double* out);
bool cson_value_bool(const cson_value* value);
std::int32_t cson_value_int(const cson_value* value);
double cson_value_double(const cson_value* value);

// The payload. ArgError for null, for strings also without `out`; TypeError for another kind.
int cson_value_as_string(const cson_value* value, cson_string** out);
int cson_value_as_array(const cson_value* value, cson_array** out);
int cson_value_as_object(const cson_value* value, cson_object** out);
cson_string* cson_value_string(const cson_value* value);
cson_array* cson_value_array(const cson_value* value);
cson_object* cson_value_object(const cson_value* value);
const char* cson_value_text(const cson_value* value);

// The value that a payload belongs to, or null for null.
cson_value* cson_value_of_string(const cson_string* string);
cson_value* cson_value_of_array(const cson_array* array);
cson_value* cson_value_of_object(const cson_object* object);
void cson_release_string(cson_string* string);
void cson_release_array(cson_array* array);
void cson_release_object(cson_object* object);

// A string with a copy of the text, or null without memory.
//
// A text that is null, empty or begins with a zero byte becomes the shared empty string.
cson_string* cson_string_make(const char* text, std::uint32_t length);
const char* cson_string_text(const cson_string* string);
std::uint32_t cson_string_size(const cson_string* string);

// The number of UTF-8 characters up to the end or the first zero byte.
std::uint32_t cson_string_chars(const cson_string* string);

// Negative, 0 or positive, as for terminated texts, of which at most the larger length is compared.
//
// `text` must be terminated, or as long as the string is.
// Of texts that are equal so far, the one with the smaller length comes first.
// Null comes after everything else.
int cson_string_compare_bytes(const cson_string* string, const char* text, std::uint32_t length);
int cson_string_compare_text(const cson_string* string, const char* text);
int cson_string_compare(const cson_string* a, const cson_string* b);

// Decodes one character and stores the position after it; 0xFFFD for what is not a character.
//
// The cursor must be before the end; only bytes between the two are read.
std::uint32_t cson_utf8_next(const unsigned char* cursor, const unsigned char* end,
                             const unsigned char** after);

// Fills `destination` with up to `*count` bytes, stores how many, and returns a code.
using cson_reader = int (*)(void* state, void* destination, std::uint32_t* count);

// Grows to exactly `capacity` bytes, zeroed from `used` on.
//
// A capacity of 0 frees the memory and zeroes the record.
// On AllocError the buffer is unchanged.
int cson_buffer_reserve_bytes(cson_buffer* buffer, std::uint32_t capacity);
std::uint32_t cson_buffer_fill_bytes(cson_buffer* buffer, unsigned char byte);

// Replaces the content by all that the reader delivers, and a zero byte that `used` doesn't count.
//
// A block shorter than was asked for is the last.
// RangeError for a count above the space, and for 2^32 bytes and more.
int cson_buffer_read_from(cson_buffer* buffer, cson_reader reader, void* state);

} // namespace quillon
