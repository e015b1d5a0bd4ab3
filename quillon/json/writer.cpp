// SPDX-License-Identifier: MIT
#include "quillon/json/writer.h"

#include "quillon/json/escape.h"
#include "quillon/json/number.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"

#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace quillon {

using namespace json;

namespace {

using Bytes = const unsigned char*;

Bytes bytes_of(std::string_view text) {
    return reinterpret_cast<Bytes>(text.data());
}

// --- Outputs -----------------------------------------------------------------------------------

// After the first code other than 0, which is the result, an output takes nothing more.
struct Outcome {
    void fail(int failure) {
        if (code == cson_OK)
            code = failure;
    }

    int code = cson_OK;
};

std::string_view view_between(Bytes begin, Bytes end) {
    return {reinterpret_cast<const char*>(begin), reinterpret_cast<const char*>(end)};
}

// The text between two quotes goes out in pieces of one character: an escape, or a single byte.
std::size_t piece_length(const char* at) {
    if (*at != '\\')
        return 1;
    return at[1] == 'u' ? 6 : 2;
}

template <typename Output>
void write_pieces(Output& output, std::string_view text) {
    while (!text.empty() && output.code == cson_OK) {
        const std::size_t length = piece_length(text.data());
        output.piece(text.substr(0, length));
        text.remove_prefix(length);
    }
}

// Both outputs take a piece, and a run of pieces of one character each. `space` is where up to
// `count` bytes may be put directly, if anywhere, and `advance` adds them, up to `end`.
class SinkOutput : public Outcome {
public:
    SinkOutput(cson_sink used_sink, void* used_state, bool joins = false)
        : sink(used_sink), state(used_state), joins_runs(joins) {}

    void piece(std::string_view text) {
        if (code == cson_OK)
            code = sink(state, text.data(), static_cast<std::uint32_t>(text.size()));
    }

    void run(std::string_view text) {
        if (joins_runs && !text.empty())
            piece(text);
        else
            write_pieces(*this, text);
    }

    static unsigned char* space(std::uint64_t) { return nullptr; }

    static void advance(Bytes) {}

private:
    cson_sink sink;
    void* state;
    bool joins_runs; // the library's own sinks can't tell the difference
};

class BufferOutput : public Outcome {
public:
    explicit BufferOutput(cson_buffer& target) : buffer(target) {}

    void piece(std::string_view text) {
        const std::uint64_t needed = std::uint64_t{buffer.used} + text.size();
        if (code == cson_OK && needed >= buffer.capacity)
            code = grow_to(needed * 2);
        if (code != cson_OK)
            return;
        copy_bytes(buffer.mem + buffer.used, text.data(), text.size());
        buffer.used += static_cast<std::uint32_t>(text.size());
    }

    // Grows where its pieces would have made it grow.
    void run(std::string_view text) {
        if (space(text.size()) != nullptr)
            piece(text);
        else
            write_pieces(*this, text);
    }

    unsigned char* space(std::uint64_t count) {
        const bool fits = code == cson_OK && buffer.used + count < buffer.capacity;
        return fits ? buffer.mem + buffer.used : nullptr;
    }

    void advance(Bytes end) { buffer.used = static_cast<std::uint32_t>(end - buffer.mem); }

private:
    int grow_to(std::uint64_t capacity) {
        if (capacity > std::numeric_limits<std::uint32_t>::max())
            return cson_ArgError;
        return cson_buffer_reserve_bytes(&buffer, static_cast<std::uint32_t>(capacity));
    }

