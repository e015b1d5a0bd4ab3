#include "quillon/math/quaternion.h"

#include "bench/math/plain.h"
#include "random_values.h"

using namespace quillon;

namespace {

class Quaternion : public Rotations {
protected:
    cQuaternion random_unit() {
        const cQuaternion q = numbers.quaternion();
        const double norm = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
        return {q.x / norm, q.y / norm, q.z / norm, q.w / norm};
    }
};

cQuaternion negated(const cQuaternion& q) {
    return {-q.x, -q.y, -q.z, -q.w};
}

cQuaternion slerp(const cQuaternion& a, const cQuaternion& b, double t) {
    cQuaternion q(9, 9, 9, 9);
    __cQuaternion_slerp(q, a, b, t);
    return q;
}

} // namespace

TEST_F(Quaternion, ProductEqualsThePlainOneBitForBit) {
    compare_products<cQuaternion>(
        __cQuaternion_multiply, plain::multiply, [&] { return numbers.quaternion(); }, 4);
}

TEST_F(Quaternion, MatrixAndBackKeepsTheRotation) {
    numbers.awkward = false;
    const cQuaternion mains[] = {{1, 0, 0, 0},     {0, 1, 0, 0},     {0, 0, 1, 0},    {0, 0, 0, 1},
                                 {0.8, 0, 0.6, 0}, {0.6, 0.8, 0, 0}, {0, 0.6, 0.8, 0}};
    for (int i = 0; i < 2000; ++i) {
        const cQuaternion q = i < 7 ? mains[i] : random_unit();
        cQuaternion back;
        __cQuaternion_from_matrix(back, cMatrix3D(q));
        ASSERT_TRUE(close_to(q, back, 4, 1e-14) || close_to(negated(q), back, 4, 1e-14)) << i;
    }
}

TEST_F(Quaternion, MainComponentIsChosenByStrictTests) {
    // No rotations, so that each element shows where it goes; ties fall through to the next test.
    const struct {
        const char* name;
        cMatrix3D m;
        cQuaternion expected;
    } cases[] = {
        {"w", {1, 2, 4, 0, 1, 8, 0, 0, 1}, {2, -1, 0.5, 1}},
        {"x", {1, 2, 4, 0, -1, 8, 0, 0, -1}, {1, 0.5, 1, 2}},
        {"y", {-1, 2, 4, 0, 1, 8, 0, 0, -1}, {0.5, 1, 2, -1}},
        {"z", {-1, 2, 4, 0, -1, 8, 0, 0, 1}, {1, 2, 1, 0.5}},
        {"nothing above nothing", {0, 0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0.5, 0}},
    };

    for (const auto& row : cases) {
        cQuaternion q;
        __cQuaternion_from_matrix(q, row.m);
        EXPECT_TRUE(close_to(row.expected, q, 4, 1e-15)) << row.name;
    }
}

TEST_F(Quaternion, EulerAnglesArePitchThenYawThenRoll) {
    cMatrix3D m;
    __cMatrix3d_pitch(m, 0.7);
    __cMatrix3d_yaw(m, 2.1);
    __cMatrix3d_roll(m, 0.4);
    cQuaternion q;
    __cQuaternion_from_euler(q, cVector3D(0.7, 2.1, 0.4));
    EXPECT_TRUE(close_to(m, cMatrix3D(q), 9, 3e-4));
    __cQuaternion_from_euler_components(q, 0.0, 0.0, 0.0);
    EXPECT_TRUE(close_to(QUATERNION_IDENTITY, q, 4, 0.0));
}

TEST_F(Quaternion, TurnsAgreeWithThoseOfTheMatrix) {
    numbers.awkward = false;

    const struct {
        const char* name;
        void (*turn)(cQuaternion&, const double&);
        void (*turn_matrix)(cMatrix3D&, double);
    } cases[] = {
        {"yaw", __cQuaternion_yaw, __cMatrix3d_yaw},
        {"pitch", __cQuaternion_pitch, __cMatrix3d_pitch},
        {"roll", __cQuaternion_roll, __cMatrix3d_roll},
    };

    for (const auto& row : cases)
        for (const double angle : {0.0, 0.6, 3.0, -1.4}) {
            cQuaternion q = random_unit();
            cMatrix3D m(q);
            row.turn(q, angle);
            row.turn_matrix(m, angle);
            EXPECT_TRUE(close_to(m, cMatrix3D(q), 9, 2e-4)) << row.name << ' ' << angle;
        }
}

TEST_F(Quaternion, AxisAngleTakesTheAxisAsItIs) {
    const cQuaternion expected(0, std::sin(0.5) * 2, -std::sin(0.5), std::cos(0.5));
    EXPECT_TRUE(close_to(expected, cQuaternion(cVector3D(0, 2, -1), 1.0), 4, 0.0));
}

TEST_F(Quaternion, SlerpEqualsThePlainOneBitForBit) {
    for (int i = 0; i < 400000; ++i) {
        numbers.awkward = i % 16 == 0;
        const cQuaternion a = random_unit();
        cQuaternion b = random_unit();
        if (i % 2 == 0) {
            // Arcs down to those that give the mean.
            const double part = std::ldexp(1.0, -i % 14);
            b.set(a.x + part * b.x, a.y + part * b.y, a.z + part * b.z, a.w);
        }
        const double t = i % 3 == 0 ? numbers.next() : std::abs(numbers.next()) / 2.0;
        cQuaternion expected;
        plain::slerp(expected, a, b, t);
        ASSERT_TRUE(same_bits(expected, slerp(a, b, t), 4)) << i;
    }
}

TEST_F(Quaternion, SlerpAtItsEdges) {
    const cQuaternion a(0.6, 0, 0, 0.8);
    const cQuaternion b(0, 0.6, 0, 0.8);
    const cQuaternion turned(cVector3D(1, 0, 0), 1.2);
    const cQuaternion part(cVector3D(1, 0, 0), 0.3);
    const cQuaternion near_a(std::sin(0.0009), 0, 0, std::cos(0.0009));
    const cQuaternion mean(near_a.x * 0.5, 0, 0, 0.5 + 0.5 * near_a.w);

    EXPECT_TRUE(close_to(part, slerp(QUATERNION_IDENTITY, turned, 0.25), 4, 2e-4));
    EXPECT_TRUE(close_to(part, slerp(QUATERNION_IDENTITY, negated(turned), 0.25), 4, 2e-4));
    EXPECT_TRUE(same_bits(a, slerp(a, a, 0.5), 4));
    EXPECT_TRUE(same_bits(a, slerp(a, cQuaternion(NAN, 0, 0, 1), 0.5), 4));
    EXPECT_TRUE(close_to(mean, slerp(QUATERNION_IDENTITY, near_a, 1.0), 4, 1e-18));
    const cQuaternion expected = slerp(a, b, 0.3);
    cQuaternion aliased = a;
    __cQuaternion_slerp(aliased, aliased, b, 0.3);
    EXPECT_TRUE(same_bits(expected, aliased, 4));
    aliased = b;
    __cQuaternion_slerp(aliased, a, aliased, 0.3);
    EXPECT_TRUE(same_bits(expected, aliased, 4));
}
