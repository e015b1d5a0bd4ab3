// SPDX-License-Identifier: MIT
// Vectors and zones, and what all classes of components have in common.
#include "quillon/math/vector.h"

#include "quillon/appearance/color.h"
#include "quillon/platform/random.h"
#include "random_values.h"
#include "tests/flat_form.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

using namespace quillon;
using testing::ElementsAre;

namespace {

// With a value to start from, as the others have.
struct Color : cColor {
    Color() : cColor(0, 0, 0, 0) {}
};

template <typename Object>
constexpr int COMPONENTS = (sizeof(Object) - sizeof(void*)) /
                           sizeof(std::declval<const Object&>()[0]);

// Reads a text into an object whose components are -1, -2 and so on, and returns its components.
template <typename Object, typename Read>
auto reader(void (*from_string)(Read&, const char*)) {
    return [from_string](const char* text) {
        Object object;
        for (int i = 0; i < COMPONENTS<Object>; ++i)
            object[i] = static_cast<float>(-1 - i);
        from_string(object, text);
        return std::vector<double>(&object[0], &object[0] + COMPONENTS<Object>);
    };
}

using Corners = std::array<double, 6>;

Corners corners(const cZone3D& z) {
    return {z.minimum.x, z.minimum.y, z.minimum.z, z.maximum.x, z.maximum.y, z.maximum.z};
}

class RandomValues : public Rotations {};

} // namespace

TEST(Serializable, FlatFormsAtAnyAlignment) {
    expect_flat_form(cVector3D(1, -0.1, 1e30), cVector3D(), bytes_of(1.0F, -0.1F, 1e30F));
    expect_flat_form(cVector2D<double>(0.1, -1e300), cVector2D<double>(), bytes_of(0.1, -1e300));
    expect_flat_form(cVector2D<long>(-2147483647 - 1, 7), cVector2D<long>(),
                     bytes_of(-2147483647 - 1, 7));
    expect_flat_form(cZone3D(1, 2, 3), cZone3D(0, 0, 0),
                     bytes_of(-1.0F, -2.0F, -3.0F, 1.0F, 2.0F, 3.0F));
    expect_flat_form(cQuaternion(0.1, 2, 3, -4), cQuaternion(), bytes_of(0.1F, 2.0F, 3.0F, -4.0F));
    expect_flat_form(cMatrix3D(1, 0.1, 3, 4, 5, 6, 7, 8, 9), cMatrix3D(),
                     bytes_of(1.0F, 0.1F, 3.0F, 4.0F, 5.0F, 6.0F, 7.0F, 8.0F, 9.0F));
}

template <typename Object>
class IndexedAccess : public testing::Test {};

using IndexedObjects =
    testing::Types<cVector3D, cVector2D<double>, cVector2D<long>, cQuaternion, cMatrix3D, Color>;
TYPED_TEST_SUITE(IndexedAccess, IndexedObjects);

TYPED_TEST(IndexedAccess, BadIndicesReachAScratchZeroAndNoComponent) {
    constexpr int count = COMPONENTS<TypeParam>;
    TypeParam object;
    const TypeParam& read_only = object;
    std::iota(&object[0], &object[0] + count, 1);
    for (const int index : {-1, count, 1000, std::numeric_limits<int>::min()}) {
        object[index] = 5;
        EXPECT_EQ(0, object[index]) << "cleared on each access";
        object[index] = 5;
        EXPECT_EQ(0, read_only[index]) << index;
    }
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(i + 1, read_only[i]);
}

static_assert(sizeof(cVector2D<long>::x) == 4, "32 bits whatever the width of long");

