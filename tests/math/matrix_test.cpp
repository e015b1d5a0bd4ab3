#include "quillon/math/matrix.h"

#include "bench/math/plain.h"
#include "random_values.h"

using namespace quillon;

namespace {

class Matrix3D : public Rotations {};

constexpr cMatrix3D counting(1, 2, 3, 4, 5, 6, 7, 8, 9);

cMatrix3D looking(const cVector3D& forward, const cVector3D& up) {
    cMatrix3D m;
    __cMatrix3d_from_forward_and_up(m, forward, up);
    return m;
}

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

TEST_F(Matrix3D, BasicRotationsTurnTheirWayAndMultiply) {
    const struct {
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

    for (const auto& rotation : rotations) {
        SCOPED_TRACE(rotation.name);
        cMatrix3D basic;
        rotation.set(basic, HALF_PI);
        cVector3D v = rotation.from;
        __cVector3d_rotate_by_matrix(v, basic);
        EXPECT_TRUE(close_to(rotation.to, v, 3, 1e-7));

        // A negative angle gets one turn, and only one.
        for (const double angle : {0.0, 1.25, 7.5, -0.7, -8.0}) {
            cMatrix3D about_axis = counting;
            rotation.set(basic, angle);
            __cMatrix3d_construct_matrix(about_axis, angle, rotation.axis);
            EXPECT_TRUE(close_to(basic, about_axis, 9, 0.0)) << angle;

            cMatrix3D turned = counting;
            rotation.set(basic, angle < 0.0 ? angle + PI * 2.0 : angle);
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
}

TEST_F(Matrix3D, KnownResults) {
    cMatrix3D normalized(3, 0, 1, 0, 0, 2, 4, 0, 2);
    __cMatrix3d_normalize(normalized);
    cMatrix3D combined = counting;
    __cMatrix3d_add(combined, combined);
    __cMatrix3d_subtract(combined, cMatrix3D(1, 1, 1, 1, 1, 1, 1, 1, 0));

    const struct {
        const char* name;
        cMatrix3D actual, expected;
    } cases[] = {
        {"columns but those of zeros have the length 1",
         normalized,
         {0.6, 0, 1 / 3.0, 0, 0, 2 / 3.0, 0.8, 0, 2 / 3.0}},
        {"sum and difference", combined, {1, 3, 5, 7, 9, 11, 13, 15, 18}},
        {"forward and up", looking({0, 0, 1}, {0, 1, 0}), MATRIX3D_IDENTITY},
        {"up at a slant", looking({5, 0, 0}, {3, 2, 0}), {0, 0, 1, 0, 1, 0, -1, 0, 0}},
        {"parallel ones leave two columns zero",
         looking({0, 2, 0}, {0, 2, 0}),
         {0, 0, 0, 0, 0, 1, 0, 0, 0}},
    };

    for (const auto& row : cases)
        EXPECT_TRUE(close_to(row.expected, row.actual, 9, 0.0)) << row.name;
    EXPECT_EQ(-12.0, __cMatrix3d_get_determinant(combined));
    // Summed from the left, the small product drowns in the great ones.
    EXPECT_EQ(0.0, __cMatrix3d_get_determinant(cMatrix3D(1e20, 0, 1, 1, 1, 1, 0, 1, 1)));
}

TEST_F(Matrix3D, RotateIsAChangeOfBasis) {
    cMatrix3D r;
    __cMatrix3d_construct_matrix(r, 0.5, cVector3D(1, 2, 3));
    cMatrix3D m = counting;
    __cMatrix3d_rotate(m, r);
    EXPECT_TRUE(same_bits((r * counting) * r.transposed(), m, 9));
    m = r;
    __cMatrix3d_rotate(m, m);
    EXPECT_TRUE(same_bits((r * r) * r.transposed(), m, 9));
}
