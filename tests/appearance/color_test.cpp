// SPDX-License-Identifier: MIT
#include "tests/appearance/expect_color.h"
#include "tests/flat_form.h"

#include <array>
#include <cmath>

using quillon::cColor;

TEST(Color, FlatFormClampsAndTruncates) {
    cColor back(9, 9, 9, 9);
    expect_flat_form(cColor(1.5F, -0.25F, 0.5F, 1), back,
                     bytes_of(std::array<std::uint8_t, 4>{255, 0, 127, 255}));
    expect_color(back, {1, 0, 127.0F / 255.0F, 1});
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
        expect_color(color, {row.r, row.g, row.b, 1});
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
