// SPDX-License-Identifier: MIT
#include "quillon/json/allocator.h"
#include "quillon/json/escape.h"
#include "quillon/json/grammar.h"
#include "quillon/json/parser.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

constexpr const char* PARSER_TAG = "cson_push_parser";

void* allocate_plainly(std::size_t bytes) {
    return reallocate(nullptr, bytes, PARSER_TAG);
}

void release_plainly(void* block) {
    free(block, PARSER_TAG);
}

bool fail(cson_push_parser& parser, std::uint8_t error) {
    parser.error = error;
    return false;
}

bool report(cson_push_parser& parser, int event, const cson_push_data* data) {
    return parser.callback == nullptr || parser.callback(parser.context, event, data) != 0;
}

bool enter(cson_push_parser& parser, std::uint8_t type, Cell state) {
    parser.type = type;
    parser.state = static_cast<std::uint8_t>(state);
    return true;
}

// --- Stack of modes ----------------------------------------------------------------------------

enum : signed char {
    MODE_ARRAY = 1,
    MODE_DONE,  // below all others
    MODE_KEY,   // an object that waits for a key
    MODE_OBJECT // an object that waits for a value or its end
};

// Never empty but after the end.
signed char mode_of(const cson_push_parser& parser) {
    return parser.top >= 0 ? parser.stack[parser.top] : static_cast<signed char>(MODE_DONE);
}

bool is_in_array(const cson_push_parser& parser) {
    return mode_of(parser) == MODE_ARRAY;
}

bool pop_mode(cson_push_parser& parser, signed char mode) {
    if (parser.top < 0 || parser.stack[parser.top] != mode)
        return false;
    --parser.top;
    return true;
}

// Replaces the stack or the buffer by one of twice the bytes.
template <typename Byte, typename Size>
bool double_block(cson_push_parser& parser, Byte*& block, Size& bytes, const Byte* initial) {
    const bool can_double = bytes <= std::numeric_limits<Size>::max() / 2;
    void* grown = can_double ? parser.allocate(static_cast<std::size_t>(bytes) * 2) : nullptr;
    if (grown == nullptr)
        return fail(parser, cson_push_out_of_memory);
    std::memcpy(grown, block, static_cast<std::size_t>(bytes));
    if (block != initial)
        parser.release(block);
    block = static_cast<Byte*>(grown);
    bytes *= 2;
    return true;
}

// The limit counts the containers: MODE_DONE below them has a place of its own.
bool push_mode(cson_push_parser& parser, signed char mode) {
    if (parser.depth >= 0 && parser.top == parser.depth)
        return fail(parser, cson_push_nesting_depth);
    if (parser.top + 1 == parser.stack_capacity &&
        !double_block(parser, parser.stack, parser.stack_capacity, parser.static_stack.data()))
        return false;
    parser.stack[++parser.top] = mode;
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

// Makes space for one byte more and the terminator.
bool make_space(cson_push_parser& parser) {
    return parser.buffer_count + 2 <= parser.buffer_capacity ||
           double_block(parser, parser.buffer, parser.buffer_capacity, parser.static_buffer.data());
}

// Adds a byte for which there is space.
void append(cson_push_parser& parser, std::int32_t byte) {
    parser.buffer[parser.buffer_count++] = static_cast<unsigned char>(byte);
    parser.buffer[parser.buffer_count] = 0;
}

// Puts the meaning of an escape in the place of its backslash.
bool add_escaped(cson_push_parser& parser, std::int32_t letter) {
    parser.escaped = false;
    if (letter == 'u') { // stays with its backslash for the decoder
        append(parser, letter);
        return true;
    }
    const unsigned char meaning = ESCAPES[static_cast<std::size_t>(std::min(letter, 255))];
    if (meaning == 0)
        return fail(parser, cson_push_invalid_escape);
    trim(parser, 1);
    append(parser, meaning);
    return true;
}

// Adds every character, before the table says what it does: the action of one that isn't part of a
// token drops it again. White space after a number is kept and ignored by the conversion.
bool add_character(cson_push_parser& parser, std::int32_t character, std::uint8_t id) {
    if (!make_space(parser))
        return false;
    if (parser.escaped)
        return add_escaped(parser, character);
    if (!parser.in_comment && (parser.type != 0 || id > CLASS_WHITE))
        append(parser, character);
    return true;
}

// --- Reporting ---------------------------------------------------------------------------------

std::int32_t integer_of(const char* text) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<long>(std::strtol(text, nullptr, 10), Limits::min(), Limits::max()));
}

