#include "quillon/json/push_parser.h"

#include "quillon/json/allocator.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

constexpr const char* parser_tag = "cson_push_parser";

void* allocate_plainly(std::size_t bytes) {
    return reallocate(nullptr, bytes, parser_tag);
}

void release_plainly(void* block) {
    free(block, parser_tag);
}

bool fail(cson_push_parser& parser, std::uint8_t error) {
    parser.error = error;
    return false;
}

bool report(cson_push_parser& parser, int event, const cson_push_data* data) {
    return parser.callback == nullptr || parser.callback(parser.context, event, data) != 0;
}

bool is_in_container_value(const cson_push_parser& parser) {
    return cson_mode_of(parser) == cson_mode_array || cson_mode_of(parser) == cson_mode_object;
}

bool double_stack(cson_push_parser& parser) {
    if (parser.stack_capacity > std::numeric_limits<std::int32_t>::max() / 2)
        return fail(parser, cson_push_out_of_memory);
    const std::int32_t capacity = parser.stack_capacity * 2;
    auto* grown = static_cast<signed char*>(parser.allocate(static_cast<std::size_t>(capacity)));
    if (grown == nullptr)
        return fail(parser, cson_push_out_of_memory);
    std::copy_n(parser.stack, parser.stack_capacity, grown);
    if (parser.stack != parser.static_stack.data())
        parser.release(parser.stack);
    parser.stack = grown;
    parser.stack_capacity = capacity;
    return true;
}

// --- Token buffer ------------------------------------------------------------------------------

void clear_buffer(cson_push_parser& parser) {
    parser.buffer_count = 0;
    parser.buffer[0] = 0;
}

void trim(cson_push_parser& parser, std::uint32_t count) {
    parser.buffer_count -= std::min(count, parser.buffer_count);
    parser.buffer[parser.buffer_count] = 0;
}

// Makes room for `count` bytes more and the terminator.
bool make_room(cson_push_parser& parser, std::uint32_t count) {
    const std::uint64_t needed = std::uint64_t{parser.buffer_count} + count + 1;
    if (needed <= parser.buffer_capacity)
        return true;
    std::uint64_t capacity = parser.buffer_capacity;
    while (capacity < needed)
        capacity *= 2;
    void* grown = capacity <= std::numeric_limits<std::uint32_t>::max()
                      ? parser.allocate(static_cast<std::size_t>(capacity))
                      : nullptr;
    if (grown == nullptr)
        return fail(parser, cson_push_out_of_memory);
    std::memcpy(grown, parser.buffer, parser.buffer_count);
    if (parser.buffer != parser.static_buffer.data())
        parser.release(parser.buffer);
    parser.buffer = static_cast<unsigned char*>(grown);
    parser.buffer_capacity = static_cast<std::uint32_t>(capacity);
    return true;
}

bool append(cson_push_parser& parser, unsigned char byte) {
    return cson_append_bytes(parser, &byte, 1);
}

bool add_escaped(cson_push_parser& parser, std::int32_t letter) {
    parser.escaped = false;
    if (letter == 'u') // stays with its backslash for the decoder
        return append(parser, 'u');
    trim(parser, 1);
    const unsigned char meaning = cson_escape_meaning(letter);
    if (meaning == 0)
        return fail(parser, cson_push_invalid_escape);
    return append(parser, meaning);
}

bool add_character(cson_push_parser& parser, std::int32_t character, std::uint8_t id) {
    if (!make_room(parser, 1))
        return false;
    if (parser.escaped)
        return add_escaped(parser, character);
    if (parser.in_comment || (parser.type == 0 && id <= cson_class_white))
        return true;
    return append(parser, static_cast<unsigned char>(character));
}

// --- \u escapes --------------------------------------------------------------------------------

std::uint32_t hex_digit(unsigned char digit) {
    if (digit <= '9')
        return digit - std::uint32_t{'0'};
    return (digit | 0x20u) - 'a' + 10;
}

