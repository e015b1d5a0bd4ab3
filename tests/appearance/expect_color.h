// SPDX-License-Identifier: MIT
#pragma once

#include "quillon/appearance/color.h"

#include <gtest/gtest.h>

// Exact: no tolerance.
inline void expect_color(const quillon::cColor& color, const quillon::cColor& expected) {
    EXPECT_EQ(expected.r, color.r);
    EXPECT_EQ(expected.g, color.g);
    EXPECT_EQ(expected.b, color.b);
    EXPECT_EQ(expected.a, color.a);
}
