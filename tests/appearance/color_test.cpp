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

// Elsewhere on the circle and beyond it the digests hold.
TEST(Color, HueMeetsItsSixthsOnTheBorders) {
    const struct {
        float hue;
        cColor expected;
    } cases[] = {
        {0, {0.5F, 0, 0, 1}},
        {0.5F, {0, 0.5F, 0.49999997F, 1}},
        {1, {0.5F, 0, 0x1p-24F, 1}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.hue);
        cColor color(9, 9, 9, 9);
        __nsColor_hue_function(color, row.hue, 1, 0.5F);
        expect_color(color, row.expected);
    }
    cColor color(9, 9, 9, 9);
    __nsColor_hue_function(color, NAN, 0, 2);
    EXPECT_EQ(2, color.r);
    EXPECT_TRUE(std::isnan(color.b));
}
