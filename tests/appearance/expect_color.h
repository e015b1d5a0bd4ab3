#pragma once

#include "quillon/appearance/color.h"
#include "quillon/appearance/named.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

// Exact: no tolerance.
inline void expect_color(const quillon::cColor& color, float r, float g, float b, float a) {
    EXPECT_EQ(r, color.r);
    EXPECT_EQ(g, color.g);
    EXPECT_EQ(b, color.b);
    EXPECT_EQ(a, color.a);
}

inline std::string lower_case(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), quillon::to_lower);
    return lower;
}
