// SPDX-License-Identifier: MIT
// Every entry of the trigonometry tables, read through the functions that use them.
#pragma once

#include "quillon/math/trig_tables.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <functional>

namespace quillon {

// Fills the tables for a test.
class FilledTables : public testing::Test {
protected:
    static void SetUpTestSuite() { __init_trig_tables(); }

    static void TearDownTestSuite() { __clear_trig_tables(); }
};

// What the entries are compared with; the last three are rounded to floats before.
struct TrigFunctions {
    std::function<double(double)> cos, sin, tan, acos, asin, atan;
};

inline void expect_entries_of(const TrigFunctions& functions) {
    const double wide_pi = PI;
    for (int i = 0; i < trig::CIRCLE_ENTRIES; ++i) {
        const double angle = i * wide_pi / 36000.0;
        ASSERT_EQ(functions.cos(angle), cosTD(i / 200.0)) << i;
        ASSERT_EQ(functions.sin(angle), sinTD(i / 200.0)) << i;
    }
    for (int i = 0; i < trig::TANGENT_ENTRIES; ++i)
        ASSERT_EQ(functions.tan(i * wide_pi / 1800.0), tanTD(i / 10.0)) << i;

    const auto same_bits = [](double expected, float actual) {
        return std::bit_cast<std::uint32_t>(static_cast<float>(expected)) ==
               std::bit_cast<std::uint32_t>(actual);
    };
    for (int i = 0; i <= 20000; ++i) {
        const double x = static_cast<float>(i / 10000.0 - 1.0);
        const double inside = (i + 0.5) / 10000.0 - 1.0;
        ASSERT_PRED2(same_bits, functions.acos(x), acosT(inside)) << i;
        ASSERT_PRED2(same_bits, functions.asin(x), asinT(inside)) << i;
    }
    for (int i = -1000000; i <= 1000000; ++i) {
        const double x = static_cast<float>(i / 50000.0);
        const double inside = (i + (i < 0 ? -0.5 : i > 0 ? 0.5 : 0.0)) / 50000.0;
        ASSERT_PRED2(same_bits, functions.atan(x), atanT(inside)) << i;
    }
}

} // namespace quillon
