// SPDX-License-Identifier: MIT
#include "quillon/json/grammar.h"

#include <string_view>

namespace quillon::json {
namespace {

constexpr std::uint8_t OTHER = 30;

// The characters of each class; all that are in none of them, from "!" up, are of class OTHER.
constexpr std::array<std::string_view, CLASS_COUNT> MEMBERS = {
    " ", "\t\n\r", "{", "}", "[",         "]", ":",     ",", "\"", "\\", "/",
    "+", "-",      ".", "0", "123456789", "a", "b",     "c", "d",  "e",  "f",
    "l", "n",      "r", "s", "t",         "u", "ABCDF", "E", "",   "*"};

consteval std::array<std::uint8_t, 256> make_classes() {
    std::array<std::uint8_t, 256> classes = {};
    for (std::size_t c = 0; c < classes.size(); ++c)
        classes[c] = c > ' ' ? OTHER : CLASS_INVALID;
    for (std::size_t id = 0; id < MEMBERS.size(); ++id)
        for (const char c : MEMBERS[id])
            classes[static_cast<unsigned char>(c)] = static_cast<std::uint8_t>(id);
    return classes;
}

// States as bits.
using States = std::uint64_t;

template <typename... Cells>
consteval States in(Cells... states) {
    return (States{0} | ... | (States{1} << static_cast<int>(states)));
}

consteval States range(Cell first, Cell last) {
    States states = 0;
    for (int state = static_cast<int>(first); state <= static_cast<int>(last); ++state)
        states |= States{1} << state;
    return states;
}

struct Row {
    States states;
    std::string_view characters; // all classes if empty
    Cell next;
};

using enum Cell;

constexpr std::string_view ANY;
constexpr std::string_view WHITE = " \t\n\r";
constexpr std::string_view DIGITS = "0123456789";
constexpr std::string_view HEX = "0123456789abcdefABCDEF";
constexpr Cell STAY = static_cast<Cell>(-128);

constexpr States BETWEEN_TOKENS = range(Start, FirstElement);
constexpr States AWAITS_VALUE = in(Value, FirstElement);
constexpr States ENDS_VALUE = in(Complete, Zero, Integer, Fraction, ExponentDigits, Point);

// Of two rows for one cell the later one counts; what no row names is an error.
//
// A comment can't follow on an exponent or a decimal point, and a lone zero takes no exponent.
constexpr Row ROWS[] = {
    {BETWEEN_TOKENS, WHITE, STAY},
    {BETWEEN_TOKENS | in(Zero, Integer, Fraction, Tru, Fals, Nul), "/", BeginComment},
    {AWAITS_VALUE | in(Start), "{", OpenObject},
    {AWAITS_VALUE | in(Start), "[", OpenArray},
    {AWAITS_VALUE | in(FirstKey, Key), "\"", OpenString},
    {AWAITS_VALUE, "-", BeginNegative},
    {AWAITS_VALUE, "0", BeginZero},
    {AWAITS_VALUE, "123456789", BeginInteger},
    {AWAITS_VALUE, "f", BeginFalse},
    {AWAITS_VALUE, "n", BeginNull},
    {AWAITS_VALUE, "t", BeginTrue},
    {ENDS_VALUE, WHITE, Complete},
    {ENDS_VALUE, ",", Comma},
    {ENDS_VALUE | in(FirstElement), "]", CloseArray},
    {ENDS_VALUE, "}", CloseObject},
    {in(FirstKey), "}", CloseEmptyObject},
    {in(Colon), ":", AwaitMember},

    {in(String), ANY, STAY},
    {in(String), "\t\n\r", Error},
    {in(String), "\"", CloseString},
    {in(String), "\\", BeginEscape},
    {in(Escape), "\"\\/bfnrt", String},
    {in(Escape), "u", Hex1},
    {in(Hex1), HEX, Hex2},
    {in(Hex2), HEX, Hex3},
    {in(Hex3), HEX, Hex4},
    {in(Hex4), HEX, DecodeUnicode},
    {in(LowBackslash), "\\", LowU},
    {in(LowU), "u", Hex1},

    {in(Minus), "0", Zero},
    {in(Minus), "123456789", Integer},
    {in(Integer), DIGITS, Integer},
    {in(Zero, Integer), ".", DecimalPoint},
    {in(Point, Fraction), DIGITS, Fraction},
    {in(Integer), "eE", BeginExponent},
    {in(Point, Fraction), "eE", Exponent},
    {in(Exponent), "+-", ExponentSign},
    {in(Exponent, ExponentSign, ExponentDigits), DIGITS, ExponentDigits},

    {in(T), "r", Tr},
    {in(Tr), "u", Tru},
    {in(Tru), "e", Complete},
    {in(F), "a", Fa},
    {in(Fa), "l", Fal},
    {in(Fal), "s", Fals},
    {in(Fals), "e", Complete},
    {in(N), "u", Nu},
    {in(Nu), "l", Nul},
    {in(Nul), "l", Complete},

    {in(Slash), "*", Comment},
    {in(Comment, CommentStar), ANY, Comment},
    {in(Comment, CommentStar), "*", CommentStar},
    {in(CommentStar), "/", EndComment},
};

using Table = std::array<std::array<Cell, CLASS_COUNT>, STATE_COUNT>;

consteval Table make_table() {
    constexpr std::array<std::uint8_t, 256> classes = make_classes();
    Table table = {};
    for (std::size_t state = 0; state < STATE_COUNT; ++state) {
        table[state].fill(Error);
        for (const Row& row : ROWS) {
            if ((row.states >> state & 1) == 0)
                continue;
            const Cell next = row.next == STAY ? static_cast<Cell>(state) : row.next;
            if (row.characters.empty())
                table[state].fill(next);
            for (const char c : row.characters)
                table[state][classes[static_cast<unsigned char>(c)]] = next;
        }
    }
    return table;
}

} // namespace

constinit const std::array<std::uint8_t, 256> CLASSES = make_classes();
constinit const Table TRANSITIONS = make_table();

} // namespace quillon::json