    cson_buffer& buffer;
};

// --- Strings -----------------------------------------------------------------------------------

// By byte: 0 for what goes out unchanged, the letter of a short escape, or "u" for what ends the
// string (the zero byte) or has to be decoded. A slash is escaped on request alone.
constexpr std::array<char, 256> make_letters() {
    std::array<char, 256> letters = {};
    for (std::size_t c = 0x80; c < letters.size(); ++c)
        letters[c] = 'u';
    letters[0] = 'u';
    for (std::size_t i = 0; i < ESCAPE_LETTERS.size(); ++i)
        letters[static_cast<unsigned char>(ESCAPE_MEANINGS[i])] = ESCAPE_LETTERS[i];
    return letters;
}

constexpr std::array<char, 256> LETTERS = make_letters();

// The high bit of each of eight bytes that may not go out unchanged; not exact after the first.
// Each subtraction borrows from the next byte only where its own result is already marked (the
// SWAR zero-byte test), and bytes beyond ASCII are marked anyway. All control characters are.
std::uint64_t escaped_in(std::uint64_t bytes, bool escape_slashes) {
    const std::uint64_t quotes = (bytes ^ ONES * '"') - ONES;
    const std::uint64_t backslashes = (bytes ^ ONES * '\\') - ONES;
    const std::uint64_t slashes = escape_slashes ? (bytes ^ ONES * '/') - ONES : 0;
    return (bytes | (bytes - ONES * 0x20) | quotes | backslashes | slashes) & HIGH_BITS;
}

unsigned char* put(unsigned char* to, std::string_view text) {
    copy_bytes(to, text.data(), text.size());
    return to + text.size();
}

// The character at `at`, which `escaped_in` has marked, in up to six bytes. Null for one that
// four hex digits can't say.
unsigned char* put_character(unsigned char* to, Bytes& at, Bytes end, bool escape_slashes) {
    constexpr const char* digits = "0123456789abcdef";
    const unsigned char first = *at;
    const Bytes begin = at;
    const std::uint32_t code_point = cson_utf8_next(at, end, &at);
    if (at - begin == 1) {
        // Stray bytes of UTF-8 and control characters without an escape of their own.
        const bool raw = first >= 0x80 || LETTERS[first] == 0 || (first == '/' && !escape_slashes);
        to[0] = '\\';
        to[raw ? 0 : 1] = raw ? first : static_cast<unsigned char>(LETTERS[first]);
        return to + (raw ? 1 : 2);
    }
    if (code_point > 0xFFFF)
        return nullptr;
    to = put(to, "\\u");
    for (unsigned i = 0; i < 4; ++i)
        to[i] = static_cast<unsigned char>(digits[code_point >> (12 - 4 * i) & 0xF]);
    return to + 4;
}

// The next eight bytes of a text; after its end, blanks. The eight bytes before the end must be
// readable, also of a shorter text.
std::uint64_t next_bytes(Bytes at, Bytes end) {
    if (end - at >= 8)
        return load_text(at);
    const auto missing = static_cast<unsigned>(8 - (end - at));
    return load_text(end - 8) >> 8 * missing | ONES * ' ' << 8 * (8 - missing);
}

// What `put_characters` may write after its limit: eight bytes at a time, or an escape.
constexpr std::ptrdiff_t CHARACTER_SPACE = 16;

// No character takes more than three times its bytes; then come the quotes and eight bytes more.
std::uint64_t quoted_space(std::uint64_t length) {
    return 3 * length + CHARACTER_SPACE;
}

// Where the writing of a text has come to, in the output and in the text.
struct Cursor {
    unsigned char* to;
    Bytes at;
};

// The characters of a text without its quotes, until `to` passes the limit. Stops at the end, at a
// zero byte, or at a character that can't be written.
Cursor put_characters(unsigned char* to, Bytes limit, Bytes at, Bytes end, bool escape_slashes) {
    while (at < end && to <= limit) {
        const std::uint64_t bytes = next_bytes(at, end);
        const std::uint64_t escaped = escaped_in(bytes, escape_slashes);
        store_text(to, bytes);
        const std::ptrdiff_t raw =
            escaped != 0 ? std::countr_zero(escaped) / 8 : std::min<std::ptrdiff_t>(end - at, 8);
        at += raw;
        to += raw;
        if (escaped == 0)
            continue;
        if (*at == 0)
            break;
        Bytes after = at; // whose address is taken, while `at` stays in a register
        unsigned char* written = put_character(to, after, end, escape_slashes);
        if (written == nullptr)
            break;
        to = written;
        at = after;
    }
    return {to, at};
}

// The whole string into `quoted_space` bytes; null where a character can't be written. The eight
// bytes before the text's end must be readable.
unsigned char* put_quoted(unsigned char* to, std::string_view text, bool escape_slashes) {
    const Bytes end = bytes_of(text) + text.size();
    Bytes limit = to + 3 * text.size() + 1;
    *to = '"';
    const Cursor stop = put_characters(to + 1, limit, bytes_of(text), end, escape_slashes);
    if (stop.at != end && *stop.at != 0)
        return nullptr;
    *stop.to = '"';
    return stop.to + 1;
}

// For an output without space for the whole string: block by block. A string that fails has no
// closing quote.
template <typename Output>
void write_in_blocks(Output& output, std::string_view text, bool escape_slashes) {
    std::array<unsigned char, 512> block;
    Bytes limit = block.data() + block.size() - CHARACTER_SPACE;
    Bytes at = bytes_of(text);
    const Bytes end = at + text.size();
    output.piece("\"");
    while (output.code == cson_OK && at != end && *at != 0) {
        const Cursor stop = put_characters(block.data(), limit, at, end, escape_slashes);
        output.run(view_between(block.data(), stop.to));
        if (at == stop.at)
            output.fail(cson_RangeError);
        at = stop.at;
    }
    output.piece("\"");
}

// Ends at a zero byte.
template <typename Output>
void write_string(Output& output, std::string_view text, bool escape_slashes) {
    if (text.empty() || text.front() == 0)
        return output.piece("\"\"");
    unsigned char* to = output.space(quoted_space(text.size()));
    to = to != nullptr ? put_quoted(to, text, escape_slashes) : nullptr;
    if (to != nullptr)
        output.advance(to);
    else
        write_in_blocks(output, text, escape_slashes);
}

// --- Scalars -----------------------------------------------------------------------------------

// The text of a scalar into `NUMBER_ROOM` bytes. Null for other kinds, and for a double that
// only the format of the platform can write.
unsigned char* put_scalar(unsigned char* to, const cson_value* value, std::string_view point) {
    switch (value->api->kind) {
    case cson_kind_undefined:
    case cson_kind_null:
        return put(to, "null");
    case cson_kind_boolean:
        return put(to, value->value != nullptr ? "true" : "false");
    case cson_kind_integer:
        return put_integer(to, number_of<std::int32_t>(value));
    case cson_kind_double:
        return put_double(to, number_of<double>(value), point);
    default:
        return nullptr;
    }
}

template <typename Output>
void write_scalar(Output& output, const cson_value* value, std::string_view point) {
    std::array<unsigned char, DOUBLE_ROOM> text;
    Bytes end = put_scalar(text.data(), value, point);
    if (end == nullptr)
        end = put_formatted(text.data(), number_of<double>(value));
    if (end != nullptr)
        output.piece(view_between(text.data(), end));
    else
        output.fail(cson_RangeError);
}

template <typename Output>
void write_line_break(Output& output, std::uint8_t indentation, std::uint32_t level) {
    if (indentation == 0)
        return;
    std::array<char, 32> indent;
    indent.fill(indentation == 1 ? '\t' : ' ');
    output.piece("\n");
    std::uint64_t left = std::uint64_t{level} * indentation;
    while (left != 0 && output.code == cson_OK) {
        const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(left, indent.size()));
        output.run({indent.data(), part});
        left -= part;
    }
}

