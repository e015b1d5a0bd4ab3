// SPDX-License-Identifier: MIT
#include "quillon/math/spline.h"

#include "random_values.h"
#include "tests/reference/math.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace quillon;

namespace {

constexpr cVector3D A(0, 0, 0);
constexpr cVector3D B(1, 2, 3);
constexpr cVector3D C(4, -1, 0.5);

using Value = void (*)(const cSpline3D&, cVector3D&, double);
constexpr Value BOTH_VALUES[] = {__cSpline3d_get_hard_value, __cSpline3d_get_smooth_value};

cVector3D value_at(Value value, const cSpline3D& s, double t) {
    cVector3D out(9, 9, 9);
    value(s, out, t);
    return out;
}

cSpline3D random_spline(Numbers& numbers, int count, bool closed) {
    cSpline3D s(closed);
    while (s.count < count) {
        // Repeated points, and chords whose length is exactly 0 or 1, take ways of their own.
        const bool repeat = s.count > 0 && numbers.next() > 1.5;
        const cVector3D step(0, numbers.next() > 0.0 ? 1.0 : 0.0, 0);
        __cSpline3d_add_control_point(s, repeat ? s.points[s.count - 1] + step : numbers.vector());
    }
    return s;
}

std::string text_of(const cSpline3D& s) {
    std::vector<char> text(12 + 47 * s.count + 1, '?');
    text[0] = '\0';
    __cSpline3d_spline_to_string(s, text.data());
    return text.data();
}

} // namespace

TEST(Spline3D, ValuesEqualThePlainOnesBitForBit) {
    Numbers numbers;
    for (int i = 0; i < 600; ++i) {
        numbers.awkward = i % 2 == 0;
        const cSpline3D s = random_spline(numbers, 1 + i % 9, i % 4 < 2);
        for (int eighths = -16; eighths <= 8 * (s.count + 2); ++eighths) {
            const double t = eighths / 8.0;
            SCOPED_TRACE(testing::Message() << "spline " << i << ", t " << t);
            ASSERT_TRUE(
                same_bits(plain::hard_value(s, t), value_at(__cSpline3d_get_hard_value, s, t), 3));
            ASSERT_TRUE(same_bits(plain::smooth_value(s, t),
                                  value_at(__cSpline3d_get_smooth_value, s, t), 3));
        }
    }
}

TEST(Spline3D, NoParameterAndNoSplineReadsOutsideTheArray) {
    const cSpline3D none;
    const cSpline3D open(false, &B, &C);
    const cSpline3D closed(true, &B, &C, &A);
    constexpr double awkward[] = {-INFINITY, -1e300, -4e9, 0.5, 4e9, 1e300, INFINITY, NAN};
    for (const double t : awkward) {
        for (const Value value : BOTH_VALUES) {
            EXPECT_TRUE(same_bits(A, value_at(value, none, t), 3));
            const cVector3D end = value_at(value, open, t);
            if (std::abs(t) > 1e9) {
                EXPECT_TRUE(close_to(t < 0.0 ? B : C, end, 3, 1e-15)) << t;
            }
            value_at(value, closed, t);
        }
        const cVector3D target(t, t, t);
        EXPECT_EQ(0.0, __cSpline3d_get_value_closest_to(none, target, 0.0, 9));
        __cSpline3d_get_value_closest_to(closed, target, 0.0, 9);
    }
    // One point, one place: the chord has no length, and the search still ends.
    const cSpline3D point(true, &B);
    EXPECT_TRUE(std::isnan(__cSpline3d_get_value_closest_to(point, C, 0.0, 5)));
}