TEST(TextForm, IsReadFieldByField) {
    const std::string endless = std::string(100000, '7') + "#2#3#" + std::string(100000, '#');
    const auto vector = reader<cVector3D>(__cVector3d_vector_from_string);
    const auto quaternion = reader<cQuaternion>(__cQuaternion_from_string);
    const auto matrix = reader<cMatrix3D>(__cMatrix3d_from_string);
    const auto color = reader<Color>(__nsColor_color_from_string);
    EXPECT_THAT(vector("1.5#2#3"), ElementsAre(1.5, 2, -3)) << "open last field";
    EXPECT_THAT(vector(""), ElementsAre(-1, -2, -3)) << "empty text";
    EXPECT_THAT(vector("1#2#3#4#"), ElementsAre(1, 2, 3)) << "surplus field";
    EXPECT_THAT(vector("a## 3e2#"), ElementsAre(0, 0, 300)) << "does not parse, nothing, blanks";
    EXPECT_THAT(vector("12345678901234567890123999#2#3#"),
                ElementsAre(12345678901234567890123.0, 2, 3))
        << "cut at 23";
    EXPECT_THAT(vector(endless.c_str()), ElementsAre(77777777777777777777777.0, 2, 3)) << "endless";
    EXPECT_THAT(quaternion("x#123456789012345678#7"), ElementsAre(0, 123456789012345, -3, -4))
        << "cut at 15";
    EXPECT_THAT(quaternion("0#0#0#1#5#"), ElementsAre(0, 0, 0, 1)) << "surplus for a quaternion";
    EXPECT_THAT(matrix("8#x#123456789012345678#8"),
                ElementsAre(8, 0, 123456789012345, -4, -5, -6, -7, -8, -9))
        << "matrix cut at 15";
    EXPECT_THAT(color("red#-2e1##0.1"), ElementsAre(0, -20, 0, -4)) << "colour";
    EXPECT_THAT(color("0.000000000000000000000000000000009#1#"), ElementsAre(0, 1, -3, -4))
        << "cut colour";
    EXPECT_THAT(color("1#2#3#4#5#6#"), ElementsAre(1, 2, 3, 4)) << "surplus for a colour";
    EXPECT_THAT(matrix("9#8#7#6#5#4#3#2#1.5#0#"), ElementsAre(9, 8, 7, 6, 5, 4, 3, 2, 1.5))
        << "matrix row by row";
}

TEST(Vector3D, ComputesByComponents) {
    const cVector3D a(1.0, 2.0, 3.0);
    const cVector3D b(4.0, -5.0, 0.5);
    const cQuaternion q(1, 2, 3, 4);
    cVector3D changed = a;
    cVector3D turned = a;
    cVector3D expected_turn = a;
    __cVector3d_rotate_by_quaternion(expected_turn, q);

    const auto same = [](const cVector3D& expected, const cVector3D& actual) {
        return same_bits(expected, actual, 3);
    };
    EXPECT_TRUE(same({3, -7, -2.5}, a + b - a * 2.0)) << "sum and difference";
    EXPECT_TRUE(same({1 / 49.0, 2 / 49.0, 3 / 49.0}, a / 49.0))
        << "divided, not scaled by the reciprocal";
    EXPECT_TRUE(same({INFINITY, INFINITY, INFINITY}, a / 0.0)) << "divided by zero";
    EXPECT_TRUE(same({2 * 0.5 + 15, 12 - 0.5, -5 - 8}, a.cross(b))) << "cross";
    EXPECT_TRUE(same({12 / 9.0, -15 / 9.0, 1.5 / 9.0}, (((changed += b) -= a) *= 3.0) /= 9.0))
        << "in place";
    EXPECT_TRUE(same(expected_turn, turned *= q)) << "turned";
    EXPECT_TRUE(same({0, -3 / 5.0, 4 / 5.0}, cVector3D(0, -3, 4).normalized())) << "normalised";
    EXPECT_TRUE(same({1, 0, 0}, cVector3D(1.0000001, 0, 0).normalized()))
        << "no tolerance for nearly unit";
    EXPECT_TRUE(same({0, 0, 0}, cVector3D().normalized())) << "zero stays";
    EXPECT_TRUE(same({1e-200, 0, 0}, cVector3D(1e-200, 0, 0).normalized()))
        << "and what squares to zero";
    EXPECT_EQ(4.0 - 10.0 + 1.5, a.dot(b));
    EXPECT_EQ(std::sqrt(14.0), a.length());
}

