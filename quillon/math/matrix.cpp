// SPDX-License-Identifier: MIT
#include "quillon/math/matrix.h"

#include "quillon/math/text_fields.h"
#include "quillon/math/trig_tables.h"
#include "quillon/platform/random.h"
#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <cmath>

using namespace quillon;
using simd::load;
using simd::Pair;
using simd::Quad;
using simd::store;
using trig::direction_at;

namespace quillon {
namespace {

// `m` times a basic rotation, which mixes its columns `p` and `q`; the other elements of the
// rotation are 0 and 1.
void turn_columns(cMatrix3D& m, int p, int q, double angle) {
    if (angle < 0.0)
        angle += PI * 2.0;
    const auto [c, s] = direction_at(angle);
    for (auto& row : m.m) {
        const double old_p = row[p];
        const double old_q = row[q];
        row[p] = c * old_p + s * old_q;
        row[q] = -s * old_p + c * old_q;
    }
}

} // namespace
} // namespace quillon

// Rodrigues' rotation formula in its matrix form, with the yaw of this library: s * y has the other
// sign than in the textbooks.
void __cMatrix3d_construct_matrix(cMatrix3D& m, double angle, const cVector3D& axis) {
    const auto [c, s] = direction_at(angle);
    const double t = 1.0 - c;
    const cVector3D unit = axis.normalized();
    const double x = unit.x;
    const double y = unit.y;
    const double z = unit.z;
    m = {t * x * x + c,     t * x * y - s * z, t * z * x - s * y, t * x * y + s * z, t * y * y + c,
         t * y * z - s * x, t * z * x + s * y, t * y * z + s * x, t * z * z + c};
}

void __cMatrix3d_from_eigenvectors(cMatrix3D& m, const cVector3D& e0, const cVector3D& e1,
                                   const cVector3D& e2) {
    m = {e0.x, e1.x, e2.x, e0.y, e1.y, e2.y, e0.z, e1.z, e2.z};
}

// A Gram-Schmidt step takes the part along forward out of up.
void __cMatrix3d_from_forward_and_up(cMatrix3D& m, const cVector3D& forward, const cVector3D& up) {
    const cVector3D front = forward.normalized();
    cVector3D top = up.normalized();
    top -= front * top.dot(front);
    top.normalize();
    __cMatrix3d_from_eigenvectors(m, top.cross(front), top, front);
}

void __cMatrix3d_normalize(cMatrix3D& m) {
    for (int column = 0; column < 3; ++column) {
        double& x = m.m[0][column];
        double& y = m.m[1][column];
        double& z = m.m[2][column];
        const double length = std::sqrt(x * x + y * y + z * z);
        if (length == 0.0)
            continue;
        x /= length;
        y /= length;
        z /= length;
    }
}

void __cMatrix3d_add(cMatrix3D& m, const cMatrix3D& b) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m.m[row][column] += b.m[row][column];
}

void __cMatrix3d_subtract(cMatrix3D& m, const cMatrix3D& b) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            m.m[row][column] -= b.m[row][column];
}

// A row at once.
// The fourth lane of a row is overwritten by the next row.
// `b` may be `m`, so nothing is stored before all rows are computed.
QUILLON_CPU_CLONES void __cMatrix3d_multiply(cMatrix3D& m, const cMatrix3D& b) {
    double* const elements = &m.m[0][0];
    const double* const others = &b.m[0][0];
    const Quad b0 = load<Quad>(others);
    const Quad b1 = load<Quad>(others + 3);
    // Its last element is the matrix's last, so it is read one earlier and shifted.
    const Quad last = load<Quad>(others + 5);
    const Quad b2 = __builtin_shufflevector(last, last, 1, 2, 3, 3);
    Quad rows[3];
    for (int row = 0; row < 3; ++row) {
        const double* const a = elements + 3 * row;
        rows[row] = a[0] * b0 + a[1] * b1 + a[2] * b2;
    }
    store(elements, rows[0]);
    store(elements + 3, rows[1]);
    store(elements + 6, Pair{rows[2][0], rows[2][1]});
    elements[8] = rows[2][2];
}

double __cMatrix3d_get_determinant(const cMatrix3D& m) {
    const auto& [a, b, c] = m.m[0];
    const auto& [d, e, f] = m.m[1];
    const auto& [g, h, i] = m.m[2];
    return a * e * i + b * f * g + c * d * h - a * f * h - b * d * i - c * e * g;
}

void __cMatrix3d_rotate(cMatrix3D& m, const cMatrix3D& r) {
    const cMatrix3D back = r.transposed();
    m = r * m;
    m *= back;
}

void __cMatrix3d_yaw(cMatrix3D& m, double angle) {
    turn_columns(m, 0, 2, angle);
}

void __cMatrix3d_pitch(cMatrix3D& m, double angle) {
    turn_columns(m, 1, 2, angle);
}

void __cMatrix3d_roll(cMatrix3D& m, double angle) {
    turn_columns(m, 0, 1, angle);
}

void __cMatrix3d_from_string(cMatrix3D& m, const char* text) {
    read_component_fields<16>(m, 9, text);
}

void __nsMatrix3d_yaw(cMatrix3D& m, double angle) {
    const auto [c, s] = direction_at(angle);
    m = {c, 0.0, -s, 0.0, 1.0, 0.0, s, 0.0, c};
}

void __nsMatrix3d_pitch(cMatrix3D& m, double angle) {
    const auto [c, s] = direction_at(angle);
    m = {1.0, 0.0, 0.0, 0.0, c, -s, 0.0, s, c};
}

void __nsMatrix3d_roll(cMatrix3D& m, double angle) {
    const auto [c, s] = direction_at(angle);
    m = {c, -s, 0.0, s, c, 0.0, 0.0, 0.0, 1.0};
}

void __nsMatrix3d_euler(cMatrix3D& m, const cVector3D& e) {
    cMatrix3D pitch;
    cMatrix3D roll;
    __nsMatrix3d_pitch(pitch, e.x);
    __nsMatrix3d_roll(roll, e.z);
    __nsMatrix3d_yaw(m, e.y);
    m *= pitch;
    m *= roll;
}

void __nsMatrix3d_random(cMatrix3D& m) {
    m.set_identity();
    __cMatrix3d_yaw(m, platform::runtime_rand() / 32767.0 * TWO_PI);
    __cMatrix3d_pitch(m, (platform::runtime_rand() / 32767.0 - 0.5) * PI);
}
