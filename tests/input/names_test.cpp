#include "quillon/core/modules.h"
#include "quillon/input/names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using quillon::analog_input_names;
using quillon::digital_input_names;
using quillon::modInput;

TEST(InputNames, StandAtTheirCodes) {
    const struct {
        int code;
        const char* name;
    } rows[] = {
        {0, "Any Key"},
        {5, "Space"},
        {11, "Page Down"},
        {12, "Up"},
        {15, "Right"},
        {16, "A"},
        {41, "Z"},
        {42, "0"},
        {51, "9"},
        {52, "F1"},
        {63, "F12"},
        {64, "Keypad 0"},
        {79, "Keypad Enter"},
        {82, "Scroll Lock"},
        {88, "Right Alt"},
        {89, "~"},
        {94, "\\"},
        {96, "\""},
        {99, "?"},
        {101, "Pause"},
        {102, "Any Mouse"},
        {107, "Mouse Wheel Down"},
        {108, "Pad 1 Any"},
        {124, "Pad 1 Btn 16"},
        {125, "Pad 1 Axis 1 Center"},
        {126, "Pad 1 Axis 1 -"},
        {127, "Pad 1 Axis 1 --"},
        {128, "Pad 1 Axis 1 +"},
        {129, "Pad 1 Axis 1 ++"},
        {145, "Pad 1 Hat 1 Left"},
        {153, "Pad 2 Any"},
        {286, "Pad 4 Hat 2 Up"},
        {287, "Pad 4 Hat 2 Down"},
        {-1, "INVALID"},
        {288, "INVALID"},
    };

    for (const auto& row : rows)
        EXPECT_STREQ(row.name, quillon::name_at(digital_input_names, row.code)) << row.code;
}

TEST(InputNames, EveryNameFindsItsOwnCode) {
    for (int code = 0; code < quillon::DIGITAL_CODES; ++code)
        EXPECT_EQ(code, quillon::digital_code(quillon::name_at(digital_input_names, code)));
    for (int code = 0; code < quillon::ANALOG_CODES; ++code)
        EXPECT_EQ(code, quillon::analog_code(quillon::name_at(analog_input_names, code)));
    EXPECT_EQ(quillon::NO_INPUT, quillon::digital_code("a"));
    EXPECT_EQ(quillon::NO_INPUT, quillon::analog_code(""));
}

// A pad's row is its relative row with the pad's number put in.
TEST(InputNames, PadsFollowTheRelativeTables) {
    const auto of_pad = [](int pad, const char* relative) {
        return "Pad " + std::to_string(pad + 1) + std::string(relative).substr(3);
    };
    ASSERT_EQ(45U, quillon::pad_input_names.size());
    ASSERT_EQ(4U, quillon::pad_axis_names.size());
    for (std::int16_t pad = 0; pad < 4; ++pad) {
        for (std::int16_t code = 0; code < 45; ++code)
            EXPECT_EQ(of_pad(pad, quillon::pad_input_names[code]),
                      quillon::name_at(digital_input_names, modInput::digital_pad_code(code, pad)));
        for (std::int16_t axis = 0; axis < 4; ++axis)
            EXPECT_EQ(of_pad(pad, quillon::pad_axis_names[axis]),
                      quillon::name_at(analog_input_names, modInput::analog_pad_code(axis, pad)));
    }
    EXPECT_STREQ("Mouse Y", analog_input_names[1]);
    EXPECT_STREQ("Not", quillon::input_logic_names[2]);
}

TEST(InputCodes, PadRulesWorkUnconnectedAndAreCutTo16Bits) {
    const modInput* input = __mInput_instance();
    EXPECT_EQ(198, input->digital_pad_code(0, 2));
    EXPECT_EQ(17, input->analog_pad_code(3, 3));
    EXPECT_EQ(137, input->digital_pad_code(0, 1457)); // 65,673 - 65,536
    EXPECT_EQ(-32768, input->analog_pad_code(32766, 0));
}

} // namespace
