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

// Every operation returns false where the text isn't plain.
//
// The text begins with no blank and ends in a closing bracket. So every scan but that of a string
// ends within the text by itself: no blank, digit or letter is a bracket.
class DocumentReader {
public:
    DocumentReader(TreeBuilder& used_builder, BytesAt text, BytesAt text_end,
                   std::uint32_t most_containers)
        : builder(used_builder), at(text), end(text_end), max_depth(most_containers) {}

    bool read() {
        do {
            if (closing == '}' && !take_key())
                return false;
            if (*at == '[' || *at == '{') {
                if (!enter())
                    return false;
                if (*at != closing)
                    continue;
            } else if (!take_scalar()) {
                return false;
            }
            if (!pass_to_next_entry())
                return at == end && builder.depth() == 0;
        } while (true);
    }

private:
    void skip_blanks() {
        while (*at <= ' ' && is_white(*at))
            skip_row(at + 1);
    }

    // Indentation, eight blanks at a time.
    void skip_row(BytesAt from) {
        constexpr std::uint64_t blanks = ONES * ' ';
        while (end - from >= 8 && load_text(from) == blanks)
            from += 8;
        while (*from == ' ')
            ++from;
        at = from;
    }

    // Ends the containers that end here. False after the outermost, and where no comma follows.
    bool pass_to_next_entry() {
        skip_blanks();
        while (*at != ',') {
            if (*at != closing || !leave())
                return false;
            skip_blanks();
        }
        ++at;
        skip_blanks();
        return true;
    }

    bool enter() {
        if (builder.depth() == max_depth ||
            builder.begin_container(*at == '[' ? cson_kind_array : cson_kind_object) != cson_OK)
            return false;
        closing = *at == '[' ? ']' : '}';
        ++at;
        skip_blanks();
        return true;
    }

    // False also after the outermost container, where nothing may follow, and at the text's end.
    bool leave() {
        ++at;
        if (builder.end_container() != cson_OK || builder.depth() == 0 || at == end)
            return false;
        closing = builder.is_in_array() ? ']' : '}';
        return true;
    }

    bool take_key() {
        std::string_view text;
        if (*at != '"' || !take_text(text) ||
            builder.key(text.data(), static_cast<std::uint32_t>(text.size())) != cson_OK)
            return false;
        skip_blanks();
        if (*at != ':')
            return false;
        ++at;
        skip_blanks();
        return true;
    }

    bool take_scalar() {
        switch (*at) {
        case '"':
            return take_string();
        case 't':
            return take_keyword("true", shared_constants.true_value);
        case 'f':
            return take_keyword("false", shared_constants.false_value);
        case 'n':
            return take_keyword("null", shared_constants.null);
        default:
            return take_number();
        }
    }

    bool take_keyword(std::string_view keyword, cson_value& value) {
        if (static_cast<std::size_t>(end - at) < keyword.size() ||
            std::memcmp(at, keyword.data(), keyword.size()) != 0)
            return false;
        at += keyword.size();
        return builder.constant(&value) == cson_OK;
    }

    bool take_number() {
        NumberToken token;
        if (!token.scan(at, end))
            return false;
        at = token.end;
        if (!token.is_float)
            return builder.integer(token.to_integer()) == cson_OK;
        double number = 0.0;
        return knows_point && token.to_double(number) && builder.number(number) == cson_OK;
    }

    bool take_string() {
        std::string_view text;
        return take_text(text) &&
               builder.string(text.data(), static_cast<std::uint32_t>(text.size())) == cson_OK;
    }

    // Takes a quoted text. Without escapes it is a part of the document, else of the scratch
    // buffer.
    bool take_text(std::string_view& text) {
        const BytesAt first = at + 1;
        at = skip_until(first, end, special_in, is_special);
        if (at == end)
            return false;
        if (*at == '\\')
            return decode_text(first, text);
        text = {reinterpret_cast<const char*>(first), reinterpret_cast<const char*>(at)};
        return *at++ == '"';
    }

    // Decodes a text that begins at `first` and has its first escape at `at`.
    bool decode_text(BytesAt first, std::string_view& text);
    unsigned char* copy_plain(unsigned char* to);
    bool decode_escape(unsigned char*& to);
    bool decode_unicode(unsigned char*& to);
    std::uint32_t take_code_unit();

    TreeBuilder& builder;
    BytesAt at;
    BytesAt end;
    std::uint32_t max_depth;
    unsigned char closing = 0; // bracket of the innermost container
    // A decimal point of several bytes is cut off by the push parser.
    const bool knows_point = std::strlen(std::localeconv()->decimal_point) == 1;
    Block scratch; // the decoded text of one string
};

// No text becomes longer by decoding, so the rest of the document has room for every string in it,
// with what the last word and the last escape may write after it. Memory that no string reaches is
// never touched.
bool DocumentReader::decode_text(BytesAt first, std::string_view& text) {
    constexpr std::size_t margin = 16;
    if (scratch == nullptr)
        scratch = make_block(static_cast<std::size_t>(end - first) + margin, "cson_scratch");
    if (scratch == nullptr)
        return false;
    at = first;
    unsigned char* to = scratch.get();
    for (to = copy_plain(to); at != end && *at == '\\'; to = copy_plain(to))
        if (!decode_escape(to))
            return false;
    text = {reinterpret_cast<const char*>(scratch.get()), reinterpret_cast<const char*>(to)};
    return at != end && *at++ == '"';
}

// Copies up to the next special byte, whole words at a time.
unsigned char* DocumentReader::copy_plain(unsigned char* to) {
    BytesAt from = at;
    const BytesAt limit = end; // both in registers, as `to` may point anywhere
    for (; limit - from >= 8; from += 8, to += 8) {
        const std::uint64_t bytes = load_text(from);
        store_text(to, bytes);
        const std::uint64_t found = special_in(bytes);
        if (found != 0) {
            const int count = std::countr_zero(found) / 8;
            at = from + count;
            return to + count;
        }
    }
    while (from != limit && !is_special(*from))
        *to++ = *from++;
    at = from;
    return to;
}

// A backslash is never the last byte, which is a bracket.
bool DocumentReader::decode_escape(unsigned char*& to) {
    const unsigned char meaning = ESCAPES[at[1]];
    if (meaning == 0)
        return decode_unicode(to);
    *to++ = meaning;
    at += 2;
    return true;
}

bool DocumentReader::decode_unicode(unsigned char*& to) {
    std::uint32_t code = take_code_unit();
    if (code == NO_CODE_UNIT || is_low_surrogate(code))
        return false;
    if (is_high_surrogate(code)) {
        const std::uint32_t low = take_code_unit();
        if (!is_low_surrogate(low))
            return false;
        code = code_point_of(code, low);
    }
    to = put_utf8(to, code);
    return true;
}

// Takes "\\uXXXX".
std::uint32_t DocumentReader::take_code_unit() {
    constexpr std::ptrdiff_t length = 6;
    if (end - at < length || at[0] != '\\' || at[1] != 'u')
        return NO_CODE_UNIT;
    at += length;
    return code_unit_of(at - 4);
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
    return is_container && DocumentReader(builder, text, end, max_depth).read();
}

} // namespace quillon::json
