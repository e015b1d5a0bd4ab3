// SPDX-License-Identifier: MIT
#include "quillon/core/modules.h"
#include "quillon/input/names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using quillon::analog_input_names;
using quillon::digital_input_names;
using quillon::modInput;

std::string joined(const char* const* first, const char* const* last) {
    std::string text;
    for (; first != last; ++first)
        text += std::string(text.empty() ? "" : ", ") + *first;
    return text;
}

TEST(InputNames, StandAtTheirCodes) {
    const char* const* const digital = digital_input_names.data();
    EXPECT_EQ("Any Key, Escape, Tab, Backspace, Enter, Space, Insert, Delete, Home, End, Page Up, "
              "Page Down, Up, Down, Left, Right, A, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, "
              "Q, R, S, T, U, V, W, X, Y, Z, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, F1, F2, F3, F4, F5, F6, "
              "F7, F8, F9, F10, F11, F12, Keypad 0, Keypad 1, Keypad 2, Keypad 3, Keypad 4, Keypad "
              "5, Keypad 6, Keypad 7, Keypad 8, Keypad 9, Keypad ., Keypad /, Keypad *, Keypad -, "
              "Keypad +, Keypad Enter, Num Lock, Caps Lock, Scroll Lock, Left Shift, Right Shift, "
              "Left Control, Right Control, Left Alt, Right Alt, ~, -, +, [, ], \\, :, \", <, >, "
              "?, Print Screen, Pause, Any Mouse, Left Mouse, Right Mouse, Middle Mouse, Mouse "
              "Wheel Up, Mouse Wheel Down",
              joined(digital, digital + 108));
    EXPECT_EQ(
        "Pad Any, Pad Btn 1, Pad Btn 2, Pad Btn 3, Pad Btn 4, Pad Btn 5, Pad Btn 6, Pad Btn 7, "
        "Pad Btn 8, Pad Btn 9, Pad Btn 10, Pad Btn 11, Pad Btn 12, Pad Btn 13, Pad Btn 14, Pad "
        "Btn 15, Pad Btn 16, Pad Axis 1 Center, Pad Axis 1 -, Pad Axis 1 --, Pad Axis 1 +, Pad "
        "Axis 1 ++, Pad Axis 2 Center, Pad Axis 2 -, Pad Axis 2 --, Pad Axis 2 +, Pad Axis 2 ++, "
        "Pad Axis 3 Center, Pad Axis 3 -, Pad Axis 3 --, Pad Axis 3 +, Pad Axis 3 ++, Pad Axis 4 "
        "Center, Pad Axis 4 -, Pad Axis 4 --, Pad Axis 4 +, Pad Axis 4 ++, Pad Hat 1 Left, Pad "
        "Hat 1 Right, Pad Hat 1 Up, Pad Hat 1 Down, Pad Hat 2 Left, Pad Hat 2 Right, Pad Hat 2 "
        "Up, Pad Hat 2 Down",
        joined(quillon::pad_input_names.begin(), quillon::pad_input_names.end()));
    EXPECT_EQ("Pad Axis 1, Pad Axis 2, Pad Axis 3, Pad Axis 4",
              joined(quillon::pad_axis_names.begin(), quillon::pad_axis_names.end()));
    EXPECT_EQ("Mouse X, Mouse Y", joined(analog_input_names.data(), analog_input_names.data() + 2));
    EXPECT_EQ("Or, And, Not",
              joined(quillon::input_logic_names.begin(), quillon::input_logic_names.end()));
    EXPECT_STREQ("INVALID", quillon::name_at(digital_input_names, -1));
    EXPECT_STREQ("INVALID", quillon::name_at(digital_input_names, 288));
}

TEST(InputNames, EveryNameFindsItsOwnCode) {
    for (int code = 0; code < quillon::DIGITAL_CODES; ++code)
        EXPECT_EQ(code, quillon::digital_code(quillon::name_at(digital_input_names, code)));
    for (int code = 0; code < quillon::ANALOG_CODES; ++code)
        EXPECT_EQ(code, quillon::analog_code(quillon::name_at(analog_input_names, code)));
    EXPECT_EQ(quillon::NO_INPUT, quillon::digital_code("a"));
}

// A pad's row is its relative row with the pad's number put in.
TEST(InputNames, PadsFollowTheRelativeTables) {
    const auto of_pad = [](int pad, const char* relative) {
        return "Pad " + std::to_string(pad + 1) + std::string(relative).substr(3);
    };
    for (std::int16_t pad = 0; pad < 4; ++pad) {
        for (std::int16_t code = 0; code < 45; ++code)
            EXPECT_EQ(of_pad(pad, quillon::pad_input_names[code]),
                      quillon::name_at(digital_input_names, modInput::digital_pad_code(code, pad)));
        for (std::int16_t axis = 0; axis < 4; ++axis)
            EXPECT_EQ(of_pad(pad, quillon::pad_axis_names[axis]),
                      quillon::name_at(analog_input_names, modInput::analog_pad_code(axis, pad)));
    }
}

} // namespace