TEST(Spline3D, ArraysGrowByPowersOfTwo) {
    constexpr int cases[][3] = {{0, 1, 1},   {5, 6, 8}, {8, 9, 16},
                                {8, 40, 64}, {5, 5, 5}, {9, 3, 9}};
    for (const auto& [capacity, needed, grown] : cases) {
        cSpline3D s;
        delete[] s.points;
        __cSpline3d_create_empty(s, static_cast<std::uint32_t>(capacity));
        EXPECT_EQ(capacity, s.capacity);
        __cSpline3d_expand_array(s, needed);
        EXPECT_EQ(grown, s.capacity);
        EXPECT_TRUE(same_bits(A, s.points[s.capacity - 1], 3));
    }
    cSpline3D s(true, &A, &B, &C, &A, &B, &C, &A, &C);
    __cSpline3d_add_control_point(s, s.points[1]);
    EXPECT_EQ(16, s.capacity);
    EXPECT_TRUE(same_bits(C, s.points[7], 3));
    EXPECT_TRUE(same_bits(B, s.points[8], 3)) << "one of its own points";
}

TEST(Spline3D, CreatingLeavesTheEarlierArrayToTheCaller) {
    const cVector3D points[] = {B, C};
    for (const int count : {2, 0, -3}) {
        cSpline3D s(true, &A);
        const std::unique_ptr<cVector3D[]> earlier(s.points);
        __cSpline3d_create_with_control_points(s, points, count);
        EXPECT_EQ(std::max(count, 0), s.count);
        EXPECT_EQ(s.count, s.capacity);
        EXPECT_TRUE(s.closed);
        for (int i = 0; i < s.count; ++i)
            EXPECT_TRUE(same_bits(points[i], s.points[i], 3));
    }
}

TEST(Spline3D, CopiesAreTheirOwnAndMovesTakeTheArray) {
    const cSpline3D original(true, &A, &B, &C);
    cSpline3D copy(original);
    EXPECT_NE(original.points, copy.points);
    EXPECT_EQ(8, copy.capacity);
    const cVector3D* array = copy.points;
    copy = *&copy;
    EXPECT_EQ(array, copy.points);

    cSpline3D moved(std::move(copy));
    EXPECT_EQ(array, moved.points);
    __cSpline3d_add_control_point(copy, C); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(1, copy.count);
    copy = std::move(moved);
    EXPECT_TRUE(__cSpline3d_is_equal_to(original, copy));
}

TEST(Spline3D, EqualityIgnoresCapacityAndAllowsAMillionth) {
    const cSpline3D s(false, &A, &B);
    const cVector3D within = B + cVector3D(9e-7, 0, 0);
    const cVector3D beyond = B + cVector3D(8e-7, 0, 8e-7);
    cSpline3D roomy(s);
    __cSpline3d_expand_array(roomy, 100);
    EXPECT_TRUE(__cSpline3d_is_equal_to(s, roomy));
    EXPECT_TRUE(__cSpline3d_is_equal_to(s, cSpline3D(false, &A, &within)));
    EXPECT_FALSE(__cSpline3d_is_equal_to(s, cSpline3D(false, &A, &beyond)));
    EXPECT_FALSE(__cSpline3d_is_equal_to(s, cSpline3D(true, &A, &B)));
    EXPECT_FALSE(__cSpline3d_is_equal_to(s, cSpline3D(false, &A)));
}

TEST(Spline3D, TextIsReadWhateverItAnnounces) {
    const struct {
        const char* name;
        const char* text;
        bool closed;
        int count;
        cVector3D last;
    } cases[] = {
        {"two points", "S2#0.000#0.000#0.000#1.000#2.000#3.000#", false, 2, B},
        {"another letter", "c1#1#2#3#", false, 1, B},
        {"missing fields", "C3#1#2#3#", true, 3, A},
        {"open last field", "S1#1#2#3", false, 1, {1, 2, 0}},
        {"surplus fields", "S1#1#2#3#4#5#6#7#", false, 1, B},
        {"no closed field", "C3", true, 0, A},
        {"negative", "S-4#1#2#3#", false, 0, A},
        {"two billion points", "S2000000000#1#2#3#", false, 32767, A},
        {"beyond all integers", "C99999999999999999999999#1#2#3#", true, 32767, A},
        {"does not parse", "S#1#2#3#", false, 0, A},
        {"cut field", "S1#1#2#3.00000000000000000000000000000000009#", false, 1, B},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        cSpline3D s(!row.closed, &C);
        __cSpline3d_spline_from_string(s, row.text);
        EXPECT_EQ(row.closed, s.closed);
        EXPECT_EQ(row.count, s.count);
        EXPECT_EQ(row.count, s.capacity);
        EXPECT_TRUE(same_bits(row.last, s.count > 0 ? s.points[s.count - 1] : A, 3));
    }
}

