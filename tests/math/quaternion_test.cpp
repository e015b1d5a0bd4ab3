#include "quillon/math/quaternion.h"

#include "bench/math/plain.h"
#include "quillon/platform/random.h"
#include "random_values.h"

#include <cstdlib>

using quillon::close_to;
using quillon::cMatrix3D;
using quillon::cQuaternion;
using quillon::cVector3D;
using quillon::QUATERNION_IDENTITY;
using quillon::same_bits;

namespace {

class Quaternion : public quillon::Rotations {
protected:
    cQuaternion random_unit() {
        const cQuaternion q = numbers.quaternion();
        const double norm = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
        return {q.x / norm, q.y / norm, q.z / norm, q.w / norm};
    }
};

double dot(const cQuaternion& a, const cQuaternion& b) {
    return a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
}

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
        ASSERT_TRUE(close_to(dot(q, back) < 0.0 ? negated(q) : q, back, 4, 1e-14)) << i;
    }
    cQuaternion q(9, 9, 9, 9);
    __cQuaternion_from_matrix(q, quillon::MATRIX3D_IDENTITY);
    EXPECT_TRUE(close_to(QUATERNION_IDENTITY, q, 4, 0.0));
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
    cMatrix3D pitch;
    cMatrix3D yaw;
    cMatrix3D roll;
    __nsMatrix3d_pitch(pitch, 0.7);
    __nsMatrix3d_yaw(yaw, 2.1);
    __nsMatrix3d_roll(roll, 0.4);
    cQuaternion q;
    __cQuaternion_from_euler(q, cVector3D(0.7, 2.1, 0.4));
    EXPECT_TRUE(close_to(pitch * yaw * roll, cMatrix3D(q), 9, 3e-4));
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
    const cQuaternion q(cVector3D(0, 2, -1), 1.0);
    const cQuaternion expected(0, std::sin(0.5) * 2, -std::sin(0.5), std::cos(0.5));
    EXPECT_TRUE(close_to(expected, q, 4, 0.0));
    cVector3D v(1, 2, 3);
    cVector3D turned = v;
    __cVector3d_rotate_by_quaternion(turned, q);
    EXPECT_TRUE(same_bits(turned, v *= q, 3));
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

TEST_F(Quaternion, SlerpFollowsTheShorterArc) {
    numbers.awkward = false;
    for (int i = 0; i < 2000; ++i) {
        const cQuaternion a = random_unit();
        cQuaternion b = random_unit();
        const double t = i / 2000.0;
        const double theta = std::acos(std::abs(dot(a, b)));
        const double fa = std::sin((1.0 - t) * theta) / std::sin(theta);
        const double fb = std::copysign(std::sin(t * theta) / std::sin(theta), dot(a, b));
        const cQuaternion expected(fa * a.x + fb * b.x, fa * a.y + fb * b.y, fa * a.z + fb * b.z,
                                   fa * a.w + fb * b.w);
        // Two weights, each half a table step off.
        ASSERT_TRUE(close_to(expected, slerp(a, b, t), 4, 9e-5 / std::sin(theta))) << i;
    }
}

TEST_F(Quaternion, SlerpAtItsEdges) {
    const cQuaternion a(0.6, 0, 0, 0.8);
    const cQuaternion b(0, 0.6, 0, 0.8);
    const cQuaternion near_a(std::sin(0.0009), 0, 0, std::cos(0.0009));
    const cQuaternion mean(near_a.x * 0.5, 0, 0, 0.5 + 0.5 * near_a.w);
    const cQuaternion not_a_number(std::numeric_limits<double>::quiet_NaN(), 0, 0, 1);

    EXPECT_TRUE(same_bits(a, slerp(a, a, 0.5), 4));
    EXPECT_TRUE(same_bits(a, slerp(a, negated(a), 0.5), 4));
    EXPECT_TRUE(same_bits(a, slerp(a, not_a_number, 0.5), 4));
    EXPECT_TRUE(close_to(mean, slerp(QUATERNION_IDENTITY, near_a, 0.0), 4, 1e-18));
    EXPECT_TRUE(close_to(mean, slerp(QUATERNION_IDENTITY, near_a, 1.0), 4, 1e-18));
    const cQuaternion expected = slerp(a, b, 0.3);
    cQuaternion aliased = a;
    __cQuaternion_slerp(aliased, aliased, b, 0.3);
    EXPECT_TRUE(same_bits(expected, aliased, 4));
    aliased = b;
    __cQuaternion_slerp(aliased, a, aliased, 0.3);
    EXPECT_TRUE(same_bits(expected, aliased, 4));
}

TEST_F(Quaternion, TextFormIsReadInFieldsOf15Characters) {
    cQuaternion q(-1, -2, -3, -4);
    __cQuaternion_from_string(q, "x#123456789012345678#7");
    EXPECT_TRUE(same_bits(cQuaternion(0, 123456789012345, -3, -4), q, 4));
    __cQuaternion_from_string(q, "0#0#0#1#5#");
    EXPECT_TRUE(same_bits(QUATERNION_IDENTITY, q, 4));
}

TEST_F(Quaternion, FlatFormAndBadIndices) {
    const cQuaternion q(0.1, 2, 3, -4);
    std::uint8_t buffer[20] = {};
    EXPECT_EQ(16u, q.serialize(buffer + 3));
    cQuaternion back;
    EXPECT_EQ(16u, back.deserialize(buffer + 3));
    EXPECT_EQ(0, buffer[19]);
    back[4] = 7;
    back[-1] = 7;
    EXPECT_TRUE(same_bits(cQuaternion(0.1F, 2, 3, -4), back, 4));
    EXPECT_EQ(0.0, back[4]);
    EXPECT_EQ(0.0, q[-1]);
}

TEST_F(Quaternion, RandomDrawsRollThenYawThenPitch) {
    const auto angle = [] {
        return quillon::platform::runtime_rand() / 32767.0 * quillon::PI * 2.0;
    };
    std::srand(11);
    const double roll = angle();
    const double yaw = angle();
    const double pitch = angle();
    cQuaternion expected;
    __cQuaternion_from_euler_components(expected, pitch, yaw, roll);
    cQuaternion q;
    std::srand(11);
    __nsQuaternion_random(q);
    EXPECT_TRUE(same_bits(expected, q, 4));
}
