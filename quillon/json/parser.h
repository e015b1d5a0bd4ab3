// SPDX-License-Identifier: MIT
// Reads JSON text: a push parser that takes one character at a time, and the readers of whole
// trees.
//
// The grammar is JSON whose top level is an object or an array, with two additions: comments
// between "/*" and "*/" where they are allowed, and a number may end in its decimal point.
#pragma once

#include "quillon/json/value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace quillon {

enum : int {
    cson_event_array_begins = 1,
    cson_event_array_ends,
    cson_event_object_begins,
    cson_event_object_ends,
    cson_event_integer,
    cson_event_float,
    cson_event_null,
    cson_event_true,
    cson_event_false,
    cson_event_string,
    cson_event_key
};

enum : std::uint8_t {
    cson_push_no_error,
    cson_push_invalid_character,
    cson_push_invalid_keyword,
    cson_push_invalid_escape,
    cson_push_invalid_unicode,
    cson_push_invalid_number,
    cson_push_nesting_depth,
    cson_push_unbalanced,
    cson_push_expected_key,
    cson_push_expected_colon,
    cson_push_out_of_memory
};

// What an event brings: an integer, a float, or the text of a string or key.
//
// The text belongs to the parser and is valid during the call alone. Null for all other events.
struct cson_push_data {
    std::int32_t integer;
    std::uint32_t length;
    double number;
    const char* text;
};

// Returns 0 to stop the parser, whose step then fails.
using cson_push_callback = int (*)(void* context, int event, const cson_push_data* data);
using cson_push_allocate = void* (*)(std::size_t bytes);
using cson_push_release = void (*)(void* block);

struct cson_push_parser_config {
    cson_push_callback callback;
    void* context;
    std::int32_t depth; // containers within containers; 0 counts as 1, negative means no limit
    int allow_comments;
    int manual_floats; // floats are reported as text
    cson_push_allocate allocate;
    cson_push_release release; // the two count only when both are given
};

struct cson_push_parser {
    cson_push_callback callback; // null: nothing is reported, and nothing is converted
    void* context;
    std::uint8_t state;
    std::uint8_t state_before_comment;
    std::uint8_t type; // event code of the value being read, 0 when none
    bool escaped;      // the previous character was the backslash of an escape
    bool in_comment;
    bool allow_comments;
    bool manual_floats;
    std::uint8_t error;
    char decimal_point; // first character of the locale's, taken at creation
    std::uint16_t high_surrogate;
    std::int32_t current_char;
    std::int32_t depth;
    std::int32_t top; // index of the top mode, -1 when the stack is empty
    std::int32_t stack_capacity;
    signed char* stack;
    unsigned char* buffer; // text of the current token, kept terminated
    std::uint32_t buffer_capacity;
    std::uint32_t buffer_count;
    std::array<signed char, 128> static_stack;
    std::array<unsigned char, 3500> static_buffer;
    cson_push_allocate allocate;
    cson_push_release release;
};

// Zeros but for a depth of 127 and the component's own memory functions.
void cson_push_parser_init_config(cson_push_parser_config* config);

// A parser ready for its first character, or null without memory. Null means the default config.
cson_push_parser* cson_push_parser_new(const cson_push_parser_config* config);
void cson_push_parser_free(cson_push_parser* parser);

// Makes the parser ready for another text; non-zero on success.
int cson_push_parser_reset(cson_push_parser* parser);

// Takes one character, 0 and up; non-zero on success. After a failure only reset or free may
// follow. `error` holds the reason; it stays 0 when the callback refused, and for a comment that is
// not allowed.
int cson_push_parser_step(cson_push_parser* parser, std::int32_t character);

// Non-zero if the input so far is complete, which the empty input also is.
int cson_push_parser_finish(cson_push_parser* parser);
int cson_push_parser_error(const cson_push_parser* parser);

// Non-zero if the text holds nothing but blanks, tabs, line feeds and carriage returns.
int cson_push_parser_is_blank(const char* text);

struct cson_read_options {
    std::uint16_t max_depth = 25;
    std::int8_t allow_comments = 0;
};

// Where the input stopped. A caller's record is read first: line, column and length continue from
// it.
//
// `column` doesn't count an offending byte, `length` does.
// `error_code` is that of the parser, 0 if it didn't fail.
struct cson_read_info {
    std::uint32_t line = 1;
    std::uint32_t column = 0;
    std::uint32_t length = 0;
    std::uint32_t error_code = 0;
    std::uint32_t total_key_count = 0;
    std::uint32_t total_value_count = 0;
};

// Read to the end of the input and store the tree, whose count is 0, in `out`.
//
// On failure `out` keeps its value. UnknownError for an input of white space and comments alone.
// Null options mean the defaults; with null info nothing is reported.
// An integer beyond 32 bits is the nearest one.
// Values of one tree share blocks of memory: they belong to one thread together, and one that is
// kept holds its neighbours' memory, up to 32 MiB. A copy shares nothing.
//
// The reader is asked for one byte at a time, and for none after the one that ends the reading.
int cson_read(cson_value** out, cson_reader reader, void* state, const cson_read_options* options,
              cson_read_info* info);

// A stream that can seek is read ahead and, after a failure, left after the last byte asked for; of
// other streams no byte is read ahead. Bytes that were pushed back are read again from the file.
int cson_read_stream(cson_value** out, std::FILE* stream, const cson_read_options* options,
                     cson_read_info* info);
int cson_read_path(cson_value** out, const char* path, const cson_read_options* options,
                   cson_read_info* info);
int cson_read_text(cson_value** out, const char* text, std::uint32_t length,
                   const cson_read_options* options, cson_read_info* info);
int cson_read_buffer(cson_value** out, const cson_buffer* buffer, const cson_read_options* options,
                     cson_read_info* info);

} // namespace quillon
