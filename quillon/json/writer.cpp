// SPDX-License-Identifier: MIT
#include "quillon/json/writer.h"

#include "quillon/json/escape.h"
#include "quillon/json/number.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"
#include "quillon/platform/files.h"

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

// --- Output ------------------------------------------------------------------------------------

std::string_view view_between(Bytes begin, Bytes end) {
    return {reinterpret_cast<const char*>(begin), reinterpret_cast<const char*>(end)};
}

// The length of the piece that a text without scalars begins with. An escape, an empty string, an
// empty container and a colon with its blank are one piece, all others are single bytes.
// `in_string` says whether the text begins, and after the piece goes on, within quotes.
std::size_t next_piece(std::string_view text, bool& in_string) {
    const auto next = [text](char c) { return text.size() > 1 && text[1] == c; };
    const char first = text.front();
    if (in_string && first == '\\')
        return next('u') ? 6 : 2;
    const bool is_pair =
        !in_string && ((first == '"' && next('"')) || (first == '[' && next(']')) ||
                       (first == '{' && next('}')) || (first == ':' && next(' ')));
    if (first == '"' && !is_pair)
        in_string = !in_string;
    return is_pair ? 2 : 1;
}

// Receives the text in runs and passes it to a sink in pieces. A run that a buffer has space for is
// written into it directly.
//
// The first code other than 0 is the result; what is added after it is ignored.
class Output {
public:
    // The longest run: any double, with the prefix before it.
    static constexpr std::size_t LARGEST_RUN = 512;

    Output(cson_sink used_sink, void* used_state, bool joins = false)
        : sink(used_sink), state(used_state), joins_pieces(joins) {}

    explicit Output(cson_buffer& target);

    void fail(int failure) {
        if (code == cson_OK)
            code = failure;
    }

    // Returns space for a run of up to `count` bytes; `add` ends the run.
    unsigned char* space(std::size_t count) {
        const bool fits = buffer != nullptr && code == cson_OK &&
                          std::uint64_t{buffer->used} + count < buffer->capacity;
        run = fits ? buffer->mem + buffer->used : block.data();
        return run;
    }

    // Adds the run up to `end`, which begins within quotes or not.
    void add(Bytes end, bool in_string = false) {
        if (is_direct())
            buffer->used = static_cast<std::uint32_t>(end - buffer->mem);
        else
            add_pieces(view_between(run, end), in_string);
    }

    // Adds the run, of which the bytes from `scalar` on are a piece.
    void add_scalar(Bytes scalar, Bytes end) {
        if (is_direct())
            return add(end);
        add(scalar);
        add_piece(view_between(scalar, end));
    }

    int code = cson_OK;

private:
    bool is_direct() const { return run != block.data(); }

    void add_piece(std::string_view text) {
        if (code == cson_OK && !text.empty())
            code = sink(state, text.data(), static_cast<std::uint32_t>(text.size()));
    }

    void add_pieces(std::string_view text, bool in_string) {
        while (!text.empty() && code == cson_OK) {
            const std::size_t length = joins_pieces ? text.size() : next_piece(text, in_string);
            add_piece(text.substr(0, length));
            text.remove_prefix(length);
        }
    }

    cson_sink sink;
    void* state;
    cson_buffer* buffer = nullptr; // what the sink fills, if that is a buffer
    unsigned char* run = nullptr;
    bool joins_pieces; // the library's own sinks can't tell the difference
    std::array<unsigned char, LARGEST_RUN> block;
};

// Grows to twice what a piece needs.
int append_to_buffer(void* state, const void* bytes, std::uint32_t count) {
    auto& buffer = *static_cast<cson_buffer*>(state);
    const std::uint64_t needed = std::uint64_t{buffer.used} + count;
    if (needed >= buffer.capacity) {
        if (needed * 2 > std::numeric_limits<std::uint32_t>::max())
            return cson_ArgError;
        const int code = cson_buffer_reserve_bytes(&buffer, static_cast<std::uint32_t>(needed * 2));
        if (code != cson_OK)
            return code;
    }
    copy_bytes(buffer.mem + buffer.used, bytes, count);
    buffer.used += count;
    return cson_OK;
}

Output::Output(cson_buffer& target)
    : sink(append_to_buffer), state(&target), buffer(&target), joins_pieces(false) {}

// --- Strings -----------------------------------------------------------------------------------

// By byte: 0 for a byte that is written unchanged, the letter of a short escape, or "u" for one
// that ends the string (the zero byte) or is beyond ASCII. A slash is escaped on request only.
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

// The high bit of each of eight bytes that cannot be written unchanged; exact up to the first.
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

