// The parser's grammar as data: classes of characters, and what follows on each in every state.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

enum : std::uint8_t {
    cson_state_start,
    cson_state_complete, // a value is complete
    cson_state_first_key,
    cson_state_key,
    cson_state_colon,
    cson_state_value,
    cson_state_first_element,
    cson_state_string,
    cson_state_escape,
    cson_state_hex_1,
    cson_state_hex_2,
    cson_state_hex_3,
    cson_state_hex_4,
    cson_state_minus,
    cson_state_zero,
    cson_state_integer,
    cson_state_fraction,
    cson_state_exponent,
    cson_state_exponent_sign,
    cson_state_exponent_digits,
    cson_state_t,
    cson_state_tr,
    cson_state_tru,
    cson_state_f,
    cson_state_fa,
    cson_state_fal,
    cson_state_fals,
    cson_state_n,
    cson_state_nu,
    cson_state_nul,
    cson_state_slash,
    cson_state_comment,
    cson_state_comment_star,
    cson_state_point,
    cson_state_low_backslash, // of the second half of a surrogate pair
    cson_state_low_u
};

inline constexpr std::size_t cson_state_count = 36;
inline constexpr std::size_t cson_class_count = 32;

// Classes 0 and 1 are white; 0xFF is no character of any text.
inline constexpr std::uint8_t cson_class_blank = 0;
inline constexpr std::uint8_t cson_class_white = 1;
inline constexpr std::uint8_t cson_class_invalid = 0xFF;

// By character; all from 128 up are as the last one.
extern const std::array<std::uint8_t, 256> cson_classes;

// 0 and up: the next state. -1: an error. -2 to -22: an action of the parser.
extern const std::array<std::array<std::int8_t, cson_class_count>, cson_state_count>
    cson_transitions;

inline constexpr std::int8_t cson_cell_error = -1;
inline constexpr std::int8_t cson_cell_first_action = -2;
inline constexpr std::int8_t cson_cell_open_string = -17;

inline bool cson_is_white(unsigned char c) {
    return cson_classes[c] <= cson_class_white;
}

} // namespace quillon
