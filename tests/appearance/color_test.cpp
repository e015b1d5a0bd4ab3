#include "tests/appearance/expect_color.h"

#include <array>
#include <cmath>
#include <utility>

using quillon::cColor;

TEST(Color, FlatFormClampsAndTruncates) {
    std::array<std::uint8_t, 4> bytes{};
    EXPECT_EQ(4U, cColor(1.5F, -0.25F, 0.5F, 1).serialize(bytes.data()));
    EXPECT_EQ((std::array<std::uint8_t, 4>{255, 0, 127, 255}), bytes);

    cColor back(9, 9, 9, 9);
    EXPECT_EQ(4U, back.deserialize(bytes.data()));
    expect_color(back, 1, 0, 127.0F / 255.0F, 1);
}

TEST(Color, ComponentsOutsideOfAByteAreDefined) {
    const struct {
        const char* name;
        float component;
        int clamped;
        int wrapped;
    } cases[] = {
        {"just below 1", std::nextafter(1.0F, 0.0F), 254, 254},
        {"one and a half", 1.5F, 255, 126},
        {"minus a half", -0.5F, 0, 129},
        {"largest 32-bit product", 8421504.0F, 255, 128},
        {"product beyond 32 bits", 8421505.0F, 255, 0},
        {"infinity", INFINITY, 255, 0},
        {"minus infinity", -INFINITY, 0, 0},
        {"not a number", NAN, 0, 0},
    };

    for (int byte = 0; byte < 256; ++byte) {
        const float component = quillon::component_from_byte(static_cast<std::uint8_t>(byte));
        EXPECT_EQ(byte, quillon::clamped_byte_from_component(component));
        EXPECT_EQ(byte, quillon::wrapped_byte_from_component(component));
    }
    for (const auto& row : cases) {
        EXPECT_EQ(row.clamped, quillon::clamped_byte_from_component(row.component)) << row.name;
        EXPECT_EQ(row.wrapped, quillon::wrapped_byte_from_component(row.component)) << row.name;
    }
}

TEST(Color, BadIndexGivesAScratchZero) {
    cColor color(1, 2, 3, 4);
    for (const int index : {-1, 4}) {
        color[index] = 9;
        EXPECT_EQ(0, color[index]);
        EXPECT_EQ(0, std::as_const(color)[index]);
    }
    expect_color(color, 1, 2, 3, 4);
    EXPECT_EQ(4, std::as_const(color)[3]);
}

TEST(Color, TextIsReadFieldByField) {
    const struct {
        const char* name;
        const char* text;
        cColor expected;
    } cases[] = {
        {"open last field", "0.5#1#0#0.1", {0.5F, 1, 0, 40}},
        {"empty field", "#0.25##", {0, 0.25F, 0, 40}},
        {"surplus fields", "1#2#3#4#5#6#", {1, 2, 3, 4}},
        {"not a number", "red#-2e1#", {0, -20, 30, 40}},
        {"beyond the buffer", "0.500000000000000000000000000000009#1#", {0.5F, 1, 30, 40}},
        {"empty text", "", {10, 20, 30, 40}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        cColor color(10, 20, 30, 40);
        __nsColor_color_from_string(color, row.text);
        expect_color(color, row.expected);
    }
}

TEST(Color, HueFollowsTheCircleAndGoesOnBeyond) {
    const struct {
        const char* name;
        float hue, saturation, value;
        float r, g, b;
    } cases[] = {
        {"red", 0, 1, 1, 1, 0, 0},
        {"half way to green", 0.25F, 0.5F, 0.5F, 0.375F, 0.5F, 0.25F},
        {"last of the third sixth", 0.5F, 1, 1, 0, 1, 0.99999994F},
        {"fourth sixth", 0.6F, 1, 1, 0, 0.39999998F, 1},
        {"fifth sixth", 0.75F, 1, 1, 0.49999988F, 0, 1},
        {"whole circle", 1, 1, 1, 1, 0, 0x1p-23F},
        {"no saturation", 0.7F, 0, 0.25F, 0.25F, 0.25F, 0.25F},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        cColor color(9, 9, 9, 9);
        __nsColor_hue_function(color, row.hue, row.saturation, row.value);
        expect_color(color, row.r, row.g, row.b, 1);
    }
    cColor color(9, 9, 9, 9);
    __nsColor_hue_function(color, 1.5F, 1, 1);
    EXPECT_NEAR(-3, color.b, 0.00001);
    __nsColor_hue_function(color, -0.1F, 1, 1);
    EXPECT_NEAR(-0.6, color.g, 0.00001);
    __nsColor_hue_function(color, NAN, 0, 2);
    EXPECT_EQ(2, color.r);
    EXPECT_TRUE(std::isnan(color.b));
}
