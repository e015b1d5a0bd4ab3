#include "quillon/math/matrix.h"

#include "bench/math/plain.h"
#include "quillon/platform/random.h"
#include "random_values.h"

#include <cstdlib>

using quillon::close_to;
using quillon::cMatrix3D;
using quillon::cQuaternion;
using quillon::cVector3D;
using quillon::same_bits;

namespace {

class Matrix3D : public quillon::Rotations {};

constexpr cMatrix3D counting(1, 2, 3, 4, 5, 6, 7, 8, 9);

constexpr struct {
    const char* name;
    void (*set)(cMatrix3D&, double);
    void (*turn)(cMatrix3D&, double);
    cVector3D axis;
    cVector3D from; // carried to `to` by a quarter turn
    cVector3D to;
} rotations[] = {
    {"yaw", __nsMatrix3d_yaw, __cMatrix3d_yaw, {0, 3, 0}, {0, 0, 1}, {-1, 0, 0}},
    {"pitch", __nsMatrix3d_pitch, __cMatrix3d_pitch, {0.5, 0, 0}, {0, 1, 0}, {0, 0, 1}},
    {"roll", __nsMatrix3d_roll, __cMatrix3d_roll, {0, 0, 7}, {1, 0, 0}, {0, 1, 0}},
};

} // namespace

TEST_F(Matrix3D, ProductEqualsThePlainOneBitForBit) {
    compare_products<cMatrix3D>(
        __cMatrix3d_multiply, plain::multiply, [&] { return numbers.matrix(); }, 9);
}

TEST_F(Matrix3D, VectorsTurnAsByThePlainMatrixBitForBit) {
    for (int i = 0; i < 20000; ++i) {
        const cMatrix3D m = numbers.matrix();
        const cQuaternion q = numbers.quaternion();
        const cVector3D v = numbers.vector();
        const auto same = [&](auto turn, const auto& by, auto plainly) {
            cVector3D turned = v;
            cVector3D expected = v;
            turn(turned, by);
            plainly(expected, by);
            return same_bits(expected, turned, 3);
        };
        const auto forth = [](cVector3D& u, const auto& by) { plain::rotate(u, by); };
        const auto back = [](cVector3D& u, const auto& by) { plain::rotate_backwards(u, by); };
        ASSERT_TRUE(same(__cVector3d_rotate_by_matrix, m, forth));
        ASSERT_TRUE(same(__cVector3d_rotate_backwards_by_matrix, m, back));
        ASSERT_TRUE(same(__cVector3d_rotate_by_quaternion, q, forth));
        ASSERT_TRUE(same(__cVector3d_rotate_backwards_by_quaternion, q, back));
        cMatrix3D expected;
        plain::from_quaternion(expected, q);
        ASSERT_TRUE(same_bits(expected, cMatrix3D(q), 9));
    }
}

TEST_F(Matrix3D, BasicRotationsTurnTheirWay) {
    for (const auto& rotation : rotations) {
        SCOPED_TRACE(rotation.name);
        cMatrix3D m;
        rotation.set(m, quillon::HALF_PI);
        cVector3D v = rotation.from;
        __cVector3d_rotate_by_matrix(v, m);
        EXPECT_TRUE(close_to(rotation.to, v, 3, 1e-7));
        __cVector3d_rotate_backwards_by_matrix(v, m);
        EXPECT_TRUE(close_to(rotation.from, v, 3, 1e-7));

        for (const double angle : {0.3, 2.0, -1.1}) {
            cMatrix3D about_axis = counting;
            rotation.set(m, angle);
            __cMatrix3d_construct_matrix(about_axis, angle, rotation.axis);
            EXPECT_TRUE(close_to(m, about_axis, 9, 0.0));
        }
    }
}

TEST_F(Matrix3D, TurnsAreProductsWithTheBasicRotation) {
    for (const auto& rotation : rotations) {
        SCOPED_TRACE(rotation.name);
        // A negative angle gets one turn, and only one.
        for (const double angle : {0.0, 1.25, 7.5, -0.7, -9.0}) {
            cMatrix3D basic;
            cMatrix3D turned = counting;
            rotation.set(basic, angle < 0.0 ? angle + quillon::PI * 2.0 : angle);
            rotation.turn(turned, angle);
            EXPECT_TRUE(close_to(counting * basic, turned, 9, 0.0)) << angle;
        }
    }
}

TEST_F(Matrix3D, EulerAnglesAreYawThenPitchThenRoll) {
    cMatrix3D yaw;
    cMatrix3D pitch;
    cMatrix3D roll;
    cMatrix3D m = counting;
    __nsMatrix3d_pitch(pitch, 0.3);
    __nsMatrix3d_yaw(yaw, -0.8);
    __nsMatrix3d_roll(roll, 1.9);
    __nsMatrix3d_euler(m, cVector3D(0.3, -0.8, 1.9));
    EXPECT_TRUE(same_bits(yaw * pitch * roll, m, 9));
    __nsMatrix3d_euler(m, quillon::VECTOR3D_ZERO);
    EXPECT_TRUE(close_to(quillon::MATRIX3D_IDENTITY, m, 9, 0.0));
}

