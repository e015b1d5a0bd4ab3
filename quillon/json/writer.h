// Writes trees of values as JSON text, in pieces that go to a sink.
//
// A double has six decimals and no exponent form. All that isn't ASCII goes out as "\u" escapes of
// four digits; a character beyond them is a RangeError. Control characters without a short escape
// go out as they are. Trees of any depth are written without recursion.
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

// ArgError for a null value or sink, RangeError where `max_depth` is passed. What was written
// before a failure stays written. Null options mean the defaults.
int cson_write(const cson_value* value, cson_sink sink, void* state,
               const cson_write_options* options);

// With a line feed at the end for null options; the stream is flushed.
int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options);
int cson_write_path(const cson_value* value, const char* path, const cson_write_options* options);

// Adds the text to what the buffer holds, with a zero byte behind it that isn't counted.
int cson_write_buffer(const cson_value* value, cson_buffer* buffer,
                      const cson_write_options* options);

// The parts of the above: a quoted string, a container that stands at `level`, and a line break.
int cson_write_text(const char* text, std::uint32_t length, bool escape_slashes, cson_sink sink,
                    void* state);
int cson_write_array(const cson_value* value, cson_sink sink, void* state,
                     const cson_write_options* options, std::uint32_t level);
int cson_write_object(const cson_value* value, cson_sink sink, void* state,
                      const cson_write_options* options, std::uint32_t level);
int cson_write_break(cson_sink sink, void* state, std::uint8_t indentation, std::uint32_t level);

} // namespace quillon
