// SPDX-License-Identifier: MIT
#include "quillon/math/quaternion.h"

#include "quillon/math/matrix.h"
#include "quillon/math/text_fields.h"
#include "quillon/math/trig_tables.h"
#include "quillon/math/trigonometry.h"
#include "quillon/platform/random.h"
#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <cmath>
#include <limits>

using namespace quillon;
using simd::load;
using simd::Quad;
using simd::store;

namespace quillon {
namespace {

// One case of Shepperd's method: the places of the components, the main one first, and the signs of
// the matrix elements that they are computed from.
struct ShepperdCase {
    int main;
    int k1, k2, k3;
    double s0, s1, s2;
};

enum Component { X, Y, Z, W };

constexpr ShepperdCase FROM_W{W, Z, Y, X, 1.0, 1.0, 1.0};
constexpr ShepperdCase FROM_X{X, Y, Z, W, 1.0, -1.0, -1.0};
constexpr ShepperdCase FROM_Y{Y, X, W, Z, -1.0, 1.0, -1.0};
constexpr ShepperdCase FROM_Z{Z, W, X, Y, -1.0, -1.0, 1.0};

// The case whose main component is far enough from 0 to divide by.
//
// S. W. Shepperd, Quaternion from Rotation Matrix, Journal of Guidance and Control 1 (1978).
const ShepperdCase& shepperd_case(const cMatrix3D& matrix) {
    const auto& m = matrix.m;
    if (m[0][0] + m[1][1] + m[2][2] > 0.0)
        return FROM_W;
    if (m[1][1] < m[0][0] && m[2][2] < m[0][0])
        return FROM_X;
    return m[2][2] < m[1][1] ? FROM_Y : FROM_Z;
}

// Turns `q` about `axis`, which turns with it.
void turn(cQuaternion& q, cVector3D axis, double angle) {
    axis *= q;
    q *= cQuaternion(axis, angle);
}

// fa * a + fb * b, component by component.
void blend(cQuaternion& q, double fa, const cQuaternion& a, double fb, const cQuaternion& b) {
    q.set(fa * a.x + fb * b.x, fa * a.y + fb * b.y, fa * a.z + fb * b.z, fa * a.w + fb * b.w);
}

// The arc whose cosine is `d`, 0 to 1, and table sines of its parts.
//
// A table sine needs the arc only to the nearest step. A polynomial approximates the arc with an
// error of at most 2e-8, which is 2.3e-4 of a step (Abramowitz and Stegun, Handbook of Mathematical
// Functions, 4.4.46). The runtime's acos is called only within 2e-3 of the border of two entries.
class Arc {
public:
    explicit Arc(double d) : cosine(d), estimate(std::sqrt(1.0 - d) * polynomial(d)) {}

    // sinTR of a part of the arc.
    double sine(double part) const {
        const double position = trig::to_degrees(part * estimate) * 200.0 + 0.5;
        if (part >= 0.0 && part <= 1.0) {
            const auto entry = static_cast<std::int32_t>(position);
            if (std::abs(position - entry - 0.5) < 0.498)
                return trig::sinTable[entry];
        }
        return sinTR(part * std::acos(cosine));
    }

private:
    // Of degree 7, in pairs of terms that do not depend on each other.
    static double polynomial(double x) {
        const double x2 = x * x;
        const double low = 1.5707963050 - 0.2145988016 * x + (0.0889789874 - 0.0501743046 * x) * x2;
        const double high =
            0.0308918810 - 0.0170881256 * x + (0.0066700901 - 0.0012624911 * x) * x2;
        return low + high * (x2 * x2);
    }

    double cosine;
    double estimate;
};

double random_angle() {
    return platform::runtime_rand() / 32767.0 * PI * 2.0;
}

} // namespace
} // namespace quillon

void __cQuaternion_from_axis_angle(cQuaternion& q, const cVector3D& axis, const double& angle) {
    const double half = angle / 2.0;
    const double s = std::sin(half);
    q.set(s * axis.x, s * axis.y, s * axis.z, std::cos(half));
}

void __cQuaternion_from_euler(cQuaternion& q, const cVector3D& e) {
    __cQuaternion_from_euler_components(q, e.x, e.y, e.z);
}

