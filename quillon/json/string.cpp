#include "quillon/json/record.h"
#include "quillon/json/value.h"

#include <algorithm>
#include <cstring>

namespace quillon {
namespace {

constexpr std::uint32_t replacement_character = 0xFFFD;

bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// What a lead byte, 0xC0 and up, contributes to its character.
std::uint32_t payload_bits(unsigned char lead) {
    if (lead < 0xE0)
        return lead - 0xC0u;
    if (lead < 0xF0)
        return lead - 0xE0u;
    if (lead < 0xF8)
        return lead - 0xF0u;
    if (lead < 0xFC)
        return lead - 0xF8u;
    return lead < 0xFE ? lead - 0xFCu : 0;
}

bool is_no_character(std::uint32_t code) {
    return code < 0x80 || (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE || code == 0xFFFF;
}

// The byte at `index`, with zeros behind the end.
int byte_at(const char* text, std::uint32_t length, std::uint32_t index) {
    return index < length ? static_cast<unsigned char>(text[index]) : 0;
}

int compare_until_zero(const char* a, std::uint32_t a_length, const char* b,
                       std::uint32_t b_length) {
    const std::uint32_t limit = std::max(a_length, b_length);
    for (std::uint32_t i = 0; i < limit; ++i) {
        const int left = byte_at(a, a_length, i);
        const int right = byte_at(b, b_length, i);
        if (left != right || left == 0)
            return left - right;
    }
    return 0;
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
    const int order = compare_until_zero(cson_string_text(string), string->length, text, length);
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
    return is_no_character(code) ? replacement_character : code;
}

} // namespace quillon