// Reports the value or key that is in the buffer. Without a callback nothing is converted either.
bool report_buffer(cson_push_parser& parser, int event) {
    if (parser.callback == nullptr)
        return true;
    const char* text = reinterpret_cast<const char*>(parser.buffer);
    if (event >= cson_event_null && event <= cson_event_false)
        return report(parser, event, nullptr);
    cson_push_data data = {};
    if (event == cson_event_integer)
        data.integer = integer_of(text);
    else if (event == cson_event_float && !parser.manual_floats)
        data.number = std::strtod(text, nullptr);
    else
        data = {0, parser.buffer_count, 0.0, text};
    return report(parser, event, &data);
}

// Reports the value that is being read, if any, and clears the buffer.
bool flush(cson_push_parser& parser) {
    const bool ok = parser.type == 0 || report_buffer(parser, parser.type);
    clear_buffer(parser);
    return ok;
}

// --- Actions -----------------------------------------------------------------------------------

bool await_member(cson_push_parser& parser) {
    return pop_mode(parser, MODE_KEY) && push_mode(parser, MODE_OBJECT);
}

// Numbers and keywords have no end of their own: it is the character after them that reports them.
bool comma(cson_push_parser& parser) {
    if (!flush(parser))
        return false;
    if (is_in_array(parser))
        return enter(parser, 0, Cell::Value);
    return pop_mode(parser, MODE_OBJECT) && push_mode(parser, MODE_KEY) &&
           enter(parser, 0, Cell::Key);
}

bool close_string(cson_push_parser& parser) {
    const signed char mode = mode_of(parser);
    if (mode == MODE_DONE)
        return false;
    enter(parser, 0, mode == MODE_KEY ? Cell::Colon : Cell::Complete);
    const bool ok = report_buffer(parser, mode == MODE_KEY ? cson_event_key : cson_event_string);
    clear_buffer(parser);
    return ok;
}

template <int event, signed char mode>
bool open_container(cson_push_parser& parser) {
    return report(parser, event, nullptr) && push_mode(parser, mode);
}

// The end is reported first: of two faults, a callback's refusal counts before a wrong bracket.
template <int event, signed char mode>
bool close_container(cson_push_parser& parser) {
    return flush(parser) && report(parser, event, nullptr) &&
           (pop_mode(parser, mode) || fail(parser, cson_push_unbalanced));
}

// A number or keyword that a comment follows is complete at once. A comment that isn't allowed
// fails without an error code, since there is none for it.
bool begin_comment(cson_push_parser& parser) {
    if (!parser.allow_comments || !flush(parser))
        return false;
    const auto state = static_cast<Cell>(parser.state);
    const bool awaits_value = state == Cell::Value || state == Cell::FirstElement;
    const bool may_end_value = is_in_array(parser) || mode_of(parser) == MODE_OBJECT;
    parser.state_before_comment =
        static_cast<std::uint8_t>(may_end_value && !awaits_value ? Cell::Complete : state);
    parser.in_comment = true;
    return true;
}

bool end_comment(cson_push_parser& parser) {
    parser.in_comment = false;
    parser.state = parser.state_before_comment;
    return true;
}

// Makes the text one that strtod reads under the current locale.
bool decimal_point(cson_push_parser& parser) {
    if (!parser.manual_floats)
        parser.buffer[parser.buffer_count - 1] = static_cast<unsigned char>(parser.decimal_point);
    return true;
}

bool begin_escape(cson_push_parser& parser) {
    parser.escaped = true;
    return true;
}

