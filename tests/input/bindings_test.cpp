// SPDX-License-Identifier: MIT
#include "quillon/core/modules.h"
#include "quillon/input/analog.h"
#include "quillon/input/digital.h"
#include "quillon/input/names.h"

#include <gmock/gmock.h>

#include <bit>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using quillon::cInputAnalog;
using quillon::cInputDigital;
using quillon::InputLogic;
using testing::ElementsAre;

using Question = std::pair<char, std::uint16_t>; // the first letter of the entry, and the code

std::vector<Question> asked;
std::map<Question, float> answers;

template <typename Answer, char entry>
Answer answer(std::uint16_t code) {
    asked.emplace_back(entry, code);
    return static_cast<Answer>(answers[asked.back()]);
}

// With an input table whose answers a test sets and whose questions it sees.
class Bindings : public testing::Test {
protected:
    Bindings() { __mInput_instance()->interface = reinterpret_cast<void**>(&table); }

    ~Bindings() override {
        __mInput_instance()->interface = nullptr;
        asked.clear();
        answers.clear();
    }

private:
    quillon::InputTable table{{},
                              answer<bool, 'D'>,
                              answer<bool, 'P'>,
                              answer<bool, 'H'>,
                              answer<bool, 'R'>,
                              answer<bool, 'C'>,
                              answer<float, 'V'>,
                              answer<float, 'M'>,
                              {}};
};

using InputDigital = Bindings;
using InputAnalog = Bindings;

constexpr std::uint16_t FIRST = 85;   // "Left Control"
constexpr std::uint16_t SECOND = 198; // any button of pad 2

// What a query answers, asking no further than the answer needs. `ask` takes the first letter of an
// entry and the number of the input.
template <typename Ask>
bool plain_answer(char edge, int logic, const Ask& ask) {
    switch (logic) {
    case 0:
        return ask(edge, 1) || ask(edge, 2);
    case 1:
        if (edge == 'D')
            return ask('D', 1) && ask('D', 2);
        if (edge == 'R')
            return (!ask('D', 1) && ask('R', 2)) || (ask('R', 1) && !ask('D', 2));
        return (ask('D', 1) && ask(edge, 2)) || (ask(edge, 1) && ask('D', 2));
    case 2:
        return ask(edge, 1) && !ask('D', 2);
    default:
        return false;
    }
}

// Every query with every logic, each input set or not, and every pair of answers for each.
TEST_F(InputDigital, QueriesFollowTheRulesAndAskNothingElse) {
    using Query = std::pair<char, bool (cInputDigital::*)() const>;
    for (const auto& [edge, query] :
         {Query('D', &cInputDigital::query_down), Query('P', &cInputDigital::query_press),
          Query('H', &cInputDigital::query_hold_press), Query('R', &cInputDigital::query_release),
          Query('C', &cInputDigital::query_double_click)}) {
        for (int bits = 0; bits < 256; ++bits) {
            const auto bit = [bits](int index) { return (bits >> index & 1) != 0; };
            const int logic = bits >> 6;
            const cInputDigital binding{.code1 = static_cast<std::int16_t>(bit(0) ? FIRST : -1),
                                        .pad1 = -1,
                                        .code2 = static_cast<std::int16_t>(bit(1) ? 0 : -1),
                                        .pad2 = 2,
                                        .logic = static_cast<InputLogic>(logic)};
            const auto yes = [&](int index) { return bit(index) ? 1.0F : 0.0F; };
            answers = {{{edge, FIRST}, yes(2)}, {{edge, SECOND}, yes(3)}};
            if (edge != 'D')
                answers.insert({{{'D', FIRST}, yes(4)}, {{'D', SECOND}, yes(5)}});
            std::vector<Question> needed;
            const bool expected = plain_answer(edge, logic, [&](char letter, int input) {
                if (!bit(input - 1))
                    return false;
                needed.emplace_back(letter, input == 1 ? FIRST : SECOND);
                return answers[needed.back()] != 0;
            });
            asked.clear();
            EXPECT_EQ(expected, (binding.*query)()) << edge << " " << bits;
            EXPECT_EQ(needed, asked) << edge << " " << bits;
        }
    }
}