TEST(Spline3D, TextIsWrittenInThreeDecimalsOrInRoom) {
    EXPECT_EQ("S2#0.000#0.000#0.000#1.000#2.000#3.000#", text_of(cSpline3D(false, &A, &B)));
    char text[] = "after: \0??????";
    __cSpline3d_spline_to_string(cSpline3D(true), text);
    EXPECT_STREQ("after: C0#", text);
    const cVector3D fits(99999999999.0, -9999999999.0, 9999999999.0); // 47 characters
    EXPECT_EQ("S1#99999999999.000#-9999999999.000#9999999999.000#",
              text_of(cSpline3D(false, &fits)));
    const cVector3D overflows(-123456789012.0, 99999999999.0, 9999999999.0);
    EXPECT_EQ("S2#-1.234568e+11#1.000000e+11#1.000000e+10#1.000#2.000#3.000#",
              text_of(cSpline3D(false, &overflows, &B)));
    constexpr double most = std::numeric_limits<double>::max();
    const cVector3D longest(-most, -most, -most);
    cSpline3D read;
    __cSpline3d_spline_from_string(read, text_of(cSpline3D(false, &longest, &longest)).c_str());
    EXPECT_NEAR(1.0, read.points[1].z / -most, 1e-6);
}

TEST(Spline3D, FlatFormCountsTheUnusedCapacityAtAnyAddress) {
    const cSpline3D s(true, &B, &C);
    std::vector<std::uint8_t> buffer(1 + 105, 0xEE);
    EXPECT_EQ(105u, s.serialize(buffer.data() + 1));
    EXPECT_EQ(1, buffer[9]);
    EXPECT_EQ(0xEE, buffer[1 + 9 + 24]);
    cSpline3D back(false, &A);
    EXPECT_EQ(105u, back.deserialize(buffer.data() + 1));
    EXPECT_TRUE(__cSpline3d_is_equal_to(s, back));

    const std::int32_t headers[][2] = {{5, 2}, {-1, 2}, {2, -1}};
    for (const auto& header : headers) {
        std::memcpy(buffer.data() + 1, header, sizeof header);
        back.deserialize(buffer.data() + 1);
        EXPECT_LE(0, back.count);
        EXPECT_LE(back.count, back.capacity);
    }
}

TEST(Spline3D, MorePointsThanSixteenBitsName) {
    constexpr int count = 70000;
    cSpline3D s(true);
    for (int i = 0; i < count; ++i)
        __cSpline3d_add_control_point(s, cVector3D(i, 0, 1));
    for (const Value value : BOTH_VALUES)
        EXPECT_TRUE(close_to(cVector3D(69998.5, 0, 1), value_at(value, s, 69998.5), 3, 1e-9));
    EXPECT_EQ(66000.0, __cSpline3d_get_value_closest_to(s, cVector3D(66000, 0, 1), 0.1, 3));
    cSpline3D read;
    __cSpline3d_spline_from_string(read, text_of(s).c_str());
    EXPECT_TRUE(__cSpline3d_is_equal_to(s, read));
    read.points[count - 1].x = 0;
    EXPECT_FALSE(__cSpline3d_is_equal_to(s, read));
    std::vector<std::uint8_t> buffer(s.serialized_size());
    s.serialize(buffer.data());
    read.deserialize(buffer.data());
    EXPECT_TRUE(__cSpline3d_is_equal_to(s, read));
}