// The buffer ends in "\uXXXX", more bytes than any code point's UTF-8, so there is space for that.
bool decode_unicode(cson_push_parser& parser) {
    std::uint32_t code = code_unit_of(parser.buffer + parser.buffer_count - 4);
    trim(parser, 6);
    const std::uint32_t high = parser.high_surrogate;
    if (is_low_surrogate(code) != (high != 0))
        return fail(parser, cson_push_invalid_unicode);
    if (is_high_surrogate(code)) {
        parser.high_surrogate = static_cast<std::uint16_t>(code);
        return enter(parser, parser.type, Cell::LowBackslash);
    }
    if (high != 0)
        code = code_point_of(high, code);
    parser.high_surrogate = 0;
    unsigned char* end = put_utf8(parser.buffer + parser.buffer_count, code);
    *end = 0;
    parser.buffer_count = static_cast<std::uint32_t>(end - parser.buffer);
    return enter(parser, parser.type, Cell::String);
}

constexpr Cell OWN_STATE = Cell::Error; // the action sets type and state itself

struct Action {
    Cell cell;
    bool drops_character;           // the character is no part of a token
    bool (*run)(cson_push_parser&); // null: nothing to do; false fails the step
    Cell state;                     // after it
    std::uint8_t type = 0;
};

// From -2 down, as in the grammar.
constexpr std::array<Action, ACTION_COUNT> ACTIONS = {{
    {Cell::AwaitMember, true, await_member, Cell::Value},
    {Cell::Comma, true, comma, OWN_STATE},
    {Cell::CloseString, true, close_string, OWN_STATE},
    {Cell::OpenArray, true, open_container<cson_event_array_begins, MODE_ARRAY>,
     Cell::FirstElement},
    {Cell::OpenObject, true, open_container<cson_event_object_begins, MODE_KEY>, Cell::FirstKey},
    {Cell::CloseArray, true, close_container<cson_event_array_ends, MODE_ARRAY>, Cell::Complete},
    {Cell::CloseObject, true, close_container<cson_event_object_ends, MODE_OBJECT>, Cell::Complete},
    {Cell::CloseEmptyObject, true, close_container<cson_event_object_ends, MODE_KEY>,
     Cell::Complete},
    {Cell::BeginComment, true, begin_comment, Cell::Slash},
    {Cell::EndComment, false, end_comment, OWN_STATE},
    {Cell::BeginFalse, false, nullptr, Cell::F, cson_event_false},
    {Cell::BeginTrue, false, nullptr, Cell::T, cson_event_true},
    {Cell::BeginNull, false, nullptr, Cell::N, cson_event_null},
    {Cell::BeginExponent, false, nullptr, Cell::Exponent, cson_event_float},
    {Cell::DecimalPoint, false, decimal_point, Cell::Point, cson_event_float},
    {Cell::OpenString, true, nullptr, Cell::String, cson_event_string},
    {Cell::BeginNegative, false, nullptr, Cell::Minus, cson_event_integer},
    {Cell::BeginZero, false, nullptr, Cell::Zero, cson_event_integer},
    {Cell::BeginInteger, false, nullptr, Cell::Integer, cson_event_integer},
    {Cell::BeginEscape, false, begin_escape, Cell::Escape, cson_event_string},
    {Cell::DecodeUnicode, false, decode_unicode, OWN_STATE},
}};

constexpr std::size_t action_index(Cell cell) {
    return static_cast<std::size_t>(-2 - static_cast<int>(cell));
}

consteval bool actions_are_in_order() {
    for (std::size_t i = 0; i < ACTIONS.size(); ++i)
        if (action_index(ACTIONS[i].cell) != i)
            return false;
    return true;
}

static_assert(actions_are_in_order());

bool act(cson_push_parser& parser, Cell cell) {
    const Action& action = ACTIONS[action_index(cell)];
    if (action.drops_character)
        trim(parser, 1);
    if (action.run != nullptr && !action.run(parser))
        return false;
    return action.state == OWN_STATE || enter(parser, action.type, action.state);
}

// --- Step --------------------------------------------------------------------------------------

struct ErrorRange {
    Cell first;
    Cell last;
    std::uint8_t error;
};

