#include "fake_table.h"

#include "quillon/input/analog.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

using quillon::cInputAnalog;
using quillon_test::FakeTable;
using quillon_test::Question;
using testing::ElementsAre;

constexpr std::uint16_t PAD_AXIS = 9; // axis 4 of pad 1
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float INFINITE = std::numeric_limits<float>::infinity();

cInputAnalog bind(float dead_zone, float saturation_zone = 0, bool inverted = false) {
    return {3, 1, dead_zone, saturation_zone, inverted};
}

float response(const cInputAnalog& binding, float value) {
    FakeTable::values[{'V', PAD_AXIS}] = value;
    return binding.query();
}

TEST(InputAnalog, ShapesTheAxisBitForBit) {
    const FakeTable table;

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

TEST(InputAnalog, OnlyTheMouseCountsATenth) {
    const FakeTable table;

    struct Row {
        std::int16_t code;
        std::int16_t pad;
        std::uint16_t asked;
        float expected;
    };

    // The pad rule comes first, so axis -2 of pad 0 is the mouse again.
    for (const Row& row :
         {Row{0, -1, 0, 0.3F}, Row{1, -1, 1, 0.3F}, Row{2, -1, 2, 1}, Row{0, 0, 2, 1},
          Row{3, 3, 17, 1}, Row{-2, 0, 0, 0.3F}, Row{-2, -1, 65534, 1}, Row{18, -1, 18, 1}}) {
        FakeTable::asked.clear();
        FakeTable::values = {{{'V', row.asked}, 3.0F}};
        EXPECT_FLOAT_EQ(row.expected, (cInputAnalog{row.code, row.pad, 0, 0, false}.query()));
        EXPECT_THAT(FakeTable::asked, ElementsAre(Question('V', row.asked)));
    }
}

TEST(InputAnalog, CrossingsCompareTheLastTwoPositions) {
    const FakeTable table;

    const struct {
        const char* name;
        float dead_zone;
        float current;
        float delta;
        const char* fired;
    } rows[] = {
        {"up", 0.3F, 0.5F, 0.4F, "up"},
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
        for (const bool mouse : {false, true}) {
            // Neither saturation nor inversion plays a part.
            const cInputAnalog binding{static_cast<std::int16_t>(mouse ? 1 : PAD_AXIS), -1,
                                       row.dead_zone, 1, true};
            const auto code = static_cast<std::uint16_t>(binding.code);
            const float raw = mouse ? 10.0F : 1.0F;
            FakeTable::values = {{{'V', code}, row.current * raw}, {{'M', code}, row.delta * raw}};
            FakeTable::asked.clear();
            EXPECT_EQ(row.fired == std::string("up"), binding.query_up()) << row.name << mouse;
            EXPECT_THAT(FakeTable::asked, ElementsAre(Question('V', code), Question('M', code)));
            EXPECT_EQ(row.fired == std::string("down"), binding.query_down()) << row.name << mouse;
            EXPECT_EQ(row.fired == std::string("center"), binding.query_center())
                << row.name << mouse;
        }
}

TEST(InputAnalog, UnsetAsksNothingAndUnconnectedIsStill) {
    {
        const FakeTable table;
        const cInputAnalog unset{.pad = 1, .dead_zone = -1};
        EXPECT_EQ(0, unset.query());
        EXPECT_FALSE(unset.query_up() || unset.query_down() || unset.query_center());
        EXPECT_TRUE(FakeTable::asked.empty());
    }
    const cInputAnalog binding{.code = 2};
    EXPECT_EQ(0, binding.query());
    EXPECT_FALSE(binding.query_up() || binding.query_down() || binding.query_center());
}

TEST(InputAnalog, NamesTheAxis) {
    const struct {
        std::int16_t code;
        std::int16_t pad;
        const char* name;
    } rows[] = {
        {-1, 2, "[NONE]"},         {0, -1, "Mouse X"},     {17, -1, "Pad 4 Axis 4"},
        {0, 0, "Pad 1 Axis 1"},    {3, 3, "Pad 4 Axis 4"}, {18, -1, "INVALID"},
        {-2, -1, "INVALID"},       {0, 4, "INVALID"},      {5, -2, "INVALID"},
        {32767, 16384, "INVALID"},
    };

    for (const auto& row : rows)
        EXPECT_STREQ(row.name, (cInputAnalog{.code = row.code, .pad = row.pad}.display_name()));
}

} // namespace