// A byte of UTF-8: `lead` and six or fewer bits of the code point.
unsigned char utf8_byte(std::uint32_t lead, std::uint32_t bits) {
    return static_cast<unsigned char>(lead | bits);
}

bool append_utf8(cson_push_parser& parser, std::uint32_t code) {
    const auto tail = [code](unsigned shift) { return utf8_byte(0x80, code >> shift & 0x3F); };
    std::array<unsigned char, 4> bytes = {utf8_byte(0xF0, code >> 18), tail(12), tail(6), tail(0)};
    if (code >= 0x10000)
        return cson_append_bytes(parser, bytes.data(), 4);
    bytes[1] = utf8_byte(0xE0, code >> 12);
    if (code >= 0x800)
        return cson_append_bytes(parser, bytes.data() + 1, 3);
    bytes[2] = utf8_byte(0xC0, code >> 6);
    if (code >= 0x80)
        return cson_append_bytes(parser, bytes.data() + 2, 2);
    return append(parser, static_cast<unsigned char>(code));
}

bool is_high_surrogate(std::uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool is_low_surrogate(std::uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

bool add_code_unit(cson_push_parser& parser, std::uint32_t unit) {
    if (parser.high_surrogate != 0) {
        if (!is_low_surrogate(unit))
            return fail(parser, cson_push_invalid_unicode);
        const std::uint32_t high = parser.high_surrogate & 0x3FFu;
        parser.high_surrogate = 0;
        return append_utf8(parser, (unit & 0x3FF) + (high << 10) + 0x10000);
    }
    if (is_low_surrogate(unit))
        return fail(parser, cson_push_invalid_unicode);
    if (!is_high_surrogate(unit))
        return append_utf8(parser, unit);
    parser.high_surrogate = static_cast<std::uint16_t>(unit);
    return true;
}

// --- Reporting ---------------------------------------------------------------------------------

std::int32_t buffer_as_integer(const cson_push_parser& parser) {
    const char* text = reinterpret_cast<const char*>(parser.buffer);
    using limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<long>(std::strtol(text, nullptr, 10), limits::min(), limits::max()));
}

bool report_buffer(cson_push_parser& parser, int event) {
    cson_push_data data = {};
    if (event == cson_event_integer) {
        data.integer = buffer_as_integer(parser);
    } else if (event == cson_event_float && !parser.manual_floats) {
        data.number = std::strtod(reinterpret_cast<const char*>(parser.buffer), nullptr);
    } else {
        data.text = reinterpret_cast<const char*>(parser.buffer);
        data.length = parser.buffer_count;
    }
    return report(parser, event, &data);
}

bool is_keyword(int event) {
    return event >= cson_event_null && event <= cson_event_false;
}

// Reports the value that is being read, if any, and clears the buffer.
bool flush(cson_push_parser& parser) {
    bool ok = true;
    if (parser.callback != nullptr && parser.type != 0)
        ok = is_keyword(parser.type) ? report(parser, parser.type, nullptr)
                                     : report_buffer(parser, parser.type);
    clear_buffer(parser);
    return ok;
}

// --- Actions -----------------------------------------------------------------------------------

bool enter(cson_push_parser& parser, std::uint8_t type, std::uint8_t state) {
    parser.type = type;
    parser.state = state;
    return true;
}

bool comma(cson_push_parser& parser) {
    const bool ok = flush(parser) && cson_await_next(parser);
    parser.type = 0;
    return ok;
}

bool close_string(cson_push_parser& parser) {
    if (is_in_container_value(parser)) {
        const bool ok = flush(parser);
        return enter(parser, 0, cson_state_complete) && ok;
    }
    if (cson_mode_of(parser) != cson_mode_key)
        return false;
    enter(parser, 0, cson_state_colon);
    const bool ok = parser.callback == nullptr || report_buffer(parser, cson_event_key);
    clear_buffer(parser);
    return ok;
}

bool open_array(cson_push_parser& parser) {
    return report(parser, cson_event_array_begins, nullptr) &&
           cson_enter_container(parser, cson_mode_array);
}

bool open_object(cson_push_parser& parser) {
    return report(parser, cson_event_object_begins, nullptr) &&
           cson_enter_container(parser, cson_mode_key);
}

bool close_array(cson_push_parser& parser) {
    return flush(parser) && report(parser, cson_event_array_ends, nullptr) &&
           cson_leave_container(parser, cson_mode_array);
}

bool close_object(cson_push_parser& parser) {
    return flush(parser) && report(parser, cson_event_object_ends, nullptr) &&
           cson_leave_container(parser, cson_mode_object);
}

bool close_empty_object(cson_push_parser& parser) {
    clear_buffer(parser);
    return report(parser, cson_event_object_ends, nullptr) &&
           cson_leave_container(parser, cson_mode_key);
}

// A number or keyword that a comment follows is complete at once.
bool begin_comment(cson_push_parser& parser) {
    if (!parser.allow_comments || !flush(parser))
        return false;
    const bool value_awaited =
        parser.state == cson_state_value || parser.state == cson_state_first_element;
    parser.state_before_comment = is_in_container_value(parser) && !value_awaited
                                      ? std::uint8_t{cson_state_complete}
                                      : parser.state;
    parser.in_comment = true;
    return enter(parser, 0, cson_state_slash);
}

bool end_comment(cson_push_parser& parser) {
    parser.in_comment = false;
    parser.state = parser.state_before_comment;
    return true;
}

bool begin_false(cson_push_parser& parser) {
    return enter(parser, cson_event_false, cson_state_f);
}

bool begin_true(cson_push_parser& parser) {
    return enter(parser, cson_event_true, cson_state_t);
}

bool begin_null(cson_push_parser& parser) {
    return enter(parser, cson_event_null, cson_state_n);
}

bool begin_exponent(cson_push_parser& parser) {
    return enter(parser, cson_event_float, cson_state_exponent);
}

bool decimal_point(cson_push_parser& parser) {
    if (!parser.manual_floats)
        parser.buffer[parser.buffer_count - 1] = static_cast<unsigned char>(parser.decimal_point);
    return enter(parser, cson_event_float, cson_state_point);
}

bool open_string(cson_push_parser& parser) {
    clear_buffer(parser);
    return enter(parser, cson_event_string, cson_state_string);
}

bool begin_negative(cson_push_parser& parser) {
    return enter(parser, cson_event_integer, cson_state_minus);
}

bool begin_zero(cson_push_parser& parser) {
    return enter(parser, cson_event_integer, cson_state_zero);
}

bool begin_integer(cson_push_parser& parser) {
    return enter(parser, cson_event_integer, cson_state_integer);
}

bool begin_escape(cson_push_parser& parser) {
    parser.escaped = true;
    parser.state = cson_state_escape;
    return true;
}

// The buffer ends in a backslash, a "u" and four hex digits.
bool decode_unicode(cson_push_parser& parser) {
    const unsigned char* digits = parser.buffer + parser.buffer_count - 4;
    std::uint32_t unit = 0;
    for (int i = 0; i < 4; ++i)
        unit = unit << 4 | hex_digit(digits[i]);
    trim(parser, 6);
    if (!add_code_unit(parser, unit))
        return false;
    const bool awaits_low = parser.high_surrogate != 0;
    parser.state = awaits_low ? cson_state_low_backslash : cson_state_string;
    return true;
}

struct action {
    bool (*run)(cson_push_parser&); // false fails the step
    bool drops_character;           // the character doesn't stay in the token buffer
};

// By cell, from -2 down.
constexpr std::array<action, 21> actions = {{
    {cson_await_member, true}, {comma, true},
    {close_string, true},      {open_array, true},
    {open_object, true},       {close_array, true},
    {close_object, true},      {close_empty_object, true},
    {begin_comment, true},     {end_comment, false},
    {begin_false, false},      {begin_true, false},
    {begin_null, false},       {begin_exponent, false},
    {decimal_point, false},    {open_string, true},
    {begin_negative, false},   {begin_zero, false},
    {begin_integer, false},    {begin_escape, false},
    {decode_unicode, false},
}};

// --- Step --------------------------------------------------------------------------------------

constexpr std::uint8_t error_at_start = 0xFF; // depends on the character

// What an unexpected character means, by state.
constexpr std::array<std::uint8_t, cson_state_count> unexpected = {
    error_at_start,
    cson_push_invalid_character,
    cson_push_expected_key,
    cson_push_expected_key,
    cson_push_expected_colon,
    cson_push_invalid_character,
    cson_push_unbalanced,
    cson_push_invalid_character,
    cson_push_invalid_character,
    cson_push_invalid_unicode,
    cson_push_invalid_unicode,
    cson_push_invalid_unicode,
    cson_push_invalid_unicode,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_number,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_keyword,
    cson_push_invalid_character,
    cson_push_invalid_character,
    cson_push_invalid_character,
    cson_push_invalid_character,
    cson_push_invalid_unicode,
    cson_push_invalid_unicode,
};

bool refuse(cson_push_parser& parser) {
    const std::uint8_t error = unexpected[parser.state];
    if (error != error_at_start)
        return fail(parser, error);
    const std::int32_t c = parser.current_char;
    const bool is_bracket = c == '[' || c == ']' || c == '{' || c == '}';
    return fail(parser, is_bracket ? cson_push_unbalanced : cson_push_invalid_character);
}

bool step(cson_push_parser& parser, std::int32_t character) {
    parser.current_char = character;
    if (character < 0)
        return fail(parser, cson_push_invalid_character);
    const std::uint8_t id = cson_classes[static_cast<std::size_t>(std::min(character, 255))];
    if (id == cson_class_invalid)
        return refuse(parser);
    if (!add_character(parser, character, id))
        return false;
    const std::int8_t cell = cson_transitions[parser.state][id];
    if (cell == cson_cell_error)
        return refuse(parser);
    if (cell < cson_cell_error) {
        const action& taken = actions[static_cast<std::size_t>(cson_cell_first_action - cell)];
        if (taken.drops_character)
            trim(parser, 1);
        return taken.run(parser);
    }
    parser.state = static_cast<std::uint8_t>(cell);
    return true;
}

// --- Setting up --------------------------------------------------------------------------------

bool set_up_stack(cson_push_parser& parser) {
    parser.stack = parser.static_stack.data();
    parser.stack_capacity = static_cast<std::int32_t>(parser.static_stack.size());
    if (parser.depth < 1) {
        parser.depth = -1;
        return true;
    }
    parser.depth = std::min(parser.depth, std::numeric_limits<std::int32_t>::max() - 1);
    if (parser.depth < parser.stack_capacity)
        return true;
    parser.stack_capacity = parser.depth + 1;
    const auto bytes = static_cast<std::size_t>(parser.stack_capacity);
    parser.stack = static_cast<signed char*>(parser.allocate(bytes));
    return parser.stack != nullptr;
}

void configure(cson_push_parser& parser, const cson_push_parser_config& config) {
    parser.callback = config.callback;
    parser.context = config.context;
    parser.depth = config.depth != 0 ? config.depth : 1;
    parser.allow_comments = config.allow_comments != 0;
    parser.manual_floats = config.manual_floats != 0;
    parser.decimal_point = std::localeconv()->decimal_point[0];
    parser.allocate = config.allocate;
    parser.release = config.release;
}

} // namespace

