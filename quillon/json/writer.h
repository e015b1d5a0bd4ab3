// SPDX-License-Identifier: MIT
// Writes trees of values as JSON text, in pieces that go to a sink.
//
// Doubles have up to six decimals and no exponent.
// Characters beyond ASCII become "\u" escapes of four digits; RangeError for one above U+FFFF.
// Control characters without a short escape are written unchanged.
// Trees of any depth are written without recursion.
#pragma once

#include "quillon/json/value.h"

#include <cstdint>
#include <cstdio>

namespace quillon {

struct cson_write_options {
    std::uint8_t indentation = 0; // 0: on one line; 1: a tab per level; else that many blanks
    std::uint16_t max_depth = 25; // deepest level that may be written; the outermost is 0
    bool add_newline = false;
    bool space_after_colon = false;
    bool indent_single_member = false;
    bool escape_slashes = false;
};

// Takes a piece of the text. The first code other than 0 ends the writing and is its result.
using cson_sink = int (*)(void* state, const void* bytes, std::uint32_t count);

// Writes a tree to a sink.
//
// Null options mean the defaults.
// ArgError for a null value or sink, RangeError for a container deeper than `max_depth`.
// What was written before a failure stays written.
int cson_write(const cson_value* value, cson_sink sink, void* state,
               const cson_write_options* options);

// Writes a tree to a stream, which is then flushed, or to a file.
//
// Null options mean the defaults and a line feed at the end.
// IOError where the file can't be opened or a write fails; a failed write leaves a partial file.
int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options);
int cson_write_path(const cson_value* value, const char* path, const cson_write_options* options);

// Appends the text to what the buffer holds, and a zero byte that `used` doesn't count.
int cson_write_buffer(const cson_value* value, cson_buffer* buffer,
                      const cson_write_options* options);

// Parts of a tree: a quoted string, an array or object at a level, a line break at a level.
//
// ArgError for a null sink, and for null options of a container.
// TypeError for a value of another kind.
int cson_write_text(const char* text, std::uint32_t length, bool escape_slashes, cson_sink sink,
                    void* state);
int cson_write_array(const cson_value* value, cson_sink sink, void* state,
                     const cson_write_options* options, std::uint32_t level);
int cson_write_object(const cson_value* value, cson_sink sink, void* state,
                      const cson_write_options* options, std::uint32_t level);
int cson_write_break(cson_sink sink, void* state, std::uint8_t indentation, std::uint32_t level);

} // namespace quillon