void __cQuaternion_from_euler_components(cQuaternion& q, const double& pitch, const double& yaw,
                                         const double& roll) {
    const cQuaternion qr(0.0, 0.0, std::sin(-roll / 2.0), std::cos(-roll / 2.0));
    const cQuaternion qp(std::sin(-pitch / 2.0), 0.0, 0.0, std::cos(-pitch / 2.0));
    const cQuaternion qy(0.0, std::sin(yaw / 2.0), 0.0, std::cos(yaw / 2.0));
    q = qr * qy * qp;
}

void __cQuaternion_from_matrix(cQuaternion& q, const cMatrix3D& matrix) {
    const auto& m = matrix.m;
    const auto& [main, k1, k2, k3, s0, s1, s2] = shepperd_case(matrix);
    const double f = s0 * m[0][0] + s1 * m[1][1] + s2 * m[2][2] + 1.0;
    const double r = std::sqrt(1.0 / f) * 0.5;
    q[main] = r * f;
    q[k1] = (m[0][1] - s2 * m[1][0]) * r;
    q[k2] = (m[2][0] - s1 * m[0][2]) * r;
    q[k3] = (m[1][2] - s0 * m[2][1]) * r;
}

void __cQuaternion_yaw(cQuaternion& q, const double& angle) {
    turn(q, VECTOR3D_UNIT_Y, angle);
}

void __cQuaternion_pitch(cQuaternion& q, const double& angle) {
    turn(q, VECTOR3D_UNIT_X, -angle);
}

void __cQuaternion_roll(cQuaternion& q, const double& angle) {
    turn(q, VECTOR3D_UNIT_Z, -angle);
}

void __cQuaternion_add(cQuaternion& q, const cQuaternion& b) {
    q.set(q.x + b.x, q.y + b.y, q.z + b.z, q.w + b.w);
}

void __cQuaternion_subtract(cQuaternion& q, const cQuaternion& b) {
    q.set(q.x - b.x, q.y - b.y, q.z - b.z, q.w - b.w);
}

// All four components at once, a term of each in turn. A term is negated by its sign bit, which is
// exact.
QUILLON_CPU_CLONES void __cQuaternion_multiply(cQuaternion& q, const cQuaternion& b) {
    using Bits = std::int64_t __attribute__((vector_size(sizeof(Quad))));
    constexpr auto minus = std::numeric_limits<std::int64_t>::min();
    const Quad xyzw = load<Quad>(&b.x);
    const auto wzyx = reinterpret_cast<Bits>(__builtin_shufflevector(xyzw, xyzw, 3, 2, 1, 0));
    const auto zwxy = reinterpret_cast<Bits>(__builtin_shufflevector(xyzw, xyzw, 2, 3, 0, 1));
    const auto yxwz = reinterpret_cast<Bits>(__builtin_shufflevector(xyzw, xyzw, 1, 0, 3, 2));
    const Quad product = q.x * reinterpret_cast<Quad>(wzyx ^ Bits{0, minus, 0, minus}) +
                         q.y * reinterpret_cast<Quad>(zwxy ^ Bits{0, 0, minus, minus}) +
                         q.z * reinterpret_cast<Quad>(yxwz ^ Bits{minus, 0, 0, minus}) + q.w * xyzw;
    store(&q.x, product);
}

void __cQuaternion_from_string(cQuaternion& q, const char* text) {
    read_component_fields<16>(q, 4, text);
}

// K. Shoemake, Animating Rotation with Quaternion Curves, SIGGRAPH 1985.
void __cQuaternion_slerp(cQuaternion& q, const cQuaternion& a, const cQuaternion& b, double t) {
    const double product = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
    const double side = product < 0.0 ? -1.0 : 1.0;
    const double d = product * side;
    // Negated, so that a NaN ends here too.
    if (!(d < 1.0)) {
        q = a;
        return;
    }
    const double s = std::sqrt(1.0 - d * d);
    if (s < 0.001) {
        blend(q, 0.5, a, 0.5 * side, b);
        return;
    }
    const Arc arc(d);
    blend(q, arc.sine(1.0 - t) / s, a, arc.sine(t) / s * side, b);
}

void __nsQuaternion_random(cQuaternion& q) {
    const double roll = random_angle();
    const double yaw = random_angle();
    const double pitch = random_angle();
    __cQuaternion_from_euler_components(q, pitch, yaw, roll);
}
