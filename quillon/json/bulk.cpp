#include "quillon/json/bulk.h"

#include "quillon/json/grammar.h"
#include "quillon/json/push_parser.h"
#include "quillon/json/swar.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <cstring>
#include <string_view>

namespace quillon {

using namespace json;

namespace {

using bytes_at = const unsigned char*;

// The first byte from `at` on that isn't plain text of a string, or the end.
bytes_at skip_plain(bytes_at at, bytes_at end) {
    return skip_until(
        at, end,
        [](std::uint64_t bytes) {
            return bytes_below(bytes, 0x20) | bytes_equal(bytes, '"') | bytes_equal(bytes, '\\');
        },
        [](unsigned char c) { return c < 0x20 || c == '"' || c == '\\'; });
}

bool is_digit(unsigned char c) {
    return static_cast<unsigned char>(c - '0') <= 9;
}

bool closes_value(unsigned char c) {
    return c == ',' || c == ']' || c == '}';
}

// The powers of ten that a double holds exactly.
constexpr std::array<double, 23> powers_of_ten = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                  1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// True if eight bytes are digits.
bool are_digits(std::uint64_t bytes) {
    const std::uint64_t values = bytes ^ ONES * '0';
    return ((values | (values + ONES * (0x80 - 10))) & HIGH_BITS) == 0;
}

// The number that eight digits make, the first of them in the lowest byte: pairs, then fours, then
// all are put together side by side.
std::uint64_t eight_digits(std::uint64_t bytes) {
    bytes = (bytes & ONES * 0x0F) * (1 + (10 << 8)) >> 8;
    bytes = (bytes & 0x00FF00FF00FF00FF) * (1 + (100 << 16)) >> 16;
    return (bytes & 0x0000FFFF0000FFFF) * (1 + (std::uint64_t{10000} << 32)) >> 32;
}

// A number of the grammar, taken apart.
class number_token {
public:
    // False for what is no number. Whether another character may follow is for the caller to see.
    // A byte ahead of `limit` has to be none of a number's.
    bool scan(bytes_at at, bytes_at limit) {
        begin = at;
        negative = *at == '-';
        const bytes_at integer = at + (negative ? 1 : 0);
        at = take_digits(integer);
        const bool leading_zero = *integer == '0';
        if (at == integer || (leading_zero && at - integer > 1))
            return false;
        digits = at - integer;
        if (*at == '.') {
            is_float = true;
            const bytes_at fraction = at + 1;
            at = take_digits(take_eights(fraction, limit));
            decimals = at - fraction;
            digits += decimals;
        }
        if ((*at | 0x20) == 'e') {
            at = leading_zero && !is_float ? nullptr : skip_exponent(at + 1);
            is_float = exponent = true;
        }
        end = at;
        return at != nullptr;
    }

    // The value as the conversions of single steps give it; false where these must do it.
    bool to_integer(std::int32_t& number) const {
        if (digits > exact_digits || mantissa > 0x7FFFFFFF)
            return false;
        number = static_cast<std::int32_t>(signed_mantissa());
        return true;
    }

    // A quotient of two numbers that a double holds exactly is rounded once, as it should be.
    bool to_double(double& number) const {
        constexpr std::uint64_t largest = std::uint64_t{1} << 53;
        if (!exponent && digits <= exact_digits && mantissa <= largest) {
            number = static_cast<double>(signed_mantissa()) / powers_of_ten[decimals];
            return true;
        }
        const char* last = reinterpret_cast<const char*>(end);
        const auto result = std::from_chars(reinterpret_cast<const char*>(begin), last, number);
        return result.ec == std::errc() && result.ptr == last;
    }

    bytes_at end = nullptr;
    bool is_float = false;

private:
    static constexpr std::size_t exact_digits = 19; // of which every number fits the mantissa

    // Without a branch, as signs come at random.
    std::int64_t signed_mantissa() const {
        const std::int64_t sign = negative ? -1 : 0;
        return (static_cast<std::int64_t>(mantissa) ^ sign) - sign;
    }

    bytes_at take_eights(bytes_at at, bytes_at limit) {
        while (limit - at >= 8) {
            const std::uint64_t bytes = load_text(at);
            if (!are_digits(bytes))
                break;
            mantissa = mantissa * 100000000 + eight_digits(bytes);
            at += 8;
        }
        return at;
    }

    bytes_at take_digits(bytes_at at) {
        for (; is_digit(*at); ++at)
            mantissa = mantissa * 10 + (*at - std::uint64_t{'0'});
        return at;
    }

    static bytes_at skip_exponent(bytes_at at) {
        if (*at == '+' || *at == '-')
            ++at;
        const bytes_at first = at;
        while (is_digit(*at))
            ++at;
        return at != first ? at : nullptr;
    }

