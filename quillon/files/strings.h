// SPDX-License-Identifier: MIT
// Text helpers: bounded copy, measuring, wrapping, Roman numerals.
#pragma once

#include "quillon/export.h"

#include <cstdint>
#include <string>

extern "C" {

// Copies `source` with its terminator, cut to fit a destination of `capacity` bytes.
//
// A capacity of 0 is no limit; a capacity of 1 yields the empty string.
// The two may overlap.
QUILLON_API void __mystring_char_pointer_copy(char* destination, const char* source,
                                              std::uint16_t capacity);

// Measures a text block: the length of its longest line, and the number of its lines.
//
// "##" counts as one character; a lone "#" and the five bytes after it count as nothing, and so
// does a sequence that the end of the text cuts off. A line feed at the end opens one more line.
// Empty text has width 0 and height 1. The length is taken modulo 65536.
QUILLON_API void __mystring_extract_width_and_height_from_string(const char* text,
                                                                 std::int32_t& width,
                                                                 std::int32_t& height);

// Writes `value` in Roman numerals; 0 is the empty string, and thousands repeat "M" without limit.
//
// `destination` has a capacity of 256 bytes.
QUILLON_API void __mystring_convert_to_roman_numeral(char* destination, std::uint16_t value);

// Wraps `text` by inserting line feeds, each after the last byte so far that is not a letter.
//
// A line is broken as soon as it has `line_width` bytes.
// Nothing is removed, so a space at a break stays at the end of the upper line.
// A line feed in the text is a place to break like any other and does not restart the count.
// A line of letters alone is broken before the first letter beyond `line_width`.
// A width of 0 changes nothing. Takes time linear in the length of the text.
// If memory runs out, the text is unchanged.
QUILLON_API void __mystring_auto_newline(std::string& text, std::uint32_t line_width);
}