unsigned char cson_escape_meaning(std::int32_t letter) {
    switch (letter) {
    case '"':
    case '/':
    case '\\':
        return static_cast<unsigned char>(letter);
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return 0;
    }
}

bool cson_push_mode(cson_push_parser& parser, signed char mode) {
    if (parser.depth >= 0 && parser.top == parser.depth)
        return fail(parser, cson_push_nesting_depth);
    if (parser.top + 1 == parser.stack_capacity && !double_stack(parser))
        return false;
    parser.stack[++parser.top] = mode;
    return true;
}

bool cson_leave_container(cson_push_parser& parser, signed char mode) {
    if (!cson_pop_mode(parser, mode))
        return fail(parser, cson_push_unbalanced);
    return enter(parser, 0, cson_state_complete);
}

bool cson_append_bytes(cson_push_parser& parser, const unsigned char* bytes, std::uint32_t count) {
    if (!make_room(parser, count))
        return false;
    std::memcpy(parser.buffer + parser.buffer_count, bytes, count);
    parser.buffer_count += count;
    parser.buffer[parser.buffer_count] = 0;
    return true;
}

void cson_push_parser_init_config(cson_push_parser_config* config) {
    if (config != nullptr)
        *config = {nullptr, nullptr, 127, 0, 0, allocate_plainly, release_plainly};
}