    bytes_at begin = nullptr;
    std::uint64_t mantissa = 0;
    std::size_t digits = 0;
    std::size_t decimals = 0;
    bool negative = false;
    bool exponent = false;
};

struct keyword {
    std::string_view text;
    cson_value* value;
};

constexpr std::array<keyword, 3> keywords = {{{"true", &shared_constants.true_value},
                                              {"false", &shared_constants.false_value},
                                              {"null", &shared_constants.null}}};

// Takes what can be told at a glance; all else is left to the single step, so that both roads
// agree.
class feeder {
public:
    feeder(cson_push_parser& used_parser, cson_tree_builder& used_builder, bytes_at bytes,
           std::uint32_t count)
        : parser(used_parser), builder(used_builder), at(bytes), end(bytes + count), limit(end) {
        while (limit != bytes && !closes_value(limit[-1]))
            --limit;
    }

    // False on a failure, with the position behind the offending byte.
    bool run() {
        bool ok = true;
        while (ok && at < end) {
            if (parser.state == cson_state_string)
                ok = take_run();
            else if (parser.type == 0 && resume())
                ok = take_tokens();
            else
                ok = step();
        }
        return ok;
    }

    bytes_at position() const { return at; }

private:
    bool step() { return cson_push_parser_step(&parser, *at++) != 0; }

    // Between tokens, all there is to know is the state and what kind of container is being filled.
    bool resume() {
        const signed char mode = cson_mode_of(parser);
        state = parser.state;
        behind_comma = mode == cson_mode_array ? cson_state_value : cson_state_key;
        return state >= cson_state_complete && state <= cson_state_first_element &&
               mode != cson_mode_done;
    }

    // Leaves the parser as single steps would have left it.
    void suspend() {
        const signed char mode = cson_mode_of(parser);
        parser.state = state;
        if (mode == cson_mode_key || mode == cson_mode_object)
            parser.stack[parser.top] = state == cson_state_complete || state == cson_state_value
                                           ? cson_mode_object
                                           : cson_mode_key;
    }

    // Takes tokens up to one that isn't plain or not in sight, and gives that one's first byte to
    // the single step.
    bool take_tokens() {
        bool ok = true;
        while (ok && at < limit) {
            while (*at <= ' ' && cson_is_white(*at))
                at = skip_blanks(at + 1);
            ok = take_token();
        }
        if (builder.error != cson_OK)
            return false;
        suspend();
        return at == end || step();
    }

    // Indentation, eight blanks at a time.
    bytes_at skip_blanks(bytes_at from) const {
        constexpr std::uint64_t blanks = ONES * ' ';
        while (limit - from >= 8 && load_text(from) == blanks)
            from += 8;
        while (*from == ' ')
            ++from;
        return from;
    }

    // False, with `at` on it, for a token that isn't plain, and on a failure of the builder.
    bool take_token() {
        switch (state) {
        case cson_state_first_element:
            if (*at == ']')
                return leave();
            [[fallthrough]];
        case cson_state_value:
            return take_value();
        case cson_state_first_key:
            if (*at == '}')
                return leave();
            [[fallthrough]];
        case cson_state_key:
            return *at == '"' && take_key();
        case cson_state_colon:
            return *at == ':' && pass(cson_state_value);
        default:
            return *at == ',' ? pass(behind_comma) : *at == closing_bracket() && leave();
        }
    }

    unsigned char closing_bracket() const { return behind_comma == cson_state_value ? ']' : '}'; }

    bool pass(std::uint8_t next_state) {
        ++at;
        state = next_state;
        return true;
    }

    bool take_value() {
        if (*at == '-' || is_digit(*at))
            return take_number();
        switch (*at) {
        case '"':
            return take_string();
        case '[':
            return enter(cson_kind_array, cson_mode_array);
        case '{':
            return enter(cson_kind_object, cson_mode_key);
        default:
            return take_keyword();
        }
    }

    bool enter(std::uint32_t kind, signed char mode) {
        if (parser.top == parser.depth || parser.top + 1 == parser.stack_capacity)
            return false;
        ++at;
        if (!accept(builder.begin_container(kind)))
            return false;
        parser.stack[++parser.top] = mode;
        const bool is_array = mode == cson_mode_array;
        state = is_array ? cson_state_first_element : cson_state_first_key;
        behind_comma = is_array ? cson_state_value : cson_state_key;
        return true;
    }

    // Behind the outermost container there is nothing to be taken.
    bool leave() {
        ++at;
        if (!accept(builder.end_container()))
            return false;
        --parser.top;
        parser.state = cson_state_complete;
        return resume();
    }

