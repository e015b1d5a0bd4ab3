// SPDX-License-Identifier: MIT
#include "quillon/json/document_reader.h"

#include "quillon/json/allocator.h"
#include "quillon/json/escape.h"
#include "quillon/json/number.h"
#include "quillon/json/swar.h"

#include <clocale>
#include <cstring>
#include <string_view>

namespace quillon::json {
namespace {

using BytesAt = const unsigned char*;

constexpr std::ptrdiff_t ESCAPE_BYTES = 6; // of "\\uXXXX"

bool is_white(unsigned char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Of eight bytes of a string, the high bits of those that end a run of plain text.
std::uint64_t special_in(std::uint64_t bytes) {
    return bytes_below(bytes, 0x20) | bytes_equal(bytes, '"') | bytes_equal(bytes, '\\');
}

bool is_special(unsigned char c) {
    return c < 0x20 || c == '"' || c == '\\';
}

// Every operation receives a position and returns the one after what it read, or null where the
// text isn't plain. The position is passed on and is no member: so it stays in a register while
// values are stored through pointers.
//
// The text ends in a closing bracket. So every scan but that of a string ends within the text by
// itself: no blank, digit or letter is a bracket.
class DocumentReader {
public:
    DocumentReader(TreeBuilder& used_builder, BytesAt text_end, std::uint32_t most_containers)
        : builder(used_builder), end(text_end), max_depth(most_containers) {}

    // Begins at the first bracket.
    bool read(BytesAt at) {
        for (;;) {
            if (closing == '}' && (at = take_key(at)) == nullptr)
                return false;
            if (*at == '[' || *at == '{') {
                if (!enter(*at))
                    return false;
                at = skip_blanks(at + 1);
                if (*at != closing)
                    continue;
            } else if ((at = take_scalar(at)) == nullptr) {
                return false;
            }
            for (at = skip_blanks(at); *at == closing; at = skip_blanks(at)) {
                ++at;
                if (!leave() || at == end || builder.depth() == 0)
                    return at == end && builder.depth() == 0;
            }
            if (*at != ',')
                return false;
            at = skip_blanks(at + 1);
        }
    }

private:
    BytesAt skip_blanks(BytesAt at) const {
        while (*at <= ' ' && is_white(*at))
            at = skip_row(at + 1);
        return at;
    }

    // Indentation, eight blanks at a time.
    BytesAt skip_row(BytesAt at) const {
        constexpr std::uint64_t blanks = ONES * ' ';
        while (end - at >= 8 && load_text(at) == blanks)
            at += 8;
        while (*at == ' ')
            ++at;
        return at;
    }

    bool enter(unsigned char bracket) {
        closing = bracket == '[' ? ']' : '}';
        return builder.depth() != max_depth &&
               builder.begin_container(bracket == '[' ? cson_kind_array : cson_kind_object) ==
                   cson_OK;
    }

    bool leave() {
        if (builder.end_container() != cson_OK)
            return false;
        if (builder.depth() != 0)
            closing = builder.is_in_array() ? ']' : '}';
        return true;
    }

    BytesAt take_key(BytesAt at) {
        std::string_view text;
        if (*at != '"' || (at = take_text(at, text)) == nullptr ||
            builder.key(text.data(), static_cast<std::uint32_t>(text.size())) != cson_OK)
            return nullptr;
        at = skip_blanks(at);
        return *at == ':' ? skip_blanks(at + 1) : nullptr;
    }

    BytesAt take_scalar(BytesAt at) {
        switch (*at) {
        case '"':
            return take_string(at);
        case 't':
            return take_keyword(at, "true", shared_constants.true_value);
        case 'f':
            return take_keyword(at, "false", shared_constants.false_value);
        case 'n':
            return take_keyword(at, "null", shared_constants.null);
        default:
            return take_number(at);
        }
    }

    BytesAt take_keyword(BytesAt at, std::string_view keyword, cson_value& value) {
        const bool is_there = static_cast<std::size_t>(end - at) >= keyword.size() &&
                              std::memcmp(at, keyword.data(), keyword.size()) == 0;
        return is_there && builder.constant(&value) == cson_OK ? at + keyword.size() : nullptr;
    }

    BytesAt take_number(BytesAt at) {
        NumberToken token;
        if (!token.scan(at, end))
            return nullptr;
        if (!token.is_float)
            return builder.integer(token.to_integer()) == cson_OK ? token.end : nullptr;
        double number = 0.0;
        const bool is_added =
            knows_point && token.to_double(number) && builder.number(number) == cson_OK;
        return is_added ? token.end : nullptr;
    }

    BytesAt take_string(BytesAt at) {
        std::string_view text;
        at = take_text(at, text);
        const bool is_added =
            at != nullptr &&
            builder.string(text.data(), static_cast<std::uint32_t>(text.size())) == cson_OK;
        return is_added ? at : nullptr;
    }

    // Takes a quoted text. Without escapes it is a part of the document, else of the scratch
    // buffer.
    BytesAt take_text(BytesAt at, std::string_view& text) {
        const BytesAt first = at + 1;
        at = skip_plain(first);
        if (at == end)
            return nullptr;
        if (*at == '\\') {
            at = decode_text(first);
            text = {reinterpret_cast<const char*>(scratch.get()), decoded_bytes};
            return at;
        }
        text = {reinterpret_cast<const char*>(first), reinterpret_cast<const char*>(at)};
        return *at == '"' ? at + 1 : nullptr;
    }

    // The next special byte, or the end.
    BytesAt skip_plain(BytesAt at) const {
        for (; end - at >= 8; at += 8) {
            const std::uint64_t found = special_in(load_text(at));
            if (found != 0)
                return at + std::countr_zero(found) / 8;
        }
        while (at != end && !is_special(*at))
            ++at;
        return at;
    }

    BytesAt decode_text(BytesAt at);
    BytesAt copy_plain(BytesAt at, unsigned char*& to) const;
    BytesAt decode_escape(BytesAt at, unsigned char*& to) const;
    BytesAt decode_unicode(BytesAt at, unsigned char*& to) const;
    std::uint32_t code_unit_at(BytesAt at) const;

    TreeBuilder& builder;
    BytesAt end;
    std::uint32_t max_depth;
    unsigned char closing = 0; // bracket of the innermost container
    // A decimal point of several bytes is cut off by the push parser.
    const bool knows_point = std::strlen(std::localeconv()->decimal_point) == 1;
    Block scratch; // the decoded text of one string
    std::size_t decoded_bytes = 0;
};

// No text becomes longer by decoding, so the length of the rest of the document is enough for every
// string in it; the margin takes what the last word and the last escape write beyond. Memory that
// no string reaches is never touched.
BytesAt DocumentReader::decode_text(BytesAt at) {
    constexpr std::size_t margin = 16;
    if (scratch == nullptr)
        scratch = make_block(static_cast<std::size_t>(end - at) + margin, "cson_scratch");
    if (scratch == nullptr)
        return nullptr;
    unsigned char* to = scratch.get();
    for (at = copy_plain(at, to); at != end && *at == '\\'; at = copy_plain(at, to))
        if ((at = decode_escape(at, to)) == nullptr)
            return nullptr;
    decoded_bytes = static_cast<std::size_t>(to - scratch.get());
    return at != end && *at == '"' ? at + 1 : nullptr;
}

// Copies up to the next special byte, whole words at a time.
BytesAt DocumentReader::copy_plain(BytesAt at, unsigned char*& to) const {
    for (; end - at >= 8; at += 8, to += 8) {
        const std::uint64_t bytes = load_text(at);
        store_text(to, bytes);
        const std::uint64_t found = special_in(bytes);
        if (found != 0) {
            const int count = std::countr_zero(found) / 8;
            to += count;
            return at + count;
        }
    }
    while (at != end && !is_special(*at))
        *to++ = *at++;
    return at;
}

// A backslash is never the last byte, which is a bracket.
BytesAt DocumentReader::decode_escape(BytesAt at, unsigned char*& to) const {
    const unsigned char meaning = ESCAPES[at[1]];
    if (meaning == 0)
        return decode_unicode(at, to);
    *to++ = meaning;
    return at + 2;
}

BytesAt DocumentReader::decode_unicode(BytesAt at, unsigned char*& to) const {
    std::uint32_t code = code_unit_at(at);
    if (code == NO_CODE_UNIT || is_low_surrogate(code))
        return nullptr;
    at += ESCAPE_BYTES;
    if (is_high_surrogate(code)) {
        const std::uint32_t low = code_unit_at(at);
        if (!is_low_surrogate(low))
            return nullptr;
        code = code_point_of(code, low);
        at += ESCAPE_BYTES;
    }
    to = put_utf8(to, code);
    return at;
}

// The code unit of a "\\uXXXX" at `at`; NO_CODE_UNIT for anything else.
std::uint32_t DocumentReader::code_unit_at(BytesAt at) const {
    const bool is_there = end - at >= ESCAPE_BYTES && at[0] == '\\' && at[1] == 'u';
    return is_there ? code_unit_of(at + 2) : NO_CODE_UNIT;
}

} // namespace

bool read_document(TreeBuilder& builder, const unsigned char* text, std::uint32_t length,
                   std::uint32_t max_depth) {
    const unsigned char* end = text + length;
    while (text != end && is_white(*text))
        ++text;
    while (text != end && is_white(end[-1]))
        --end;
    const bool is_container =
        end - text >= 2 && (*text == '[' || *text == '{') && (end[-1] == ']' || end[-1] == '}');
    return is_container && DocumentReader(builder, end, max_depth).read(text);
}

} // namespace quillon::json