// No prefix. A prefix is written before a value or key: up to two bytes, of which two can be read.
constexpr std::string_view NOTHING = std::string_view("\0").substr(0, 0);

unsigned char* put_prefix(unsigned char* to, std::string_view prefix) {
    std::memcpy(to, prefix.data(), 2);
    return to + prefix.size();
}

// The character at `at`, which `escaped_in` has marked, in up to six bytes. Null for one that
// four hex digits cannot represent.
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
constexpr std::size_t CHARACTER_SPACE = 16;

// Two positions that advance together: in the output, and in the text that is being written.
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

// Writes the prefix and a quoted string, which ends at a zero byte. One that fails has no closing
// quote. The eight bytes before the text's end must be readable.
void write_string(Output& output, std::string_view prefix, std::string_view text,
                  bool escape_slashes) {
    // No character takes more than three times its bytes.
    const std::size_t most = prefix.size() + 3 * text.size() + CHARACTER_SPACE + 2;
    const std::size_t space = std::min(most, Output::LARGEST_RUN);
    unsigned char* to = output.space(space);
    Bytes limit = to + space - CHARACTER_SPACE - 1;
    to = put_prefix(to, prefix);
    if (text.empty() || text.front() == 0)
        return output.add(put(to, "\"\""));
    Cursor cursor = {put(to, "\""), bytes_of(text)};
    const Bytes end = cursor.at + text.size();
    for (bool in_string = false;; in_string = true) {
        cursor = put_characters(cursor.to, limit, cursor.at, end, escape_slashes);
        const bool is_whole = cursor.at == end || *cursor.at == 0;
        if (is_whole)
            *cursor.to++ = '"';
        output.add(cursor.to, in_string);
        if (!is_whole && cursor.to <= limit)
            output.fail(cson_RangeError);
        if (is_whole || output.code != cson_OK)
            return;
        cursor.to = output.space(space);
        limit = cursor.to + space - CHARACTER_SPACE - 1;
    }
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

// For a double that `put_scalar` doesn't write.
void write_formatted(Output& output, std::string_view prefix, double number) {
    unsigned char* to = put_prefix(output.space(prefix.size() + DOUBLE_ROOM), prefix);
    const unsigned char* end = put_formatted(to, number);
    output.add_scalar(to, end != nullptr ? end : to);
    if (end == nullptr)
        output.fail(cson_RangeError);
}

void write_scalar(Output& output, std::string_view prefix, const cson_value* value,
                  std::string_view point) {
    unsigned char* to = put_prefix(output.space(prefix.size() + NUMBER_ROOM), prefix);
    const unsigned char* end = put_scalar(to, value, point);
    if (end == nullptr)
        return write_formatted(output, prefix, number_of<double>(value));
    output.add_scalar(to, end);
}

void write_line_break(Output& output, std::uint8_t indentation, std::uint32_t level) {
    if (indentation == 0)
        return;
    output.add(put(output.space(1), "\n"));
    std::uint64_t left = std::uint64_t{level} * indentation;
    while (left != 0 && output.code == cson_OK) {
        const auto part =
            static_cast<std::size_t>(std::min<std::uint64_t>(left, Output::LARGEST_RUN));
        unsigned char* to = output.space(part);
        std::memset(to, indentation == 1 ? '\t' : ' ', part);
        output.add(to + part);
        left -= part;
    }
}

// --- Trees -------------------------------------------------------------------------------------

class TreeWriter {
public:
    TreeWriter(Output& used_output, const cson_write_options& used_options, std::uint32_t level)
        : output(used_output), options(used_options), first_level(level) {}

    int write(const cson_value* value) {
        write_value(NOTHING, value);
        while (output.code == cson_OK && !open.empty())
            write_entries();
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
        bool comma_due; // after an entry that is not the last
    };

    std::uint32_t level() const { return first_level + static_cast<std::uint32_t>(open.size()); }

    // Writes a scalar or string, or opens a container, after the prefix.
    void write_value(std::string_view prefix, const cson_value* value) {
        if (value == nullptr || value->api == nullptr)
            return fail(prefix, cson_ArgError);
        switch (value->api->kind) {
        case cson_kind_string:
            return write_string(output, prefix,
                                view_of(static_cast<const cson_string*>(value->value)),
                                options.escape_slashes);
        case cson_kind_array:
            return begin(prefix, payload_of<cson_array>(value)->list, true);
        case cson_kind_object:
            return begin(prefix, payload_of<cson_object>(value)->list, false);
        default:
            return value->api->kind < cson_kind_string ? write_scalar(output, prefix, value, point)
                                                       : fail(prefix, cson_TypeError);
        }
    }

    void fail(std::string_view prefix, int code) {
        output.add(put_prefix(output.space(2), prefix));
        output.fail(code);
    }

    template <typename List>
    void begin(std::string_view prefix, const List& list, bool is_array) {
        if (level() > options.max_depth)
            return fail(prefix, cson_RangeError);
        unsigned char* to = put_prefix(output.space(prefix.size() + 2), prefix);
        *to++ = is_array ? '[' : '{';
        if (list.count == 0)
            *to++ = is_array ? ']' : '}';
        output.add(to);
        if (list.count == 0)
            return;
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
        output.add(put(output.space(1), ended.is_array ? "]" : "}"));
    }

    // Writes entries of the container on top, up to its end or to the first container among them.
    void write_entries() {
        const std::size_t depth = open.size();
        Frame& top = open.top();
        if (top.is_array && !top.indent)
            write_scalars(top);
        while (top.next != top.count && output.code == cson_OK) {
            const void* entry = top.entries[top.next++];
            prefetch(entry, FETCH_DISTANCE);
            const std::string_view separator = take_separator(top);
            if (top.is_array) {
                top.comma_due = top.next != top.count;
                write_value(separator, or_null(static_cast<const cson_value*>(entry)));
            } else {
                write_member(separator, static_cast<const cson_kvp*>(entry), top);
            }
            if (output.code != cson_OK || open.size() != depth)
                return;
        }
        end();
    }

    // Elements as long as they are scalars: a sixth of the time of a mesh in bench_json.
    void write_scalars(Frame& top) {
        for (; top.next != top.count && output.code == cson_OK; ++top.next) {
            const auto* value = static_cast<const cson_value*>(top.entries[top.next]);
            if (value == nullptr || value->api == nullptr || value->api->kind >= cson_kind_string)
                break;
            prefetch(value, FETCH_DISTANCE);
            write_scalar(output, top.next != 0 ? ", " : NOTHING, value, point);
        }
        top.comma_due = top.next != 0 && top.next != top.count;
    }

    // A pair without a key writes neither itself nor a comma.
    void write_member(std::string_view separator, const cson_kvp* pair, Frame& top) {
        const cson_string* key = key_of(pair);
        if (key == nullptr)
            return output.add(put_prefix(output.space(2), separator));
        prefetch(pair->value, FETCH_DISTANCE);
        top.comma_due = top.next != top.count;
        write_string(output, separator, view_of(key), options.escape_slashes);
        write_value(options.space_after_colon ? ": " : ":", or_null(pair->value));
    }

    static const cson_value* or_null(const cson_value* value) {
        return value != nullptr ? value : &shared_constants.null;
    }

    // What comes before an entry; a line break has been written.
    std::string_view take_separator(Frame& top) {
        if (!std::exchange(top.comma_due, false))
            return NOTHING;
        if (!top.indent)
            return ", ";
        output.add(put(output.space(1), ","));
        break_line();
        return NOTHING;
    }

    void break_line() { write_line_break(output, options.indentation, level()); }

    Output& output;
    const cson_write_options& options;
    const std::uint32_t first_level;
    const std::string_view point = std::localeconv()->decimal_point;
    Stack<Frame> open;
};

int write_tree(Output& output, const cson_value* value, const cson_write_options* options) {
    const cson_write_options defaults;
    const cson_write_options& used = options != nullptr ? *options : defaults;
    TreeWriter(output, used, 0).write(value);
    if (used.add_newline)
        output.add(put(output.space(1), "\n"));
    return output.code;
}

int write_container(const cson_value* value, std::uint32_t kind, cson_sink sink, void* state,
                    const cson_write_options* options, std::uint32_t level) {
    if (value == nullptr || sink == nullptr || options == nullptr)
        return cson_ArgError;
    if (!has_kind(value, kind))
        return cson_TypeError;
    Output output(sink, state);
    return TreeWriter(output, *options, level).write(value);
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
    Output output(sink, state);
    return write_tree(output, value, options);
}

int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options) {
    if (stream == nullptr)
        return cson_ArgError;
    cson_write_options with_newline;
    with_newline.add_newline = true;
    Output output(write_to_stream, stream, true);
    const int code = write_tree(output, value, options != nullptr ? options : &with_newline);
    if (code != cson_OK)
        return code;
    return std::fflush(stream) == 0 ? cson_OK : cson_IOError;
}

int cson_write_path(const cson_value* value, const char* path, const cson_write_options* options) {
    if (value == nullptr || path == nullptr)
        return cson_ArgError;
    std::FILE* stream = platform::open_file(path, "wb");
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
    Output output(*buffer);
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
    Output output(sink, state);
    write_string(output, NOTHING, {text, length}, escape_slashes);
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
    Output output(sink, state);
    write_line_break(output, indentation, level);
    return output.code;
}

} // namespace quillon