// --- Trees -------------------------------------------------------------------------------------

template <typename Output>
class TreeWriter {
public:
    TreeWriter(Output& used_output, const cson_write_options& used_options, std::uint32_t level)
        : output(used_output), options(used_options), first_level(level) {}

    int write(const cson_value* value) {
        write_value(value);
        while (output.code == cson_OK && !open.empty())
            open.top().is_array ? write_elements() : write_members();
        return output.code;
    }

private:
    // A container of which `next` entries are written.
    struct Frame {
        void* const* entries;
        std::uint32_t count;
        std::uint32_t next;
        bool is_array;
        bool indent;
        bool comma_due; // after a pair that is not the last
    };

    std::uint32_t level() const { return first_level + static_cast<std::uint32_t>(open.size()); }

    void write_value(const cson_value* value) {
        if (value == nullptr || value->api == nullptr)
            return output.fail(cson_ArgError);
        switch (value->api->kind) {
        case cson_kind_string:
            return write_string(output, view_of(static_cast<const cson_string*>(value->value)),
                                options.escape_slashes);
        case cson_kind_array:
            return begin(payload_of<cson_array>(value)->list, true);
        case cson_kind_object:
            return begin(payload_of<cson_object>(value)->list, false);
        default:
            return value->api->kind < cson_kind_string ? write_scalar(output, value, point)
                                                       : output.fail(cson_TypeError);
        }
    }