TEST_F(InputDigital, CodesReachThePlugInUntested) {
    struct Row {
        cInputDigital binding;
        std::uint16_t code;
        const char* name;
    };

    constexpr std::uint16_t wrapped = (32767 * 46 + 108) & 0xFFFF;
    for (const Row& row : {Row{{0, -1}, 0, "Any Key"}, Row{{0, 2}, 198, "Pad 3 Any"},
                           Row{{44, 3}, 287, "Pad 4 Hat 2 Down"}, Row{{-8, 0}, 100, "Print Screen"},
                           Row{{287, -1}, 287, "Pad 4 Hat 2 Down"}, Row{{288, -1}, 288, "INVALID"},
                           Row{{-2, -1}, 65534, "INVALID"}, Row{{0, 4}, 288, "INVALID"},
                           Row{{0, 1457}, 137, "INVALID"}, Row{{32767, 32767}, wrapped, "INVALID"},
                           // A pad below -1 counts for queries and not for names.
                           Row{{45, -2}, 63, "3"}}) {
        asked.clear();
        row.binding.query_down();
        EXPECT_THAT(asked, ElementsAre(Question('D', row.code))) << row.name;
        EXPECT_STREQ(row.name, row.binding.display_name1());
        const cInputDigital second{.code2 = row.binding.code1, .pad2 = row.binding.pad1};
        EXPECT_STREQ(row.name, second.display_name2());
    }
    EXPECT_STREQ("[NONE]", cInputDigital{.pad1 = 2}.display_name1());
    EXPECT_STREQ("[NONE]", cInputDigital{.pad2 = 2}.display_name2());
}

constexpr std::uint16_t PAD_AXIS = 9; // axis 4 of pad 1
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();

cInputAnalog bind(float dead_zone, float saturation_zone = 0, bool inverted = false) {
    return {3, 1, dead_zone, saturation_zone, inverted};
}

float response(const cInputAnalog& binding, float value) {
    answers[{'V', PAD_AXIS}] = value;
    return binding.query();
}

TEST_F(InputAnalog, ShapesTheAxisBitForBit) {
    const struct {
        const char* name;
        cInputAnalog binding;
        float value;
        float expected;
    } rows[] = {
        {"half of the live travel", bind(0.2F), 0.6F, 0.5F},
        {"inverted", bind(0.2F, 0, true), -0.6F, 0.5F},
        {"on the dead zone", bind(0.2F), -0.2F, 0},
        {"just past it", bind(0.2F), 0.20000002F, 0x1.4p-26F},
        {"two rounded steps", bind(0.1F, 0.3F), 0.7F, 0x1.e79e78p-1F},
        {"two rounded steps, negative", bind(0.15F, 0.07F), -0.33F, -0x1.d2567ap-3F},
        {"clamped", bind(0, 0.5F), 0.6F, 1},
        {"zero is dead without a dead zone", bind(0), 0, 0},
        {"zero is inverted to minus zero", bind(-1, -INFINITE, true), 0, -0.0F},
        {"negative saturation flattens", bind(0, -1), 0.5F, 0.25F},
        {"saturated", bind(0.2F, 1), 0.3F, 1},
        {"saturated ignores inverted", bind(0.2F, 1, true), -0.3F, -1},
        {"saturated zero is positive", bind(-1, 1, true), -0.0F, 1},
        {"nothing left to map", bind(1), 2, 1},
        {"less than nothing left", bind(2), 3, 0},
        {"not a number", bind(0), NOT_A_NUMBER, 0},
        {"dead zone not a number", bind(NOT_A_NUMBER), 1, 0},
        {"infinite over infinite", bind(0, -INFINITE), INFINITE, 0},
    };

    for (const auto& row : rows)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(row.expected),
                  std::bit_cast<std::uint32_t>(response(row.binding, row.value)))
            << row.name;
}