// What an unexpected character means; in all other states it is an invalid one.
constexpr std::array<ErrorRange, 7> ERROR_RANGES = {{
    {Cell::FirstKey, Cell::Key, cson_push_expected_key},
    {Cell::Colon, Cell::Colon, cson_push_expected_colon},
    {Cell::FirstElement, Cell::FirstElement, cson_push_unbalanced},
    {Cell::Hex1, Cell::Hex4, cson_push_invalid_unicode},
    {Cell::LowBackslash, Cell::LowU, cson_push_invalid_unicode},
    {Cell::Minus, Cell::ExponentDigits, cson_push_invalid_number},
    {Cell::T, Cell::Nul, cson_push_invalid_keyword},
}};

bool refuse(cson_push_parser& parser) {
    const auto state = static_cast<Cell>(parser.state);
    const std::int32_t c = parser.current_char;
    if (state == Cell::Start && (c == '[' || c == ']' || c == '{' || c == '}'))
        return fail(parser, cson_push_unbalanced);
    for (const ErrorRange& range : ERROR_RANGES)
        if (state >= range.first && state <= range.last)
            return fail(parser, range.error);
    return fail(parser, cson_push_invalid_character);
}

bool step(cson_push_parser& parser, std::int32_t character) {
    parser.current_char = character;
    if (character < 0)
        return fail(parser, cson_push_invalid_character);
    const std::uint8_t id = CLASSES[static_cast<std::size_t>(std::min(character, 255))];
    if (id == CLASS_INVALID)
        return refuse(parser);
    if (!add_character(parser, character, id))
        return false;
    const Cell cell = TRANSITIONS[parser.state][id];
    if (cell == Cell::Error)
        return refuse(parser);
    if (cell < Cell::Error)
        return act(parser, cell);
    parser.state = static_cast<std::uint8_t>(cell);
    return true;
}

// --- Setting up --------------------------------------------------------------------------------

bool set_up_stack(cson_push_parser& parser) {
    parser.stack = parser.static_stack.data();
    parser.stack_capacity = static_cast<std::int32_t>(parser.static_stack.size());
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
    constexpr std::int32_t deepest = std::numeric_limits<std::int32_t>::max() - 1;
    parser.depth = config.depth < 0 ? -1 : std::clamp(config.depth, 1, deepest);
    parser.allow_comments = config.allow_comments != 0;
    parser.manual_floats = config.manual_floats != 0;
    parser.decimal_point = std::localeconv()->decimal_point[0];
    parser.allocate = config.allocate;
    parser.release = config.release;
}

} // namespace

void cson_push_parser_init_config(cson_push_parser_config* config) {
    if (config != nullptr)
        *config = {nullptr, nullptr, 127, 0, 0, allocate_plainly, release_plainly};
}

cson_push_parser* cson_push_parser_new(const cson_push_parser_config* config) {
    cson_push_parser_config plain;
    cson_push_parser_init_config(&plain);
    cson_push_parser_config used = config != nullptr ? *config : plain;
    // One without the other could free what it didn't allocate.
    if (used.allocate == nullptr || used.release == nullptr) {
        used.allocate = plain.allocate;
        used.release = plain.release;
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
    enter(*parser, 0, Cell::Start);
    parser->escaped = false;
    parser->in_comment = false;
    parser->error = cson_push_no_error;
    parser->high_surrogate = 0;
    parser->top = -1;
    clear_buffer(*parser);
    return push_mode(*parser, MODE_DONE) ? 1 : 0;
}

int cson_push_parser_step(cson_push_parser* parser, std::int32_t character) {
    return parser != nullptr && step(*parser, character) ? 1 : 0;
}

int cson_push_parser_finish(cson_push_parser* parser) {
    if (parser == nullptr)
        return 0;
    const auto state = static_cast<Cell>(parser->state);
    const bool at_rest = state == Cell::Complete || state == Cell::Start;
    if (at_rest && pop_mode(*parser, MODE_DONE))
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
    while (*text != 0 && CLASSES[static_cast<unsigned char>(*text)] <= CLASS_WHITE)
        ++text;
    return *text == 0 ? 1 : 0;
}

} // namespace quillon
