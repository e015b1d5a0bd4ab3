// SPDX-License-Identifier: MIT
#include "quillon/json/record.h"
#include "quillon/json/value.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace quillon {
namespace {

constexpr std::uint32_t REPLACEMENT_CHARACTER = 0xFFFD;

bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// The bits that a lead byte, 0xC0 and up, adds to its character: those after its ones and a zero.
// Leads of five and six bytes are from the first form of UTF-8, RFC 2279.
std::uint32_t payload_bits(unsigned char lead) {
    return lead & 0x7Fu >> std::countl_one(lead);
}

// Overlong, a surrogate, or not a character at all.
bool is_invalid(std::uint32_t code) {
    return code < 0x80 || (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE || code == 0xFFFF;
}

} // namespace

cson_string* cson_string_make(const char* text, std::uint32_t length) {
    return cson_value_string(cson_value_from_text(text, length));
}

const char* cson_string_text(const cson_string* string) {
    return string != nullptr ? reinterpret_cast<const char*>(string + 1) : nullptr;
}

std::uint32_t cson_string_size(const cson_string* string) {
    return string != nullptr ? string->length : 0;
}

std::uint32_t cson_string_chars(const cson_string* string) {
    if (string == nullptr)
        return 0;
    const auto* cursor = reinterpret_cast<const unsigned char*>(cson_string_text(string));
    const unsigned char* end = cursor + string->length;
    std::uint32_t count = 0;
    while (cursor < end && cson_utf8_next(cursor, end, &cursor) != 0)
        ++count;
    return count;
}

int cson_string_compare_bytes(const cson_string* string, const char* text, std::uint32_t length) {
    if (string == nullptr || text == nullptr)
        return (text != nullptr ? 1 : 0) - (string != nullptr ? 1 : 0);
    if (length == 0)
        return string->length != 0 ? 1 : 0;
    if (string->length == 0)
        return -1;
    const int order =
        std::strncmp(cson_string_text(string), text, std::max(string->length, length));
    if (order != 0 || string->length == length)
        return order;
    return string->length < length ? -1 : 1;
}

int cson_string_compare_text(const cson_string* string, const char* text) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    return cson_string_compare_bytes(string, text, static_cast<std::uint32_t>(length));
}

int cson_string_compare(const cson_string* a, const cson_string* b) {
    return cson_string_compare_bytes(a, cson_string_text(b), cson_string_size(b));
}

std::uint32_t cson_utf8_next(const unsigned char* cursor, const unsigned char* end,
                             const unsigned char** after) {
    const unsigned char lead = *cursor++;
    *after = cursor;
    if (lead < 0xC0)
        return lead;
    std::uint32_t code = payload_bits(lead);
    for (; cursor < end && is_continuation(*cursor); ++cursor)
        code = (code << 6) + (*cursor & 0x3Fu);
    *after = cursor;
    return is_invalid(code) ? REPLACEMENT_CHARACTER : code;
}

} // namespace quillon