TEST(Vector3D, AnglesAndProjectionsAllowForZeroVectors) {
    const cVector3D x(1, 0, 0);
    EXPECT_EQ(0.0, __cVector3d_get_angle_between({0, 0, 0}, x));
    EXPECT_EQ(0.0, __cVector3d_get_angle_between(x, {0, 0, 0}));
    EXPECT_EQ(1.5707963705062866, __cVector3d_get_angle_between(x, {0, 1, 0}));
    EXPECT_EQ(std::acos(1.0 / std::sqrt(2.0)), __cVector3d_get_angle_between(x, {1, -1, 0}));
    EXPECT_EQ(std::acos(-1.0), __cVector3d_get_angle_between(x, {-2, 0, 0}));

    EXPECT_EQ(0.5, __cVector3d_get_scalar_for_projection_onto({2, 2, 0}, {4, 0, 0}));
    EXPECT_EQ(0.0, __cVector3d_get_scalar_for_projection_onto(x, {0, 0, 0}));
}

TEST(Zone3D, SignsOfHalfExtentsAreIgnored) {
    EXPECT_EQ((Corners{-1, -2, -3, 1, 2, 3}), corners(cZone3D(-1, 2, -3)));
    EXPECT_EQ((Corners{-0.5, -0.5, -0.5, 0.5, 0.5, 0.5}), corners(ZONE3D_HALF));
    EXPECT_FALSE(std::signbit(cZone3D(-0.0, 0.0, 0.0).maximum.x));
}

TEST(Zone3D, ExpandsComponentByComponent) {
    cZone3D zone = ZONE3D_ZERO;
    __cZone3d_expand_to_contain(zone, {1, -2, 3});
    __cZone3d_expand_to_contain(zone, {0.5, -1, NAN});
    EXPECT_EQ((Corners{0, -2, 0, 1, 0, 3}), corners(zone));
}

TEST(Zone3D, TextFormHasTheMinimumFirst) {
    cZone3D zone = ZONE3D_ONE;
    __cZone3d_zone_from_string(zone, "1#2#3#4#5");
    EXPECT_EQ((Corners{1, 2, 3, 4, 1, 1}), corners(zone));
    __cZone3d_zone_from_string(zone, "-1#-2#-3#6#5#4.25#99#99#");
    EXPECT_EQ((Corners{-1, -2, -3, 6, 5, 4.25}), corners(zone));
}

TEST(RuntimeRand, HasFifteenBits) {
    int highest = 0;
    for (int i = 0; i < 2000; ++i)
        highest = std::max(highest, platform::runtime_rand());
    EXPECT_TRUE(highest > 32567 && highest <= 32767) << highest;
}

TEST_F(RandomValues, DrawTheirComponentsInOrder) {
    const auto seeded = [](const auto& draw) {
        std::srand(9);
        return draw();
    };
    const auto draws = seeded([] {
        std::array<double, 3> drawn{};
        for (double& draw : drawn)
            draw = platform::runtime_rand() / 32767.0;
        return drawn;
    });

    cVector3D direction;
    seeded([&] { __nsVector3d_on_unit_sphere(direction); });
    const cVector3D point(draws[2] - 0.5, draws[1] - 0.5, draws[0] - 0.5);
    EXPECT_TRUE(same_bits(point.normalized(), direction, 3));

    cQuaternion q;
    cQuaternion expected_q;
    seeded([&] { __nsQuaternion_random(q); });
    __cQuaternion_from_euler_components(expected_q, draws[2] * PI * 2.0, draws[1] * PI * 2.0,
                                        draws[0] * PI * 2.0);
    EXPECT_TRUE(same_bits(expected_q, q, 4));

    cMatrix3D m(1, 2, 3, 4, 5, 6, 7, 8, 9);
    cMatrix3D expected_m;
    seeded([&] { __nsMatrix3d_random(m); });
    expected_m.yaw(draws[0] * TWO_PI);
    expected_m.pitch((draws[1] - 0.5) * PI);
    EXPECT_TRUE(same_bits(expected_m, m, 9));
}
