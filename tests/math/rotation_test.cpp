// SPDX-License-Identifier: MIT
// Matrices and quaternions, which have to agree with each other.
#include "random_values.h"
#include "tests/reference/math.h"

using namespace quillon;

namespace {

class Rotation : public Rotations {
protected:
    // `multiply` has the bits of `plainly`, also for an object times itself.
    template <typename Object, typename Draw>
    void compare_products(void (*multiply)(Object&, const Object&),
                          void (*plainly)(Object&, const Object&), Draw draw, int components) {
        for (int i = 0; i < 20000; ++i) {
            Object product = draw();
            const Object b = i % 8 == 0 ? product : draw();
            Object expected = product;
            plainly(expected, b);
            multiply(product, i % 8 == 0 ? product : b);
            ASSERT_TRUE(same_bits(expected, product, components)) << i;
        }
    }

    cQuaternion random_unit() {
        const cQuaternion q = numbers.quaternion();
        const double norm = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
        return {q.x / norm, q.y / norm, q.z / norm, q.w / norm};
    }
};

constexpr cMatrix3D COUNTING(1, 2, 3, 4, 5, 6, 7, 8, 9);

cMatrix3D looking(const cVector3D& forward, const cVector3D& up) {
    cMatrix3D m;
    __cMatrix3d_from_forward_and_up(m, forward, up);
    return m;
}

cQuaternion negated(const cQuaternion& q) {
    return {-q.x, -q.y, -q.z, -q.w};
}

} // namespace

TEST_F(Rotation, ProductsEqualThePlainOnesBitForBit) {
    compare_products<cMatrix3D>(
        __cMatrix3d_multiply, plain::multiply, [&] { return numbers.matrix(); }, 9);
    compare_products<cQuaternion>(
        __cQuaternion_multiply, plain::multiply, [&] { return numbers.quaternion(); }, 4);
}

