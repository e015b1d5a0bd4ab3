#include "quillon/json/writer.h"

#include "quillon/json/containers.h"
#include "quillon/json/number.h"
#include "quillon/json/pool.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"
#include "quillon/json/swar.h"

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

using bytes_at = const unsigned char*;

// --- Outputs -----------------------------------------------------------------------------------

// Where pieces go. A run is a row of pieces of one byte each.
class sink_output {
public:
    sink_output(cson_sink used_sink, void* used_state, bool joins)
        : sink(used_sink), state(used_state), joins_runs(joins) {}

    int piece(const void* bytes, std::uint32_t count) { return sink(state, bytes, count); }

    int run(bytes_at bytes, std::uint32_t count) {
        if (joins_runs)
            return count != 0 ? sink(state, bytes, count) : cson_OK;
        int code = cson_OK;
        for (std::uint32_t i = 0; i < count && code == cson_OK; ++i)
            code = sink(state, bytes + i, 1);
        return code;
    }

    static unsigned char* room(std::uint64_t) { return nullptr; }

    static void advance(const unsigned char*) {}

private:
    cson_sink sink;
    void* state;
    bool joins_runs; // where a sink of our own can't tell the difference
};

class buffer_output {
public:
    explicit buffer_output(cson_buffer& target) : buffer(target) {}

    int piece(const void* bytes, std::uint32_t count) {
        const std::uint64_t needed = std::uint64_t{buffer.used} + count;
        if (needed >= buffer.capacity) {
            const int code = grow_to(needed * 2);
            if (code != cson_OK)
                return code;
        }
        append(bytes, count);
        return cson_OK;
    }

    // Where up to `count` bytes may be put before the buffer would have to grow, or null.
    unsigned char* room(std::uint64_t count) {
        return buffer.used + count < buffer.capacity ? buffer.mem + buffer.used : nullptr;
    }

    // Adds what was put there, up to `end`.
    void advance(const unsigned char* end) {
        buffer.used = static_cast<std::uint32_t>(end - buffer.mem);
    }

    // Grows where single bytes would have made it grow.
    int run(bytes_at bytes, std::uint32_t count) {
        if (std::uint64_t{buffer.used} + count < buffer.capacity) {
            append(bytes, count);
            return cson_OK;
        }
        return run_growing(bytes, count);
    }

private:
    int run_growing(bytes_at bytes, std::uint32_t count) {
        int code = cson_OK;
        while (count != 0 && code == cson_OK) {
            const std::uint32_t room = buffer.capacity - buffer.used;
            const std::uint32_t fitting = std::min(count, room != 0 ? room - 1 : 0);
            append(bytes, fitting);
            bytes += fitting;
            count -= fitting;
            if (count == 0)
                break;
            code = piece(bytes++, 1);
            --count;
        }
        return code;
    }

    int grow_to(std::uint64_t capacity) {
        if (capacity > std::numeric_limits<std::uint32_t>::max())
            return cson_ArgError;
        return cson_buffer_reserve_bytes(&buffer, static_cast<std::uint32_t>(capacity));
    }

    void append(const void* bytes, std::uint32_t count) {
        copy_bytes(buffer.mem + buffer.used, bytes, count);
        buffer.used += count;
    }

    cson_buffer& buffer;
};

template <class Output>
int write_piece(Output& output, std::string_view text) {
    return output.piece(text.data(), static_cast<std::uint32_t>(text.size()));
}

// --- Strings -----------------------------------------------------------------------------------

// By byte: 0 for what goes out as it is, the letter of a short escape, or "u" for what ends the
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

constexpr std::array<char, 256> escapes = make_escapes();

bool goes_out_raw(unsigned char c, bool escape_slashes) {
    return escapes[c] == 0 || (c == '/' && !escape_slashes);
}

// The high bit of each of eight bytes that may not go out as it is; not exact behind the first.
// Where a subtraction sets one too many, the byte is beyond ASCII and counts anyway.
std::uint64_t escaped_in(std::uint64_t bytes, bool escape_slashes) {
    const std::uint64_t quotes = (bytes ^ ONES * '"') - ONES;
    const std::uint64_t backslashes = (bytes ^ ONES * '\\') - ONES;
    const std::uint64_t slashes = escape_slashes ? (bytes ^ ONES * '/') - ONES : 0;
    return (bytes | (bytes - ONES * 0x20) | quotes | backslashes | slashes) & HIGH_BITS;
}