TEST_F(InputAnalog, CodesReachThePlugInUntestedAndOnlyTheMouseCountsATenth) {
    const struct {
        std::int16_t code;
        std::int16_t pad;
        std::uint16_t asked;
        float expected;
        const char* name;
    } rows[] = {
        {0, -1, 0, 0.3F, "Mouse X"},   {1, -1, 1, 0.3F, "Mouse Y"},
        {2, -1, 2, 1, "Pad 1 Axis 1"}, {0, 0, 2, 1, "Pad 1 Axis 1"},
        {3, 3, 17, 1, "Pad 4 Axis 4"}, {17, -1, 17, 1, "Pad 4 Axis 4"},
        {18, -1, 18, 1, "INVALID"},    {-2, -1, 65534, 1, "INVALID"},
        {-2, 0, 0, 0.3F, "Mouse X"}, // the pad rule comes first
        {0, 4, 18, 1, "INVALID"},      {5, -2, 65535, 1, "INVALID"},
        {0, 16384, 2, 1, "INVALID"},
    };

    for (const auto& row : rows) {
        const cInputAnalog binding{row.code, row.pad, 0, 0, false};
        asked.clear();
        answers = {{{'V', row.asked}, 3.0F}};
        EXPECT_FLOAT_EQ(row.expected, binding.query());
        EXPECT_THAT(asked, ElementsAre(Question('V', row.asked)));
        EXPECT_STREQ(row.name, binding.display_name()) << row.code << " of pad " << row.pad;
    }
    EXPECT_STREQ("[NONE]", cInputAnalog{.pad = 2}.display_name());
}

TEST_F(InputAnalog, CrossingsCompareTheLastTwoPositions) {
    const struct {
        const char* name;
        float dead_zone;
        float current;
        float delta;
        const char* fired;
    } rows[] = {
        {"up", 0.3F, 0.5F, 0.4F, "up"},
        {"up, subtracted before the mouse is scaled", 0.02F, 0.11F, 0.09F, "up"},
        {"resting above", 0.3F, 0.5F, 0, ""},
        {"from the threshold", 0.25F, 0.5F, 0.25F, "up"},
        {"on the threshold", 0.25F, 0.25F, 0.25F, ""},
        {"down", 0.3F, -0.5F, -0.4F, "down"},
        {"from minus the threshold", 0.25F, -0.5F, -0.25F, "down"},
        {"through both", 0.3F, -0.5F, -1, "down"},
        {"centre from above", 0.3F, 0.1F, -0.4F, "center"},
        {"centre from below", 0.25F, 0, 0.25F, "center"},
        {"no dead zone, no centre", 0, 0, -0.5F, ""},
        {"no dead zone, up", 0, 0.1F, 0.1F, "up"},
        {"not a number", 0.3F, NOT_A_NUMBER, 0, ""},
        {"dead zone not a number", NOT_A_NUMBER, 0.5F, 0.4F, ""},
    };

    for (const auto& row : rows)
        for (const std::uint16_t code : {std::uint16_t{1}, PAD_AXIS}) {
            // Neither saturation nor inversion plays a part.
            const cInputAnalog binding{static_cast<std::int16_t>(code), -1, row.dead_zone, 1, true};
            const float raw = code == PAD_AXIS ? 1.0F : 10.0F;
            answers = {{{'V', code}, row.current * raw}, {{'M', code}, row.delta * raw}};
            asked.clear();
            std::string fired = binding.query_up() ? "up" : "";
            EXPECT_THAT(asked, ElementsAre(Question('V', code), Question('M', code)));
            fired += binding.query_down() ? "down" : "";
            fired += binding.query_center() ? "center" : "";
            EXPECT_EQ(row.fired, fired) << row.name << ", code " << code;
        }
}

TEST_F(InputAnalog, UnsetAsksNothing) {
    const cInputAnalog unset{.pad = 1, .dead_zone = -1};
    EXPECT_EQ(0, unset.query());
    EXPECT_FALSE(unset.query_up() || unset.query_down() || unset.query_center());
    EXPECT_TRUE(asked.empty());
}

TEST(InputNames, FindTheirOwnCodes) {
    for (int code = 0; code < quillon::DIGITAL_CODES; ++code)
        EXPECT_EQ(code, quillon::digital_code(quillon::digital_input_names[code]));
    for (int code = 0; code < quillon::ANALOG_CODES; ++code)
        EXPECT_EQ(code, quillon::analog_code(quillon::analog_input_names[code]));
    EXPECT_EQ(quillon::NO_INPUT, quillon::digital_code("a"));
}

} // namespace
