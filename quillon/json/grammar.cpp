#include "quillon/json/grammar.h"

#include <string_view>

namespace quillon {
namespace {

constexpr std::uint8_t other = 30;

// The characters of each class; what stands in none of them is class 30 from "!" up.
constexpr std::array<std::string_view, cson_class_count> members = {
    " ", "\t\n\r", "{", "}", "[",         "]", ":",     ",", "\"", "\\", "/",
    "+", "-",      ".", "0", "123456789", "a", "b",     "c", "d",  "e",  "f",
    "l", "n",      "r", "s", "t",         "u", "ABCDF", "E", "",   "*"};

constexpr std::array<std::uint8_t, 256> make_classes() {
    std::array<std::uint8_t, 256> classes = {};
    for (std::size_t c = 0; c < classes.size(); ++c)
        classes[c] = c > ' ' ? other : cson_class_invalid;
    for (std::size_t id = 0; id < members.size(); ++id)
        for (const char c : members[id])
            classes[static_cast<unsigned char>(c)] = static_cast<std::uint8_t>(id);
    return classes;
}

constexpr std::int8_t xx = cson_cell_error;

} // namespace

constinit const std::array<std::uint8_t, 256> cson_classes = make_classes();

// clang-format off
constinit const std::array<std::array<std::int8_t, cson_class_count>, cson_state_count>
    cson_transitions = {{
    //  _ \t  {  }  [  ]  :  ,  "  \  /  +  -  .  0  1  a  b  c  d  e  f  l  n  r  s  t  u  A  E  !  *
    {{  0,  0, -6, xx, -5, xx, xx, xx, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, //  0 start
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, //  1 a value is complete
    {{  2,  2, xx, -9, xx, xx, xx, xx,-17, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, //  2 after {
    {{  3,  3, xx, xx, xx, xx, xx, xx,-17, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, //  3 a key must follow
    {{  4,  4, xx, xx, xx, xx, -2, xx, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, //  4 a colon must follow
    {{  5,  5, -6, xx, -5, xx, xx, xx,-17, xx,-10, xx,-18, xx,-19,-20, xx, xx, xx, xx, xx,-12, xx,-14, xx, xx,-13, xx, xx, xx, xx, xx}}, //  5 a value must follow
    {{  6,  6, -6, xx, -5, -7, xx, xx,-17, xx,-10, xx,-18, xx,-19,-20, xx, xx, xx, xx, xx,-12, xx,-14, xx, xx,-13, xx, xx, xx, xx, xx}}, //  6 after [
    {{  7, xx,  7,  7,  7,  7,  7,  7, -4,-21,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7}}, //  7 in a string
    {{ xx, xx, xx, xx, xx, xx, xx, xx,  7,  7,  7, xx, xx, xx, xx, xx, xx,  7, xx, xx, xx,  7, xx,  7,  7, xx,  7,  9, xx, xx, xx, xx}}, //  8 after a backslash
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 10, 10, 10, 10, 10, 10, 10, 10, xx, xx, xx, xx, xx, xx, 10, 10, xx, xx}}, //  9 hex digit 1
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 11, 11, 11, 11, 11, 11, 11, 11, xx, xx, xx, xx, xx, xx, 11, 11, xx, xx}}, // 10 hex digit 2
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 12, 12, 12, 12, 12, 12, 12, 12, xx, xx, xx, xx, xx, xx, 12, 12, xx, xx}}, // 11 hex digit 3
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,-22,-22,-22,-22,-22,-22,-22,-22, xx, xx, xx, xx, xx, xx,-22,-22, xx, xx}}, // 12 hex digit 4
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 14, 15, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 13 after a minus
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx,-10, xx, xx,-16, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 14 leading zero
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx,-10, xx, xx,-16, 15, 15, xx, xx, xx, xx,-15, xx, xx, xx, xx, xx, xx, xx, xx,-15, xx, xx}}, // 15 integer digits
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx,-10, xx, xx, xx, 16, 16, xx, xx, xx, xx, 17, xx, xx, xx, xx, xx, xx, xx, xx, 17, xx, xx}}, // 16 fraction digits
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 18, 18, xx, 19, 19, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 17 after e
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 19, 19, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 18 after the exponent's sign
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx, xx, xx, xx, xx, 19, 19, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 19 exponent digits
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 21, xx, xx, xx, xx, xx, xx, xx}}, // 20 t
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 22, xx, xx, xx, xx}}, // 21 tr
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx,  1, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 22 tru
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 24, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 23 f
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 25, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 24 fa
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 26, xx, xx, xx, xx, xx, xx}}, // 25 fal
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx,  1, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 26 fals
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 28, xx, xx, xx, xx}}, // 27 n
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 29, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 28 nu
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,-10, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,  1, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 29 nul
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, 31}}, // 30 after /
    {{ 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 32}}, // 31 in a comment
    {{ 31, 31, 31, 31, 31, 31, 31, 31, 31, 31,-11, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 31, 32}}, // 32 in a comment, after *
    {{  1,  1, xx, -8, xx, -7, xx, -3, xx, xx, xx, xx, xx, xx, 16, 16, xx, xx, xx, xx, 17, xx, xx, xx, xx, xx, xx, xx, xx, 17, xx, xx}}, // 33 after the point
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, 35, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx}}, // 34 low surrogate's backslash
    {{ xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx, xx,  9, xx, xx, xx, xx}}, // 35 low surrogate's u
}};
// clang-format on

} // namespace quillon