    template <typename List>
    void begin(const List& list, bool is_array) {
        if (level() > options.max_depth)
            return output.fail(cson_RangeError);
        const std::string_view brackets = is_array ? "[]" : "{}";
        if (list.count == 0)
            return output.piece(brackets);
        output.piece(brackets.substr(0, 1));
        const bool indent =
            options.indentation != 0 && (list.count != 1 || options.indent_single_member);
        auto* entries = reinterpret_cast<void* const*>(list.items);
        if (!open.push({entries, list.count, 0, is_array, indent, false}))
            return output.fail(cson_AllocError);
        if (indent)
            break_line();
    }

    void end() {
        const Frame ended = open.top();
        open.pop();
        if (ended.indent)
            break_line();
        output.piece(ended.is_array ? "]" : "}");
    }

    // Both go on to the end of the container on top, or to one within, which comes first.
    void write_elements() {
        const std::size_t depth = open.size();
        while (output.code == cson_OK && open.size() == depth) {
            Frame& top = open.top();
            if (!top.indent)
                put_scalars(top);
            if (top.next == top.count)
                return end();
            const auto* value = static_cast<const cson_value*>(top.entries[top.next]);
            if (top.next++ != 0)
                write_comma(top.indent);
            write_value(value != nullptr ? value : &shared_constants.null);
        }
    }

    // Elements as long as they are scalars and there is space.
    void put_scalars(Frame& top) {
        for (; top.next != top.count; ++top.next) {
            const auto* value = static_cast<const cson_value*>(top.entries[top.next]);
            unsigned char* to = output.space(NUMBER_ROOM + 2);
            if (to == nullptr || value == nullptr || value->api == nullptr)
                return;
            prefetch(value, FETCH_DISTANCE);
            to = put_scalar(top.next != 0 ? put(to, ", ") : to, value, point);
            if (to == nullptr)
                return;
            output.advance(to);
        }
    }

    void write_members() {
        const std::size_t depth = open.size();
        while (output.code == cson_OK && open.size() == depth) {
            Frame& top = open.top();
            if (top.next == top.count)
                return end();
            const auto* pair = static_cast<const cson_kvp*>(top.entries[top.next++]);
            prefetch(pair, FETCH_DISTANCE);
            if (pair != nullptr)
                prefetch(pair->value, FETCH_DISTANCE);
            const bool comma = std::exchange(top.comma_due, false);
            const cson_string* key = key_of(pair);
            if (key != nullptr) {
                top.comma_due = top.next != top.count;
                const cson_value* member =
                    pair->value != nullptr ? pair->value : &shared_constants.null;
                write_member(key, member, comma, top.indent);
            } else if (comma) {
                write_comma(top.indent);
            }
        }
    }

    void write_member(const cson_string* key, const cson_value* member, bool comma, bool indent) {
        if (!indent && put_member(key, member, comma))
            return;
        if (comma)
            write_comma(indent);
        write_string(output, view_of(key), options.escape_slashes);
        output.piece(options.space_after_colon ? ": " : ":");
        write_value(member);
    }

    // Comma, key, colon and member at once; false, with nothing written, without the space or for
    // what has to go piece by piece.
    bool put_member(const cson_string* key, const cson_value* member, bool comma) {
        const std::uint64_t text_length =
            has_kind(member, cson_kind_string)
                ? static_cast<const cson_string*>(member->value)->length
                : 0;
        unsigned char* to =
            output.space(quoted_space(key->length) + quoted_space(text_length) + NUMBER_ROOM);
        if (to == nullptr || member->api == nullptr)
            return false;
        to = put_quoted(comma ? put(to, ", ") : to, view_of(key), options.escape_slashes);
        if (to == nullptr)
            return false;
        to = put(to, options.space_after_colon ? ": " : ":");
        to = member->api->kind == cson_kind_string
                 ? put_quoted(to, view_of(static_cast<const cson_string*>(member->value)),
                              options.escape_slashes)
                 : put_scalar(to, member, point);
        if (to != nullptr)
            output.advance(to);
        return to != nullptr;
    }

