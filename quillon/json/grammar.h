// SPDX-License-Identifier: MIT
// The push parser's grammar as data: classes of characters, and what each does in every state.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon::json {

// A cell of the table: the next state, an error, or an action of the parser.
// clang-format off
enum class Cell : std::int8_t {
    Start, Complete, FirstKey, Key, Colon, Value, FirstElement, // between tokens
    String, Escape, Hex1, Hex2, Hex3, Hex4,
    Minus, Zero, Integer, Fraction, Exponent, ExponentSign, ExponentDigits,
    T, Tr, Tru, F, Fa, Fal, Fals, N, Nu, Nul, // keywords so far
    Slash, Comment, CommentStar,
    Point,
    LowBackslash, LowU, // of the second half of a surrogate pair

    Error = -1,
    AwaitMember = -2, Comma = -3, CloseString = -4,
    OpenArray = -5, OpenObject = -6, CloseArray = -7, CloseObject = -8, CloseEmptyObject = -9,
    BeginComment = -10, EndComment = -11,
    BeginFalse = -12, BeginTrue = -13, BeginNull = -14,
    BeginExponent = -15, DecimalPoint = -16,
    OpenString = -17, BeginNegative = -18, BeginZero = -19, BeginInteger = -20,
    BeginEscape = -21, DecodeUnicode = -22
};
// clang-format on

inline constexpr std::size_t STATE_COUNT = 36;
inline constexpr std::size_t ACTION_COUNT = 21;
inline constexpr std::size_t CLASS_COUNT = 32;

// Classes 0 and 1 are white; 0xFF marks a character that no text may hold.
inline constexpr std::uint8_t CLASS_WHITE = 1;
inline constexpr std::uint8_t CLASS_INVALID = 0xFF;

// By character; all from 128 up are like the last one.
extern const std::array<std::uint8_t, 256> CLASSES;

extern const std::array<std::array<Cell, CLASS_COUNT>, STATE_COUNT> TRANSITIONS;

} // namespace quillon::json
