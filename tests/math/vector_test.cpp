#include "quillon/math/vector.h"

#include "quillon/math/zone.h"
#include "quillon/platform/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using quillon::cSerializable;
using quillon::cVector2D;
using quillon::cVector3D;
using quillon::cZone3D;

namespace {

std::array<double, 3> components(const cVector3D& v) {
    return {v.x, v.y, v.z};
}

template <class Stored>
std::vector<std::uint8_t> bytes_of(std::initializer_list<Stored> values) {
    std::vector<std::uint8_t> bytes(values.size() * sizeof(Stored));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

// Writes `source` at every alignment, reads it back into `target`, and holds the bytes against
// `expected`; the bytes around it must stay.
void expect_flat_form(const cSerializable& source, cSerializable& target,
                      const std::vector<std::uint8_t>& expected) {
    const std::size_t size = expected.size();
    ASSERT_EQ(size, source.serialized_size());
    for (std::size_t offset = 1; offset <= 8; ++offset) {
        std::vector<std::uint8_t> buffer(size + 16, 0xAA);
        EXPECT_EQ(size, source.serialize(buffer.data() + offset));
        std::vector<std::uint8_t> whole(size + 16, 0xAA);
        std::copy(expected.begin(), expected.end(), whole.begin() + offset);
        EXPECT_EQ(whole, buffer) << offset;
        EXPECT_EQ(size, target.deserialize(buffer.data() + offset));
        std::vector<std::uint8_t> again(size);
        target.serialize(again.data());
        EXPECT_EQ(expected, again) << offset;
    }
}

} // namespace

TEST(Serializable, FlatFormsAtAnyAlignment) {
    cVector3D vector;
    expect_flat_form(cVector3D(1.0, -0.1, 1e30), vector, bytes_of({1.0F, -0.1F, 1e30F}));
    EXPECT_EQ(static_cast<double>(-0.1F), vector.y) << "narrowed to 32 bits";

    cVector2D<double> pair;
    expect_flat_form(cVector2D<double>(0.1, -1e300), pair, bytes_of({0.1, -1e300}));
    EXPECT_EQ(0.1, pair.x) << "not narrowed";

    cVector2D<long> whole;
    expect_flat_form(cVector2D<long>(-2147483647 - 1, 7), whole, bytes_of({-2147483647 - 1, 7}));

    cZone3D zone(0, 0, 0);
    expect_flat_form(cZone3D(1, 2, 3), zone, bytes_of({-1.0F, -2.0F, -3.0F, 1.0F, 2.0F, 3.0F}));
}

template <class Vector>
class IndexedAccess : public testing::Test {};

using IndexedVectors = testing::Types<cVector3D, cVector2D<double>, cVector2D<long>>;
TYPED_TEST_SUITE(IndexedAccess, IndexedVectors);

TYPED_TEST(IndexedAccess, BadIndicesReachAScratchZeroAndNoComponent) {
    constexpr int count = std::is_same_v<TypeParam, cVector3D> ? 3 : 2;
    TypeParam v;
    const TypeParam& read_only = v;
    for (int i = 0; i < count; ++i)
        v[i] = i + 1;
    for (const int index : {-1, count, 1000, std::numeric_limits<int>::min()}) {
        v[index] = 5;
        EXPECT_EQ(0, v[index]) << "cleared on each access";
        v[index] = 5;
        EXPECT_EQ(0, read_only[index]) << index;
    }
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(i + 1, read_only[i]);
    EXPECT_EQ(1, v.x);
    EXPECT_EQ(2, v.y);
}

static_assert(sizeof(cVector2D<long>::x) == 4, "32 bits whatever the width of long");
static_assert(quillon::VECTOR3D_UNIT_Z.z == 1.0 && quillon::VECTOR2L_ONE.y == 1,
              "constants stand before any code runs");

TEST(Vector3D, Arithmetic) {
    const cVector3D a(1.0, 2.0, 3.0);
    const cVector3D b(4.0, -5.0, 0.5);
    cVector3D changed = a;

    const struct {
        const char* name;
        cVector3D actual;
        std::array<double, 3> expected;
    } cases[] = {
        {"sum and difference", a + b - a * 2.0, {3, -7, -2.5}},
        {"divided, not scaled by the reciprocal", a / 49.0, {1 / 49.0, 2 / 49.0, 3 / 49.0}},
        {"divided by zero", a / 0.0, {INFINITY, INFINITY, INFINITY}},
        {"cross", a.cross(b), {2 * 0.5 + 15, 12 - 0.5, -5 - 8}},
        {"in place", ((((changed += b) -= a) *= 3.0) /= 9.0), {12 / 9.0, -15 / 9.0, 1.5 / 9.0}},
        {"normalised", cVector3D(0, -3, 4).normalized(), {0, -3 / 5.0, 4 / 5.0}},
        {"no tolerance for nearly unit", cVector3D(1.0000001, 0, 0).normalized(), {1, 0, 0}},
        {"zero stays", cVector3D().normalized(), {0, 0, 0}},
        {"and what squares to zero", cVector3D(1e-200, 0, 0).normalized(), {1e-200, 0, 0}},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, components(row.actual)) << row.name;
    EXPECT_EQ(4.0 - 10.0 + 1.5, a.dot(b));
    EXPECT_EQ(std::sqrt(14.0), a.length());
}

TEST(Vector3D, AngleAndProjection) {
    const cVector3D x(1, 0, 0);
    EXPECT_EQ(0.0, __cVector3d_get_angle_between({0, 0, 0}, x));
    EXPECT_EQ(0.0, __cVector3d_get_angle_between(x, {0, 0, 0}));
    EXPECT_EQ(1.5707963705062866, __cVector3d_get_angle_between(x, {0, 1, 0}));
    EXPECT_EQ(std::acos(1.0 / std::sqrt(2.0)), __cVector3d_get_angle_between(x, {1, -1, 0}));
    EXPECT_EQ(std::acos(-1.0), __cVector3d_get_angle_between(x, {-2, 0, 0}));

    EXPECT_EQ(0.5, __cVector3d_get_scalar_for_projection_onto({2, 2, 0}, {4, 0, 0}));
    EXPECT_EQ(0.0, __cVector3d_get_scalar_for_projection_onto(x, {0, 0, 0}));
}

TEST(Vector3D, TextFormIsReadFieldByField) {
    const std::string endless = std::string(100000, '7') + "#2#3#" + std::string(100000, '#');

    const struct {
        const char* name;
        const char* text;
        std::array<double, 3> expected;
    } cases[] = {
        {"open last field", "1.5#2#3", {1.5, 2, -9}},
        {"empty text", "", {-7, -8, -9}},
        {"surplus field", "1#2#3#4#", {1, 2, 3}},
        {"no number, nothing, blanks", "a## 3e2#", {0, 0, 300}},
        {"cut at 23 characters",
         "12345678901234567890123999#2#3#",
         {12345678901234567890123.0, 2, 3}},
        {"endless field and fields", endless.c_str(), {77777777777777777777777.0, 2, 3}},
    };

    for (const auto& row : cases) {
        cVector3D v(-7, -8, -9);
        __cVector3d_vector_from_string(v, row.text);
        EXPECT_EQ(row.expected, components(v)) << row.name;
    }
}

TEST(Vector3D, OnUnitSphereDrawsZThenYThenX) {
    std::srand(9);
    cVector3D drawn;
    __nsVector3d_on_unit_sphere(drawn);
    std::srand(9);
    cVector3D expected;
    for (const int component : {2, 1, 0})
        expected[component] = quillon::platform::runtime_rand() / 32767.0 - 0.5;
    EXPECT_EQ(components(expected.normalized()), components(drawn));
}
