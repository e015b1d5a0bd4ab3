// The push parser's inner operations, as far as the reading of whole blocks shares them.
#pragma once

#include "quillon/json/grammar.h"
#include "quillon/json/parser.h"

#include <cstdint>

namespace quillon {

enum : signed char {
    cson_mode_array = 1,
    cson_mode_done,
    cson_mode_key,   // an object that waits for a key
    cson_mode_object // an object that waits for a value or its end
};

// What is on top of the mode stack; never empty but after the end.
inline signed char cson_mode_of(const cson_push_parser& parser) {
    return parser.top >= 0 ? parser.stack[parser.top] : static_cast<signed char>(cson_mode_done);
}

inline bool cson_pop_mode(cson_push_parser& parser, signed char mode) {
    if (cson_mode_of(parser) != mode || parser.top < 0)
        return false;
    --parser.top;
    return true;
}

// False with an error at the nesting limit, or without memory.
bool cson_push_mode(cson_push_parser& parser, signed char mode);

// Puts one mode in the place of another on top.
inline bool cson_change_mode(cson_push_parser& parser, signed char from, signed char to) {
    if (parser.top < 0 || parser.stack[parser.top] != from)
        return false;
    parser.stack[parser.top] = to;
    return true;
}

// What a colon does: after the key, its member.
inline bool cson_await_member(cson_push_parser& parser) {
    parser.state = cson_state_value;
    return cson_change_mode(parser, cson_mode_key, cson_mode_object);
}

// What a comma does once the value in front of it is reported: the next element or key.
inline bool cson_await_next(cson_push_parser& parser) {
    if (cson_mode_of(parser) == cson_mode_array) {
        parser.state = cson_state_value;
        return true;
    }
    parser.state = cson_state_key;
    return cson_change_mode(parser, cson_mode_object, cson_mode_key);
}

// What an opening bracket does once the container is reported.
inline bool cson_enter_container(cson_push_parser& parser, signed char mode) {
    parser.state = mode == cson_mode_array ? cson_state_first_element : cson_state_first_key;
    return cson_push_mode(parser, mode);
}

// What a closing bracket does once the container's end is reported.
bool cson_leave_container(cson_push_parser& parser, signed char mode);

// The byte that an escape's letter stands for; 0 for "u" and for what is no such letter.
unsigned char cson_escape_meaning(std::int32_t letter);

// Adds bytes to the token buffer as they are; false without memory.
bool cson_append_bytes(cson_push_parser& parser, const unsigned char* bytes, std::uint32_t count);

} // namespace quillon
