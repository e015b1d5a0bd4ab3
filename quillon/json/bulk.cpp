#include "quillon/json/bulk.h"

#include "quillon/json/grammar.h"
#include "quillon/json/push_parser.h"
#include "quillon/json/text_scan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cstring>
#include <string_view>

namespace quillon {
namespace {

using bytes_at = const unsigned char*;

// The first byte from `at` on that isn't plain text of a string, or the end.
bytes_at skip_plain(bytes_at at, bytes_at end) {
    return cson_skip(
        at, end,
        [](std::uint64_t bytes) {
            return cson_bytes_below(bytes, 0x20) | cson_bytes_equal(bytes, '"') |
                   cson_bytes_equal(bytes, '\\');
        },
        [](unsigned char c) { return c < 0x20 || c == '"' || c == '\\'; });
}

bytes_at skip_white(bytes_at at, bytes_at end) {
    while (at < end && *at <= ' ' && cson_is_white(*at))
        ++at;
    return at;
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

// A number of the grammar, taken apart.
class number_token {
public:
    // False for what is no number. Whether another character may follow is for the caller to see.
    bool scan(bytes_at at, bytes_at block_end) {
        begin = at;
        end = block_end;
        negative = *at == '-';
        at += negative ? 1 : 0;
        const bytes_at integer = at;
        at = take_digits(at);
        const bool leading_zero = at != integer && *integer == '0';
        if (at == integer || (leading_zero && at - integer > 1))
            return false;
        digits = at - integer;
        const bool point = at < end && *at == '.';
        if (point) {
            const bytes_at behind = take_digits(at + 1);
            decimals = behind - at - 1;
            digits += decimals;
            at = behind;
        }
        exponent = at < end && (*at | 0x20) == 'e';
        is_float = point || exponent;
        if (exponent)
            at = leading_zero && !point ? nullptr : skip_exponent(at + 1);
        end = at;
        return at != nullptr;
    }

    // The value as the conversions of single steps give it; false where these must do it.
    bool to_integer(std::int32_t& number) const {
        constexpr std::uint64_t largest = 0x7FFFFFFF;
        if (digits > exact_digits || mantissa > largest)
            return false;
        const auto magnitude = static_cast<std::int32_t>(mantissa);
        number = negative ? -magnitude : magnitude;
        return true;
    }

    // A quotient of two numbers that a double holds exactly is rounded once, as it should be.
    bool to_double(double& number) const {
        constexpr std::uint64_t largest = std::uint64_t{1} << 53;
        if (!exponent && digits <= exact_digits && mantissa <= largest) {
            const double magnitude = static_cast<double>(mantissa) / powers_of_ten[decimals];
            number = negative ? -magnitude : magnitude;
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

    bytes_at take_digits(bytes_at at) {
        for (; at < end && is_digit(*at); ++at)
            mantissa = mantissa * 10 + (*at - std::uint64_t{'0'});
        return at;
    }

    bytes_at skip_exponent(bytes_at at) const {
        if (at < end && (*at == '+' || *at == '-'))
            ++at;
        const bytes_at first = at;
        while (at < end && is_digit(*at))
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

constexpr std::array<keyword, 3> keywords = {{{"true", &cson_shared.true_value},
                                              {"false", &cson_shared.false_value},
                                              {"null", &cson_shared.null}}};

// Takes what can be told at a glance; all else is left to the single step, so that both roads
// agree.
class feeder {
public:
    feeder(cson_push_parser& used_parser, cson_tree_builder& used_builder, bytes_at bytes,
           std::uint32_t count)
        : parser(used_parser), builder(used_builder), at(bytes), end(bytes + count) {}

    // False on a failure, with the position behind the offending byte.
    bool run() {
        while (at < end)
            if (!advance())
                return false;
        return true;
    }

    bytes_at position() const { return at; }

private:
    bool advance() {
        if (parser.type != 0 || parser.state > cson_state_first_element)
            return parser.state == cson_state_string ? take_run() : step();
        at = skip_white(at, end);
        if (at == end)
            return true;
        switch (parser.state) {
        case cson_state_complete:
            return take_behind_value();
        case cson_state_value:
        case cson_state_first_element:
            return take_value();
        case cson_state_key:
        case cson_state_first_key:
            return *at == '"' ? take_key() : step();
        case cson_state_colon:
            return *at == ':' ? take_colon() : step();
        default:
            return step();
        }
    }

    bool step() { return cson_push_parser_step(&parser, *at++) != 0; }

    // Goes on if the builder took what it was given.
    bool accept(int code) {
        builder.error = code;
        return code == cson_OK;
    }

    bool take_colon() {
        ++at;
        return cson_await_member(parser);
    }

    bool take_behind_value() {
        switch (*at) {
        case ',':
            ++at;
            return cson_await_next(parser);
        case ']':
            return leave(cson_mode_array);
        case '}':
            return leave(cson_mode_object);
        default:
            return step();
        }
    }

    bool take_value() {
        switch (*at) {
        case '"':
            return take_string();
        case '[':
            return enter(cson_kind_array, cson_mode_array);
        case '{':
            return enter(cson_kind_object, cson_mode_key);
        case 't':
        case 'f':
        case 'n':
            return take_keyword();
        default:
            return *at == '-' || is_digit(*at) ? take_number() : step();
        }
    }

    bool enter(std::uint32_t kind, signed char mode) {
        ++at;
        return accept(builder.begin_container(kind)) && cson_enter_container(parser, mode);
    }

    bool leave(signed char mode) {
        ++at;
        return accept(builder.end_container()) && cson_leave_container(parser, mode);
    }

    // Fills the token buffer to the brim before it grows, as single steps do.
    bool take_run() {
        const bytes_at stop = skip_plain(at, end);
        while (at < stop) {
            const std::uint32_t room = parser.buffer_capacity - 1 - parser.buffer_count;
            const auto piece = std::min(static_cast<std::uint32_t>(stop - at), std::max(room, 1u));
            const bool appended = cson_append_bytes(parser, at, piece);
            at += appended ? piece : 1;
            if (!appended)
                return false;
        }
        return at == end || step();
    }

    // The closing quote of a string without escapes, or null where it isn't in sight.
    bytes_at closing_quote() const {
        const bytes_at stop = skip_plain(at + 1, end);
        return stop != end && *stop == '"' ? stop : nullptr;
    }

    bool take_string() {
        const bytes_at quote = closing_quote();
        if (quote == nullptr)
            return step();
        const char* text = reinterpret_cast<const char*>(at + 1);
        const auto length = static_cast<std::uint32_t>(quote - at - 1);
        at = quote + 1;
        parser.state = cson_state_complete;
        if (!accept(builder.string(text, length)))
            return false;
        return at == end || !closes_value(*at) || take_behind_value();
    }

    bool take_key() {
        const bytes_at quote = closing_quote();
        if (quote == nullptr)
            return step();
        const char* text = reinterpret_cast<const char*>(at + 1);
        const auto length = static_cast<std::uint32_t>(quote - at - 1);
        at = quote + 1;
        parser.state = cson_state_colon;
        if (!accept(builder.key(text, length)))
            return false;
        return at == end || *at != ':' || take_colon();
    }

    // Single steps report numbers and keywords at the character that closes them; so these are
    // taken only together with the sight of it, and a failure is that character's.
    bytes_at closing_character(bytes_at behind) const {
        const bytes_at closing = skip_white(behind, end);
        return closing != end && closes_value(*closing) ? closing : nullptr;
    }

    bool accept_closed(int code, bytes_at closing) {
        at = code == cson_OK ? closing : closing + 1;
        parser.state = cson_state_complete;
        return accept(code) && take_behind_value();
    }

    bool take_number() {
        number_token token;
        if (!token.scan(at, end))
            return step();
        const bytes_at closing = closing_character(token.end);
        if (closing == nullptr)
            return step();
        if (token.is_float) {
            double number = 0.0;
            if (!takes_floats || !token.to_double(number))
                return step();
            return accept_closed(builder.number(number), closing);
        }
        std::int32_t integer = 0;
        if (!token.to_integer(integer))
            return step();
        return accept_closed(builder.integer(integer), closing);
    }

    bool take_keyword() {
        const auto left = static_cast<std::size_t>(end - at);
        for (const auto& [text, value] : keywords) {
            if (left <= text.size() || std::memcmp(at, text.data(), text.size()) != 0)
                continue;
            const bytes_at closing = closing_character(at + text.size());
            if (closing != nullptr)
                return accept_closed(builder.constant(value), closing);
        }
        return step();
    }

    cson_push_parser& parser;
    cson_tree_builder& builder;
    bytes_at at;
    bytes_at end;
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
