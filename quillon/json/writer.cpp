#include "quillon/json/writer.h"

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

// The text between two quotes goes out in pieces of one character: an escape, or a single byte.
std::uint32_t piece_length(Bytes at) {
    if (*at != '\\')
        return 1;
    return at[1] == 'u' ? 6 : 2;
}

template <typename Output>
int write_pieces(Output& output, Bytes at, Bytes end) {
    int code = cson_OK;
    while (at != end && code == cson_OK) {
        const std::uint32_t length = piece_length(at);
        code = output.piece(at, length);
        at += length;
    }
    return code;
}

// Both outputs take a piece, and a run of pieces of one character each. `space` is where up to
// `count` bytes may be put directly, if anywhere, and `advance` adds them, up to `end`.
class SinkOutput {
public:
    SinkOutput(cson_sink used_sink, void* used_state, bool joins)
        : sink(used_sink), state(used_state), joins_runs(joins) {}

    int piece(const void* bytes, std::uint32_t count) { return sink(state, bytes, count); }

    int run(Bytes begin, Bytes end) {
        if (joins_runs && begin != end)
            return piece(begin, static_cast<std::uint32_t>(end - begin));
        return write_pieces(*this, begin, end);
    }

    static unsigned char* space(std::uint64_t) { return nullptr; }

    static void advance(Bytes) {}

private:
    cson_sink sink;
    void* state;
    bool joins_runs; // the library's own sinks can't tell the difference
};

class BufferOutput {
public:
    explicit BufferOutput(cson_buffer& target) : buffer(target) {}

    int piece(const void* bytes, std::uint32_t count) {
        const std::uint64_t needed = std::uint64_t{buffer.used} + count;
        const int code = needed < buffer.capacity ? int{cson_OK} : grow_to(needed * 2);
        if (code == cson_OK) {
            copy_bytes(buffer.mem + buffer.used, bytes, count);
            buffer.used += count;
        }
        return code;
    }

    // Grows where its pieces would have made it grow.
    int run(Bytes begin, Bytes end) {
        const auto count = static_cast<std::uint32_t>(end - begin);
        if (space(count) == nullptr)
            return write_pieces(*this, begin, end);
        return count != 0 ? piece(begin, count) : int{cson_OK};
    }