TEST_F(Matrix3D, BasisKeepsForwardAndRightsUp) {
    cMatrix3D m;
    __cMatrix3d_from_forward_and_up(m, cVector3D(0, 0, 1), cVector3D(0, 1, 0));
    EXPECT_TRUE(close_to(quillon::MATRIX3D_IDENTITY, m, 9, 0.0));
    __cMatrix3d_from_forward_and_up(m, cVector3D(5, 0, 0), cVector3D(3, 2, 0));
    EXPECT_TRUE(close_to(cMatrix3D(0, 0, 1, 0, 1, 0, -1, 0, 0), m, 9, 1e-15));
    // Parallel ones leave two columns zero.
    __cMatrix3d_from_forward_and_up(m, cVector3D(0, 2, 0), cVector3D(0, 2, 0));
    EXPECT_TRUE(close_to(cMatrix3D(0, 0, 0, 0, 0, 1, 0, 0, 0), m, 9, 0.0));
}

TEST_F(Matrix3D, NormalizingScalesColumnsAndLeavesZeroOnes) {
    cMatrix3D m(3, 0, 1, 0, 0, 2, 4, 0, 2);
    __cMatrix3d_normalize(m);
    EXPECT_TRUE(same_bits(cMatrix3D(0.6, 0, 1 / 3.0, 0, 0, 2 / 3.0, 0.8, 0, 2 / 3.0), m, 9));
}

TEST_F(Matrix3D, ElementwiseOperationsAndDeterminant) {
    cMatrix3D m = counting;
    __cMatrix3d_add(m, m);
    __cMatrix3d_subtract(m, cMatrix3D(1, 1, 1, 1, 1, 1, 1, 1, 0));
    EXPECT_TRUE(same_bits(cMatrix3D(1, 3, 5, 7, 9, 11, 13, 15, 18), m, 9));
    EXPECT_EQ(-12.0, __cMatrix3d_get_determinant(m));
    // Summed from the left, the small product drowns in the great ones.
    EXPECT_EQ(0.0, __cMatrix3d_get_determinant(cMatrix3D(1e20, 0, 1, 1, 1, 1, 0, 1, 1)));
}

TEST_F(Matrix3D, RotateIsAChangeOfBasis) {
    cMatrix3D r;
    __cMatrix3d_construct_matrix(r, 0.5, cVector3D(1, 2, 3));
    for (const cMatrix3D& by : {r, quillon::MATRIX3D_IDENTITY}) {
        cMatrix3D m = counting;
        __cMatrix3d_rotate(m, by);
        EXPECT_TRUE(same_bits((by * counting) * by.transposed(), m, 9));
    }
    cMatrix3D m = r;
    __cMatrix3d_rotate(m, m);
    EXPECT_TRUE(same_bits((r * r) * r.transposed(), m, 9));
}

TEST_F(Matrix3D, TextFormIsReadRowByRowInFieldsOf15Characters) {
    cMatrix3D m = counting;
    __cMatrix3d_from_string(m, "-1#x#123456789012345678#8");
    EXPECT_TRUE(same_bits(cMatrix3D(-1, 0, 123456789012345, 4, 5, 6, 7, 8, 9), m, 9));
    __cMatrix3d_from_string(m, "9#8#7#6#5#4#3#2#1.5#0#");
    EXPECT_TRUE(same_bits(cMatrix3D(9, 8, 7, 6, 5, 4, 3, 2, 1.5), m, 9));
}

TEST_F(Matrix3D, FlatFormIsRowMajorAndBadIndicesGoNowhere) {
    cMatrix3D m = counting;
    m[1] = 0.1;
    std::uint8_t buffer[40] = {};
    EXPECT_EQ(36u, m.serialize(buffer + 1));
    EXPECT_EQ(0, buffer[37]);
    cMatrix3D back;
    EXPECT_EQ(36u, back.deserialize(buffer + 1));
    m[1] = 0.1F;
    for (const int index : {-1, 9, std::numeric_limits<int>::min()}) {
        back[index] = 5.0;
        EXPECT_EQ(0.0, back[index]);
        EXPECT_EQ(0.0, counting[index]);
    }
    EXPECT_TRUE(same_bits(m, back, 9));
}

TEST_F(Matrix3D, RandomOrientationsAreYawThenPitch) {
    cMatrix3D expected;
    std::srand(7);
    const double yaw = quillon::platform::runtime_rand() / 32767.0 * quillon::TWO_PI;
    const double pitch = (quillon::platform::runtime_rand() / 32767.0 - 0.5) * quillon::PI;
    expected.yaw(yaw);
    expected.pitch(pitch);
    cMatrix3D m = counting;
    std::srand(7);
    __nsMatrix3d_random(m);
    EXPECT_TRUE(same_bits(expected, m, 9));
    EXPECT_EQ(0.0, m.m[1][0]);
}