// The first byte from `at` on that may not go out as it is.
bytes_at skip_raw(bytes_at at, bytes_at end, bool escape_slashes) {
    return skip_until(
        at, end,
        [escape_slashes](std::uint64_t bytes) { return escaped_in(bytes, escape_slashes); },
        [escape_slashes](unsigned char c) { return !goes_out_raw(c, escape_slashes); });
}

unsigned char* put(unsigned char* to, std::string_view text) {
    copy_bytes(to, text.data(), text.size());
    return to + text.size();
}

// One character that may not go out as it is, in up to six bytes. Null where it is beyond four
// digits.
unsigned char* put_character(unsigned char* to, bytes_at& at, bytes_at end, bool escape_slashes) {
    constexpr const char* digits = "0123456789abcdef";
    const unsigned char first = *at;
    const bytes_at begin = at;
    const std::uint32_t code_point = cson_utf8_next(at, end, &at);
    if (at - begin == 1) {
        const bool raw = goes_out_raw(first, escape_slashes) || first >= 0x80;
        to[0] = '\\';
        to[raw ? 0 : 1] = raw ? first : static_cast<unsigned char>(escapes[first]);
        return to + (raw ? 1 : 2);
    }
    if (code_point > 0xFFFF)
        return nullptr;
    to = put(to, "\\u");
    for (unsigned i = 0; i < 4; ++i)
        to[i] = static_cast<unsigned char>(digits[code_point >> (12 - 4 * i) & 0xF]);
    return to + 4;
}

// No character takes more than three times its bytes.
std::uint64_t quoted_room(std::uint32_t length) {
    return 3 * std::uint64_t{length} + 8;
}

// The next eight bytes of a string's text; behind the end, blanks. The eight bytes ahead of the end
// can always be read, as in front of a text stands its value.
std::uint64_t next_bytes(bytes_at at, bytes_at end) {
    if (end - at >= 8)
        return load_text(at);
    const auto missing = static_cast<unsigned>(8 - (end - at));
    return load_text(end - 8) >> 8 * missing | ONES * ' ' << 8 * (8 - missing);
}

// The string between quotes, into room for it. Null, with nothing to be kept, where a character
// can't be written.
unsigned char* put_quoted(unsigned char* to, const cson_string* string, bool escape_slashes) {
    auto at = reinterpret_cast<bytes_at>(string + 1);
    const bytes_at end = at + string->length;
    *to++ = '"';
    while (at < end) {
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
        bytes_at behind = at; // whose address is taken, while `at` stays in a register
        to = put_character(to, behind, end, escape_slashes);
        if (to == nullptr)
            return nullptr;
        at = behind;
    }
    *to++ = '"';
    return to;
}

// Ends at a zero byte; a string that fails has no closing quote.
template <class Output>
int write_text(Output& output, const char* text, std::uint32_t length, bool escape_slashes) {
    if (text == nullptr || length == 0 || *text == 0)
        return write_piece(output, "\"\"");
    auto at = reinterpret_cast<bytes_at>(text);
    const bytes_at end = at + length;
    int code = write_piece(output, "\"");
    while (code == cson_OK && at < end && *at != 0) {
        const bytes_at stop = skip_raw(at, end, escape_slashes);
        code = output.run(at, static_cast<std::uint32_t>(stop - at));
        at = stop;
        if (code != cson_OK || at == end || *at == 0)
            continue;
        std::array<unsigned char, 32> character; // more than it takes
        const unsigned char* behind = put_character(character.data(), at, end, escape_slashes);
        code = behind != nullptr
                   ? output.piece(character.data(),
                                  static_cast<std::uint32_t>(behind - character.data()))
                   : int{cson_RangeError};
    }
    return code == cson_OK ? write_piece(output, "\"") : code;
}

template <class Output>
int write_string(Output& output, const cson_string* string, bool escape_slashes) {
    unsigned char* to = output.room(quoted_room(string->length));
    to = to != nullptr ? put_quoted(to, string, escape_slashes) : nullptr;
    if (to == nullptr)
        return write_text(output, view_of(string).data(), string->length, escape_slashes);
    output.advance(to);
    return cson_OK;
}