    unsigned char* space(std::uint64_t count) {
        return buffer.used + count < buffer.capacity ? buffer.mem + buffer.used : nullptr;
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

template <typename Output>
int write_piece(Output& output, std::string_view text) {
    return output.piece(text.data(), static_cast<std::uint32_t>(text.size()));
}

// --- Strings -----------------------------------------------------------------------------------

// By byte: 0 for what goes out unchanged, the letter of a short escape, or "u" for what ends the
// string (the zero byte) or has to be decoded. A slash is escaped on request alone.
constexpr std::array<char, 256> make_escapes() {
    std::array<char, 256> escapes = {};
    for (std::size_t c = 0x80; c < escapes.size(); ++c)
        escapes[c] = 'u';
    constexpr std::string_view escaped("\0\b\t\n\f\r\"\\/", 9);
    constexpr std::string_view letters = "ubtnfr\"\\/";
    for (std::size_t i = 0; i < escaped.size(); ++i)
        escapes[static_cast<unsigned char>(escaped[i])] = letters[i];
    return escapes;
}

constexpr std::array<char, 256> ESCAPES = make_escapes();

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
        const bool raw = first >= 0x80 || ESCAPES[first] == 0 || (first == '/' && !escape_slashes);
        to[0] = '\\';
        to[raw ? 0 : 1] = raw ? first : static_cast<unsigned char>(ESCAPES[first]);
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
int write_in_blocks(Output& output, std::string_view text, bool escape_slashes) {
    std::array<unsigned char, 512> block;
    Bytes limit = block.data() + block.size() - CHARACTER_SPACE;
    Bytes at = bytes_of(text);
    const Bytes end = at + text.size();
    int code = write_piece(output, "\"");
    while (code == cson_OK && at != end && *at != 0) {
        const Cursor stop = put_characters(block.data(), limit, at, end, escape_slashes);
        code = output.run(block.data(), stop.to);
        if (code == cson_OK && at == stop.at)
            return cson_RangeError;
        at = stop.at;
    }
    return code == cson_OK ? write_piece(output, "\"") : code;
}

// Ends at a zero byte.
template <typename Output>
int write_string(Output& output, std::string_view text, bool escape_slashes) {
    if (text.empty() || text.front() == 0)
        return write_piece(output, "\"\"");
    unsigned char* to = output.space(quoted_space(text.size()));
    to = to != nullptr ? put_quoted(to, text, escape_slashes) : nullptr;
    if (to == nullptr)
        return write_in_blocks(output, text, escape_slashes);
    output.advance(to);
    return cson_OK;
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
int write_scalar(Output& output, const cson_value* value, std::string_view point) {
    std::array<unsigned char, DOUBLE_ROOM> text;
    unsigned char* space = output.space(NUMBER_ROOM);
    unsigned char* begin = space != nullptr ? space : text.data();
    Bytes end = put_scalar(begin, value, point);
    if (space != nullptr && end != nullptr) {
        output.advance(end);
        return cson_OK;
    }
    if (end == nullptr) {
        begin = text.data();
        end = put_formatted(begin, number_of<double>(value));
    }
    if (end == nullptr)
        return cson_RangeError;
    return output.piece(begin, static_cast<std::uint32_t>(end - begin));
}

template <typename Output>
int write_line_break(Output& output, std::uint8_t indentation, std::uint32_t level) {
    static constexpr std::string_view BLANKS = "                                ";
    static constexpr std::string_view TABS =
        "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    if (indentation == 0)
        return cson_OK;
    const Bytes indent = bytes_of(indentation == 1 ? TABS : BLANKS);
    int code = write_piece(output, "\n");
    std::uint64_t left = std::uint64_t{level} * indentation;
    while (left != 0 && code == cson_OK) {
        const std::uint64_t part = std::min<std::uint64_t>(left, BLANKS.size());
        code = output.run(indent, indent + part);
        left -= part;
    }
    return code;
}

// --- Trees -------------------------------------------------------------------------------------

template <typename Output>
class TreeWriter {
public:
    TreeWriter(Output& used_output, const cson_write_options& used_options, std::uint32_t level)
        : output(used_output), options(used_options), first_level(level) {}

    int write(const cson_value* value) {
        int code = write_value(value);
        while (code == cson_OK && !open.empty())
            code = open.top().is_array ? write_elements() : write_members();
        return code;
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

    // A tree of a reading is in memory in the order of its text; in bench_json this distance hides
    // the misses.
    static constexpr std::intptr_t FETCH_DISTANCE = 768;

    std::uint32_t level() const { return first_level + static_cast<std::uint32_t>(open.size()); }

    int write_value(const cson_value* value) {
        if (value == nullptr || value->api == nullptr)
            return cson_ArgError;
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
                                                       : int{cson_TypeError};
        }
    }

    template <typename List>
    int begin(const List& list, bool is_array) {
        if (level() > options.max_depth)
            return cson_RangeError;
        const std::string_view brackets = is_array ? "[]" : "{}";
        if (list.count == 0)
            return write_piece(output, brackets);
        const int code = write_piece(output, brackets.substr(0, 1));
        if (code != cson_OK)
            return code;
        const bool indent =
            options.indentation != 0 && (list.count != 1 || options.indent_single_member);
        auto* entries = reinterpret_cast<void* const*>(list.items);
        if (!open.push({entries, list.count, 0, is_array, indent, false}))
            return cson_AllocError;
        return indent ? write_line_break(output, options.indentation, level()) : cson_OK;
    }

    int end() {
        const Frame ended = open.top();
        open.pop();
        const int code =
            ended.indent ? write_line_break(output, options.indentation, level()) : cson_OK;
        return code == cson_OK ? write_piece(output, ended.is_array ? "]" : "}") : code;
    }

    // Both go on to the end of the container on top, or to one within, which comes first.
    int write_elements() {
        const std::size_t depth = open.size();
        int code = cson_OK;
        while (code == cson_OK && open.size() == depth) {
            Frame& top = open.top();
            if (!top.indent)
                put_scalars(top);
            if (top.next == top.count)
                return end();
            const auto* value = static_cast<const cson_value*>(top.entries[top.next]);
            code = top.next++ != 0 ? write_comma(top.indent) : cson_OK;
            if (code == cson_OK)
                code = write_value(value != nullptr ? value : &shared_constants.null);
        }
        return code;
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

    int write_members() {
        const std::size_t depth = open.size();
        int code = cson_OK;
        while (code == cson_OK && open.size() == depth) {
            Frame& top = open.top();
            if (top.next == top.count)
                return end();
            const auto* pair = static_cast<const cson_kvp*>(top.entries[top.next++]);
            prefetch(pair, FETCH_DISTANCE);
            const bool comma = std::exchange(top.comma_due, false);
            const cson_string* key = key_of(pair);
            if (key == nullptr) {
                code = comma ? write_comma(top.indent) : cson_OK;
                continue;
            }
            top.comma_due = top.next != top.count;
            const cson_value* member =
                pair->value != nullptr ? pair->value : &shared_constants.null;
            if (!top.indent && put_member(key, member, comma))
                continue;
            code = write_key(key, comma, top.indent);
            if (code == cson_OK)
                code = write_value(member);
        }
        return code;
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

    int write_key(const cson_string* key, bool comma, bool indent) {
        int code = comma ? write_comma(indent) : cson_OK;
        if (code == cson_OK)
            code = write_string(output, view_of(key), options.escape_slashes);
        if (code == cson_OK)
            code = write_piece(output, options.space_after_colon ? ": " : ":");
        return code;
    }

    int write_comma(bool indent) {
        static constexpr std::string_view SEPARATOR = ", ";
        if (!indent)
            return output.run(bytes_of(SEPARATOR), bytes_of(SEPARATOR) + SEPARATOR.size());
        const int code = write_piece(output, ",");
        return code == cson_OK ? write_line_break(output, options.indentation, level()) : code;
    }

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
    TreeWriter<Output> writer(output, used, 0);
    const int code = writer.write(value);
    return code == cson_OK && used.add_newline ? write_piece(output, "\n") : code;
}

int write_container(const cson_value* value, std::uint32_t kind, cson_sink sink, void* state,
                    const cson_write_options* options, std::uint32_t level) {
    if (value == nullptr || value->api == nullptr || sink == nullptr || options == nullptr)
        return cson_ArgError;
    if (value->api->kind != kind)
        return cson_TypeError;
    SinkOutput output(sink, state, false);
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
    SinkOutput output(sink, state, false);
    return write_tree(output, value, options);
}

int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options) {
    if (value == nullptr || stream == nullptr)
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
    if (value == nullptr || buffer == nullptr)
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
    SinkOutput output(sink, state, false);
    return write_string(output, {text, length}, escape_slashes);
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
    SinkOutput output(sink, state, false);
    return write_line_break(output, indentation, level);
}

} // namespace quillon