    // Goes on if the builder took what it was given.
    bool accept(int code) {
        if (code == cson_OK)
            return true;
        builder.error = code;
        return false;
    }

    // Takes the plain bytes and short escapes that come next in a string, and leaves what is behind
    // them to the single step.
    bool take_run() {
        do {
            if (!append_until(skip_plain(at, end)))
                return false;
        } while (take_escape());
        return at == end || step();
    }

    // Fills the token buffer to the brim before it grows, as single steps do.
    bool append_until(bytes_at stop) {
        while (at < stop) {
            const std::uint32_t room = parser.buffer_capacity - 1 - parser.buffer_count;
            const auto piece = std::min(static_cast<std::uint32_t>(stop - at), std::max(room, 1u));
            const bool appended = cson_append_bytes(parser, at, piece);
            at += appended ? piece : 1;
            if (!appended)
                return false;
        }
        return true;
    }

    // Only where both characters would fit into the token buffer, as they do for a moment.
    bool take_escape() {
        if (end - at < 2 || *at != '\\' || parser.buffer_capacity - parser.buffer_count < 3)
            return false;
        const unsigned char meaning = cson_escape_meaning(at[1]);
        at += meaning != 0 ? 2 : 0;
        return meaning != 0 && cson_append_bytes(parser, &meaning, 1);
    }

    // The text between the quote at `at` and the next one, and goes behind that; null with a length
    // of 0, and stays, where escapes are in it or its end isn't in sight.
    std::string_view take_text() {
        const bytes_at quote = skip_plain(at + 1, limit);
        if (quote == limit || *quote != '"')
            return {};
        const char* text = reinterpret_cast<const char*>(at + 1);
        at = quote + 1;
        return {text, reinterpret_cast<const char*>(quote)};
    }

    bool take_string() {
        const std::string_view text = take_text();
        if (text.data() == nullptr ||
            !accept(builder.string(text.data(), static_cast<std::uint32_t>(text.size()))))
            return false;
        state = cson_state_complete;
        return *at != ',' || pass(behind_comma);
    }

    bool take_key() {
        const std::string_view text = take_text();
        if (text.data() == nullptr ||
            !accept(builder.key(text.data(), static_cast<std::uint32_t>(text.size()))))
            return false;
        state = cson_state_colon;
        return *at != ':' || pass(cson_state_value);
    }

    // Single steps report numbers and keywords at the character that closes them; so these are
    // taken only together with the sight of it, and a failure is that character's.
    bytes_at closing_character(bytes_at behind) const {
        while (*behind <= ' ' && cson_is_white(*behind))
            ++behind;
        return closes_value(*behind) ? behind : nullptr;
    }

    bool accept_closed(int code, bytes_at closing) {
        at = closing;
        state = cson_state_complete;
        if (accept(code))
            return *at != ',' || pass(behind_comma);
        ++at;
        return false;
    }

    bool take_number() {
        number_token token;
        if (!token.scan(at, limit))
            return false;
        const bytes_at closing = closing_character(token.end);
        if (closing == nullptr)
            return false;
        if (token.is_float) {
            double number = 0.0;
            return takes_floats && token.to_double(number) &&
                   accept_closed(builder.number(number), closing);
        }
        std::int32_t integer = 0;
        return token.to_integer(integer) && accept_closed(builder.integer(integer), closing);
    }

    bool take_keyword() {
        const auto left = static_cast<std::size_t>(limit - at);
        for (const auto& [text, value] : keywords) {
            if (left <= text.size() || std::memcmp(at, text.data(), text.size()) != 0)
                continue;
            const bytes_at closing = closing_character(at + text.size());
            return closing != nullptr && accept_closed(builder.constant(value), closing);
        }
        return false;
    }

    cson_push_parser& parser;
    cson_tree_builder& builder;
    bytes_at at;
    bytes_at end;
    // Behind the last byte that ends every number and row of blanks: ahead of it, scans of those
    // come to their end by themselves.
    bytes_at limit;
    std::uint8_t state = cson_state_start;
    std::uint8_t behind_comma = cson_state_start;
    // A decimal point of several bytes is cut off in the token buffer, whose conversion ends there.
    const bool takes_floats = std::strlen(std::localeconv()->decimal_point) == 1;
};

} // namespace

std::uint32_t cson_feed(cson_push_parser& parser, cson_tree_builder& builder,
                        const unsigned char* bytes, std::uint32_t count, bool& failed) {
    feeder work(parser, builder, bytes, count);
    failed = !work.run();
    return static_cast<std::uint32_t>(work.position() - bytes);
}

} // namespace quillon