TEST_F(Rotation, VectorsTurnAsByThePlainMatrixBitForBit) {
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

TEST_F(Rotation, BasicOnesTurnTheirWayAndMultiply) {
    const cVector3D x(0.5, 0, 0);
    const cVector3D y(0, 3, 0);
    const cVector3D z(0, 0, 7);

    const struct {
        void (*set)(cMatrix3D&, double);
        void (*turn)(cMatrix3D&, double);
        void (*turn_quaternion)(cQuaternion&, const double&);
        cVector3D axis, from, to; // a quarter turn carries `from` to `to`
    } cases[] = {
        {__nsMatrix3d_yaw, __cMatrix3d_yaw, __cQuaternion_yaw, y, z, x * -14.0},
        {__nsMatrix3d_pitch, __cMatrix3d_pitch, __cQuaternion_pitch, x, y, z * (3 / 7.0)},
        {__nsMatrix3d_roll, __cMatrix3d_roll, __cQuaternion_roll, z, x, y * (0.5 / 3)},
    };

    numbers.awkward = false;
    for (const auto& row : cases) {
        SCOPED_TRACE(&row - cases);
        cMatrix3D basic;
        cVector3D v = row.from;
        row.set(basic, HALF_PI);
        __cVector3d_rotate_by_matrix(v, basic);
        EXPECT_TRUE(close_to(row.to, v, 3, 1e-6));

        // A negative angle gets one turn, and only one.
        for (const double angle : {0.0, 1.25, 7.5, -0.7, -8.0}) {
            SCOPED_TRACE(angle);
            cMatrix3D about_axis = COUNTING;
            row.set(basic, angle);
            __cMatrix3d_construct_matrix(about_axis, angle, row.axis);
            EXPECT_TRUE(close_to(basic, about_axis, 9, 0.0));

            cMatrix3D turned = COUNTING;
            row.set(basic, angle < 0.0 ? angle + PI * 2.0 : angle);
            row.turn(turned, angle);
            EXPECT_TRUE(close_to(COUNTING * basic, turned, 9, 0.0));

            cQuaternion q = random_unit();
            cMatrix3D m(q);
            row.turn_quaternion(q, angle);
            EXPECT_TRUE(close_to(m * basic, cMatrix3D(q), 9, 2e-4));
        }
    }
}

TEST_F(Rotation, EulerAnglesAreTakenInTheirOrder) {
    cMatrix3D yaw;
    cMatrix3D pitch;
    cMatrix3D roll;
    cMatrix3D m = COUNTING;
    cQuaternion q;
    __nsMatrix3d_pitch(pitch, 0.3);
    __nsMatrix3d_yaw(yaw, -0.8);
    __nsMatrix3d_roll(roll, 1.9);
    __nsMatrix3d_euler(m, cVector3D(0.3, -0.8, 1.9));
    __cQuaternion_from_euler(q, cVector3D(0.3, -0.8, 1.9));
    EXPECT_TRUE(same_bits(yaw * pitch * roll, m, 9));
    EXPECT_TRUE(close_to(pitch * yaw * roll, cMatrix3D(q), 9, 3e-4));
    __cQuaternion_from_euler_components(q, 0.0, 0.0, 0.0);
    EXPECT_TRUE(close_to(QUATERNION_IDENTITY, q, 4, 0.0));
}

TEST_F(Rotation, MatricesHaveTheirWorkedValues) {
    cMatrix3D normalized(3, 0, 1, 0, 0, 2, 4, 0, 2);
    __cMatrix3d_normalize(normalized);
    cMatrix3D combined = COUNTING;
    __cMatrix3d_add(combined, combined);
    __cMatrix3d_subtract(combined, cMatrix3D(1, 1, 1, 1, 1, 1, 1, 1, 0));

    const auto same = [](const cMatrix3D& expected, const cMatrix3D& actual) {
        return close_to(expected, actual, 9, 0.0);
    };
    EXPECT_TRUE(same({0.6, 0, 1 / 3.0, 0, 0, 2 / 3.0, 0.8, 0, 2 / 3.0}, normalized))
        << "normalised";
    EXPECT_TRUE(same({0, 0, 0, 0, 0, 0, 0, 0, 0}, MATRIX3D_ZERO)) << "zero";
    EXPECT_TRUE(same({1, 4, 7, 2, 5, 8, 3, 6, 9}, COUNTING.transposed())) << "transposed";
    EXPECT_TRUE(same({1, 3, 5, 7, 9, 11, 13, 15, 18}, combined)) << "sum and difference";
    EXPECT_TRUE(same(MATRIX3D_IDENTITY, looking({0, 0, 1}, {0, 1, 0}))) << "forward and up";
    EXPECT_TRUE(same({0, 0, 1, 0, 1, 0, -1, 0, 0}, looking({5, 0, 0}, {3, 2, 0})))
        << "up at a slant";
    EXPECT_TRUE(same({0, 0, 0, 0, 0, 1, 0, 0, 0}, looking({0, 2, 0}, {0, 2, 0})))
        << "up along forward";
}

TEST_F(Rotation, OfAMatrixByItselfIsAChangeOfBasis) {
    cMatrix3D r;
    __cMatrix3d_construct_matrix(r, 0.5, cVector3D(1, 2, 3));
    cMatrix3D m = r;
    __cMatrix3d_rotate(m, m);
    EXPECT_TRUE(same_bits((r * r) * r.transposed(), m, 9));
}

TEST_F(Rotation, MatrixAndBackKeepsTheQuaternion) {
    numbers.awkward = false;
    for (int i = 0; i < 2000; ++i) {
        const cQuaternion q = random_unit();
        cQuaternion back;
        __cQuaternion_from_matrix(back, cMatrix3D(q));
        ASSERT_TRUE(close_to(q, back, 4, 1e-14) || close_to(negated(q), back, 4, 1e-14)) << i;
    }
}

TEST_F(Rotation, MainComponentIsChosenByStrictTests) {
    // No rotations, so that each element shows where it goes; ties fall through to the next test.
    const struct {
        const char* name;
        cMatrix3D m;
        cQuaternion expected;
    } cases[] = {
        {"w", {1, 2, 4, 0, 1, 8, 0, 0, 1}, {2, -1, 0.5, 1}},
        {"x", {1, 2, 4, 0, -1, 8, 0, 0, -1}, {1, 0.5, 1, 2}},
        {"y", {-1, 2, 4, 0, 1, 8, 0, 0, -1}, {0.5, 1, 2, -1}},
        {"z", {-1, 2, 4, 0, -2, 8, 0, 0, 0}, {1, 2, 1, 0.5}},
        {"nothing above nothing", {0, 0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0.5, 0}},
    };

    for (const auto& row : cases) {
        cQuaternion q;
        __cQuaternion_from_matrix(q, row.m);
        EXPECT_TRUE(close_to(row.expected, q, 4, 1e-15)) << row.name;
    }
}

TEST_F(Rotation, QuaternionsHaveTheirWorkedValues) {
    const cQuaternion about_axis(0, std::sin(0.5) * 2, -std::sin(0.5), std::cos(0.5));
    EXPECT_TRUE(same_bits(about_axis, cQuaternion(cVector3D(0, 2, -1), 1.0), 4));
    cQuaternion q(1, 2, 3, 4);
    __cQuaternion_add(q, cQuaternion(10, 30, 50, 70));
    EXPECT_TRUE(same_bits(cQuaternion(11, 32, 53, 74), q, 4));
    __cQuaternion_subtract(q, cQuaternion(1, 3, 5, 7));
    EXPECT_TRUE(same_bits(cQuaternion(10, 29, 48, 67), q, 4));
}

TEST_F(Rotation, SlerpIntoEitherEndEqualsThePlainOneBitForBit) {
    for (int i = 0; i < 400000; ++i) {
        numbers.awkward = i % 16 == 0;
        const cQuaternion a = random_unit();
        cQuaternion b = random_unit();
        if (i % 2 == 0) {
            // Arcs down to those whose result is the mean, also to the negated quaternion.
            const double part = std::ldexp(1.0, -i % 14);
            b.set(a.x + part * b.x, a.y + part * b.y, a.z + part * b.z, a.w);
            b = i % 4 == 0 ? negated(b) : b;
        }
        const double t = i % 3 == 0 ? numbers.next() : std::abs(numbers.next()) / 2.0;
        cQuaternion expected;
        plain::slerp(expected, a, b, t);
        cQuaternion from = a;
        cQuaternion to = b;
        __cQuaternion_slerp(from, from, b, t);
        __cQuaternion_slerp(to, a, to, t);
        ASSERT_TRUE(same_bits(expected, from, 4) && same_bits(expected, to, 4)) << i;
    }
}
