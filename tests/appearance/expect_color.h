#pragma once

#include "quillon/appearance/color.h"

#include <gtest/gtest.h>

// Exact: no tolerance.
inline void expect_color(const quillon::cColor& color, float r, float g, float b, float a) {
    EXPECT_EQ(r, color.r);
    EXPECT_EQ(g, color.g);
    EXPECT_EQ(b, color.b);
    EXPECT_EQ(a, color.a);
}

inline void expect_color(const quillon::cColor& color, const quillon::cColor& expected) {
    expect_color(color, expected.r, expected.g, expected.b, expected.a);
}