cson_push_parser* cson_push_parser_new(const cson_push_parser_config* config) {
    cson_push_parser_config used;
    cson_push_parser_init_config(&used);
    if (config != nullptr) {
        const bool has_memory = config->allocate != nullptr && config->release != nullptr;
        const cson_push_allocate allocate = has_memory ? config->allocate : used.allocate;
        const cson_push_release release = has_memory ? config->release : used.release;
        used = *config;
        used.allocate = allocate;
        used.release = release;
    }
    void* block = used.allocate(sizeof(cson_push_parser));
    if (block == nullptr)
        return nullptr;
    auto* parser = static_cast<cson_push_parser*>(std::memset(block, 0, sizeof(cson_push_parser)));
    configure(*parser, used);
    if (cson_push_parser_reset(parser) != 0)
        return parser;
    cson_push_parser_free(parser);
    return nullptr;
}

void cson_push_parser_free(cson_push_parser* parser) {
    if (parser == nullptr)
        return;
    const cson_push_release release = parser->release;
    if (parser->stack != nullptr && parser->stack != parser->static_stack.data())
        release(parser->stack);
    if (parser->buffer != nullptr && parser->buffer != parser->static_buffer.data())
        release(parser->buffer);
    release(parser);
}

int cson_push_parser_reset(cson_push_parser* parser) {
    if (parser == nullptr)
        return 0;
    if (parser->buffer == nullptr) {
        if (!set_up_stack(*parser))
            return 0;
        parser->buffer = parser->static_buffer.data();
        parser->buffer_capacity = static_cast<std::uint32_t>(parser->static_buffer.size());
    }
    enter(*parser, 0, cson_state_start);
    parser->escaped = false;
    parser->in_comment = false;
    parser->error = cson_push_no_error;
    parser->high_surrogate = 0;
    parser->top = -1;
    clear_buffer(*parser);
    return cson_push_mode(*parser, cson_mode_done) ? 1 : 0;
}

int cson_push_parser_step(cson_push_parser* parser, std::int32_t character) {
    return parser != nullptr && step(*parser, character) ? 1 : 0;
}

int cson_push_parser_finish(cson_push_parser* parser) {
    if (parser == nullptr)
        return 0;
    const bool at_rest = parser->state == cson_state_complete || parser->state == cson_state_start;
    if (at_rest && cson_pop_mode(*parser, cson_mode_done))
        return 1;
    parser->error = cson_push_unbalanced;
    return 0;
}

int cson_push_parser_error(const cson_push_parser* parser) {
    return parser != nullptr ? parser->error : int{cson_push_no_error};
}

int cson_push_parser_is_blank(const char* text) {
    if (text == nullptr)
        return 1;
    while (*text != 0 && cson_is_white(static_cast<unsigned char>(*text)))
        ++text;
    return *text == 0 ? 1 : 0;
}

} // namespace quillon