    void write_comma(bool indent) {
        if (!indent)
            return output.run(", ");
        output.piece(",");
        break_line();
    }

    void break_line() { write_line_break(output, options.indentation, level()); }

    Output& output;
    const cson_write_options& options;
    const std::uint32_t first_level;
    const std::string_view point = std::localeconv()->decimal_point;
    Stack<Frame> open;
};

template <typename Output>
int write_tree(Output& output, const cson_value* value, const cson_write_options* options) {
    const cson_write_options defaults;
    const cson_write_options& used = options != nullptr ? *options : defaults;
    TreeWriter<Output>(output, used, 0).write(value);
    if (used.add_newline)
        output.piece("\n");
    return output.code;
}

int write_container(const cson_value* value, std::uint32_t kind, cson_sink sink, void* state,
                    const cson_write_options* options, std::uint32_t level) {
    if (value == nullptr || sink == nullptr || options == nullptr)
        return cson_ArgError;
    if (!has_kind(value, kind))
        return cson_TypeError;
    SinkOutput output(sink, state);
    return TreeWriter<SinkOutput>(output, *options, level).write(value);
}

int write_to_stream(void* state, const void* bytes, std::uint32_t count) {
    if (bytes == nullptr || count == 0)
        return cson_OK;
    const std::size_t written = std::fwrite(bytes, 1, count, static_cast<std::FILE*>(state));
    return written == count ? cson_OK : cson_IOError;
}

} // namespace

int cson_write(const cson_value* value, cson_sink sink, void* state,
               const cson_write_options* options) {
    if (sink == nullptr)
        return cson_ArgError;
    SinkOutput output(sink, state);
    return write_tree(output, value, options);
}

int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options) {
    if (stream == nullptr)
        return cson_ArgError;
    cson_write_options with_newline;
    with_newline.add_newline = true;
    SinkOutput output(write_to_stream, stream, true);
    const int code = write_tree(output, value, options != nullptr ? options : &with_newline);
    if (code != cson_OK)
        return code;
    return std::fflush(stream) == 0 ? cson_OK : cson_IOError;
}

int cson_write_path(const cson_value* value, const char* path, const cson_write_options* options) {
    if (value == nullptr || path == nullptr)
        return cson_ArgError;
    std::FILE* stream = std::fopen(path, "wb");
    if (stream == nullptr)
        return cson_IOError;
    const int code = cson_write_stream(value, stream, options);
    std::fclose(stream);
    return code;
}

int cson_write_buffer(const cson_value* value, cson_buffer* buffer,
                      const cson_write_options* options) {
    if (buffer == nullptr)
        return cson_ArgError;
    BufferOutput output(*buffer);
    int code = write_tree(output, value, options);
    if (code == cson_OK)
        code = cson_buffer_reserve_bytes(buffer, buffer->used + 1);
    if (code == cson_OK)
        buffer->mem[buffer->used] = 0;
    return code;
}

int cson_write_text(const char* text, std::uint32_t length, bool escape_slashes, cson_sink sink,
                    void* state) {
    if (sink == nullptr)
        return cson_ArgError;
    if (text == nullptr)
        length = 0;
    // A short text gets eight readable bytes before its end.
    std::array<char, 16> padded = {};
    if (length != 0 && length < 8)
        text = static_cast<const char*>(std::memcpy(padded.data() + 8, text, length));
    SinkOutput output(sink, state);
    write_string(output, {text, length}, escape_slashes);
    return output.code;
}

int cson_write_array(const cson_value* value, cson_sink sink, void* state,
                     const cson_write_options* options, std::uint32_t level) {
    return write_container(value, cson_kind_array, sink, state, options, level);
}

int cson_write_object(const cson_value* value, cson_sink sink, void* state,
                      const cson_write_options* options, std::uint32_t level) {
    return write_container(value, cson_kind_object, sink, state, options, level);
}

int cson_write_break(cson_sink sink, void* state, std::uint8_t indentation, std::uint32_t level) {
    if (sink == nullptr)
        return cson_ArgError;
    SinkOutput output(sink, state);
    write_line_break(output, indentation, level);
    return output.code;
}

} // namespace quillon