// --- Scalars -----------------------------------------------------------------------------------

template <class Output>
int write_integer(Output& output, std::int32_t number) {
    std::array<unsigned char, NUMBER_ROOM> text;
    unsigned char* room = output.room(text.size());
    unsigned char* begin = room != nullptr ? room : text.data();
    const unsigned char* end = put_integer(begin, number);
    if (room == nullptr)
        return output.piece(begin, static_cast<std::uint32_t>(end - begin));
    output.advance(end);
    return cson_OK;
}

template <class Output>
int write_double(Output& output, double number, std::string_view point) {
    std::array<unsigned char, DOUBLE_ROOM> text;
    unsigned char* room = output.room(NUMBER_ROOM);
    unsigned char* begin = room != nullptr ? room : text.data();
    const unsigned char* end = put_double(begin, number, point);
    if (room != nullptr && end != nullptr) {
        output.advance(end);
        return cson_OK;
    }
    if (end == nullptr) {
        begin = text.data();
        end = put_formatted(begin, number);
    }
    if (end == nullptr)
        return cson_RangeError;
    return output.piece(begin, static_cast<std::uint32_t>(end - begin));
}

template <class Output>
int write_line_break(Output& output, std::uint8_t indentation, std::uint32_t level) {
    static constexpr std::string_view blanks = "                                ";
    static constexpr std::string_view tabs =
        "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    if (indentation == 0)
        return cson_OK;
    const std::string_view indent = indentation == 1 ? tabs : blanks;
    int code = write_piece(output, "\n");
    std::uint64_t left = std::uint64_t{level} * indentation;
    while (left != 0 && code == cson_OK) {
        const auto part = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, indent.size()));
        code = output.run(reinterpret_cast<bytes_at>(indent.data()), part);
        left -= part;
    }
    return code;
}

// --- Trees -------------------------------------------------------------------------------------

template <class Output>
class tree_writer {
public:
    tree_writer(Output& used_output, const cson_write_options& used_options, std::uint32_t level)
        : output(used_output), options(used_options), first_level(level) {}

    int write(const cson_value* value) {
        for (;;) {
            const int code = write_value(value);
            if (code != cson_OK)
                return code;
            do {
                if (open.empty())
                    return cson_OK;
                const int next_code = write_up_to_next(value);
                if (next_code != cson_OK)
                    return next_code;
            } while (value == nullptr);
        }
    }

private:
    // A container of which `next` entries are written.
    struct frame {
        const cson_array* array; // one of the two is null
        const cson_object* object;
        std::uint32_t count;
        std::uint32_t next;
        bool indent;
        bool comma_due;
    };

    std::uint32_t level() const { return first_level + static_cast<std::uint32_t>(open.size()); }

    int write_value(const cson_value* value) {
        if (value == nullptr || value->api == nullptr)
            return cson_ArgError;
        switch (value->api->kind) {
        case cson_kind_undefined:
        case cson_kind_null:
            return write_piece(output, "null");
        case cson_kind_boolean:
            return write_piece(output, value->value != nullptr ? "true" : "false");
        case cson_kind_integer:
            return write_integer(output, payload_or_zero<std::int32_t>(value));
        case cson_kind_double:
            return write_double(output, payload_or_zero<double>(value), point);
        case cson_kind_string:
            return write_string(output, static_cast<const cson_string*>(value->value),
                                options.escape_slashes);
        case cson_kind_array: {
            const auto* array = static_cast<const cson_array*>(value->value);
            return begin({array, nullptr, array->list.count, 0, false, false}, "[]");
        }
        case cson_kind_object: {
            const auto* object = static_cast<const cson_object*>(value->value);
            return begin({nullptr, object, object->list.count, 0, false, false}, "{}");
        }
        default:
            return cson_TypeError;
        }
    }

    // The shared zeros have no payload.
    template <class Number>
    static Number payload_or_zero(const cson_value* value) {
        return value->value != nullptr ? *static_cast<const Number*>(value->value) : Number{0};
    }

    int begin(frame opened, std::string_view brackets) {
        if (level() > options.max_depth)
            return cson_RangeError;
        if (opened.count == 0)
            return write_piece(output, brackets);
        opened.indent =
            options.indentation != 0 && (opened.count != 1 || options.indent_single_member);
        const int code = write_piece(output, brackets.substr(0, 1));
        if (code != cson_OK)
            return code;
        if (!open.push(opened))
            return cson_AllocError;
        return opened.indent ? write_line_break(output, options.indentation, level()) : cson_OK;
    }

    // Writes what stands ahead of the next value: a comma that is due, and the value's key. The
    // value is null where there is none: behind the end of a container, for a pair that is skipped.
    int write_up_to_next(const cson_value*& value) {
        frame& top = open.top();
        value = nullptr;
        if (top.next == top.count)
            return end();
        const std::uint32_t index = top.next++;
        const bool comma = std::exchange(top.comma_due, false);
        int code = cson_OK;
        if (top.array != nullptr) {
            value = top.array->list.items[index];
            code = comma ? write_comma(top.indent) : cson_OK;
        } else {
            const cson_kvp* pair = top.object->list.items[index];
            prefetch(pair, 512);
            const cson_string* key = key_of(pair);
            if (key == nullptr)
                return comma ? write_comma(top.indent) : cson_OK;
            value = pair->value;
            code = write_key(key, comma, top.indent);
        }
        top.comma_due = top.next != top.count;
        if (value == nullptr)
            value = &shared_constants.null;
        return code;
    }

    int write_key(const cson_string* key, bool comma, bool indent) {
        unsigned char* to = indent ? nullptr : output.room(quoted_room(key->length) + 4);
        if (to != nullptr)
            to = put_quoted(comma ? put(to, ", ") : to, key, options.escape_slashes);
        if (to != nullptr) {
            output.advance(put(to, options.space_after_colon ? ": " : ":"));
            return cson_OK;
        }
        int code = comma ? write_comma(indent) : cson_OK;
        if (code == cson_OK)
            code = write_string(output, key, options.escape_slashes);
        return code == cson_OK ? write_piece(output, options.space_after_colon ? ": " : ":") : code;
    }

    int write_comma(bool indent) {
        if (!indent)
            return output.run(reinterpret_cast<bytes_at>(", "), 2);
        const int code = write_piece(output, ",");
        return code == cson_OK ? write_line_break(output, options.indentation, level()) : code;
    }

    int end() {
        const bool is_array = open.top().array != nullptr;
        const bool indent = open.top().indent;
        open.pop();
        const int code = indent ? write_line_break(output, options.indentation, level()) : cson_OK;
        return code == cson_OK ? write_piece(output, is_array ? "]" : "}") : code;
    }

    Output& output;
    const cson_write_options& options;
    const std::uint32_t first_level;
    const std::string_view point = std::localeconv()->decimal_point;
    Stack<frame> open;
};

template <class Output>
int write_tree(Output& output, const cson_value* value, const cson_write_options* options) {
    const cson_write_options defaults;
    const cson_write_options& used = options != nullptr ? *options : defaults;
    tree_writer<Output> writer(output, used, 0);
    const int code = writer.write(value);
    return code == cson_OK && used.add_newline ? write_piece(output, "\n") : code;
}

int write_container(const cson_value* value, std::uint32_t kind, cson_sink sink, void* state,
                    const cson_write_options* options, std::uint32_t level) {
    if (value == nullptr || value->api == nullptr || sink == nullptr || options == nullptr)
        return cson_ArgError;
    if (value->api->kind != kind)
        return cson_TypeError;
    sink_output output(sink, state, false);
    return tree_writer<sink_output>(output, *options, level).write(value);
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
    sink_output output(sink, state, false);
    return write_tree(output, value, options);
}

int cson_write_stream(const cson_value* value, std::FILE* stream,
                      const cson_write_options* options) {
    if (value == nullptr || stream == nullptr)
        return cson_ArgError;
    cson_write_options with_newline;
    with_newline.add_newline = true;
    sink_output output(write_to_stream, stream, true);
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
    buffer_output output(*buffer);
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
    sink_output output(sink, state, false);
    return write_text(output, text, length, escape_slashes);
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
    sink_output output(sink, state, false);
    return write_line_break(output, indentation, level);
}

} // namespace quillon
