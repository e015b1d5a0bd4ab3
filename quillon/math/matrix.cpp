#include "quillon/math/matrix.h"

#include "quillon/math/quaternion.h"
#include "quillon/math/text_fields.h"
#include "quillon/math/trig_tables.h"
#include "quillon/platform/random.h"
#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <cmath>

using quillon::cMatrix3D;
using quillon::cQuaternion;
using quillon::cVector3D;
using quillon::simd::load;
using quillon::simd::Pair;
using quillon::simd::Quad;
using quillon::simd::store;
using quillon::trig::direction_at;

namespace {

// Turns columns `p` and `q` of `m` into each other: `m` times a basic rotation, whose other
// elements are 0 and 1.
void turn_columns(cMatrix3D& m, int p, int q, double angle) {
    if (angle < 0.0)
        angle += quillon::PI * 2.0;
    const auto [c, s] = direction_at(angle);
    for (auto& row : m.m) {
        const double old_p = row[p];
        const double old_q = row[q];
        row[p] = c * old_p + s * old_q;
        row[q] = -s * old_p + c * old_q;
    }
}

// The matrix of a quaternion, as plain numbers that a vector is turned by without leaving
// registers.
struct Rotation {
    double m[3][3];

    explicit Rotation(const cQuaternion& q)
        : m{{1.0 - 2.0 * q.y * q.y - 2.0 * q.z * q.z, 2.0 * q.x * q.y + 2.0 * q.z * q.w,
             2.0 * q.x * q.z - 2.0 * q.y * q.w},
            {2.0 * q.x * q.y - 2.0 * q.z * q.w, 1.0 - 2.0 * q.x * q.x - 2.0 * q.z * q.z,
             2.0 * q.y * q.z + 2.0 * q.x * q.w},
            {2.0 * q.x * q.z + 2.0 * q.y * q.w, 2.0 * q.y * q.z - 2.0 * q.x * q.w,
             1.0 - 2.0 * q.x * q.x - 2.0 * q.y * q.y}} {}
};

void turn(cVector3D& v, const double (&m)[3][3]) {
    v.set(m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z,
          m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
          m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z);
}

void turn_back(cVector3D& v, const double (&m)[3][3]) {
    v.set(m[0][0] * v.x + m[1][0] * v.y + m[2][0] * v.z,
          m[0][1] * v.x + m[1][1] * v.y + m[2][1] * v.z,
          m[0][2] * v.x + m[1][2] * v.y + m[2][2] * v.z);
}

} // namespace

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

void __cMatrix3d_from_quaternion(cMatrix3D& m, const cQuaternion& q) {
    const auto& [row0, row1, row2] = Rotation(q).m;
    m = {row0[0], row0[1], row0[2], row1[0], row1[1], row1[2], row2[0], row2[1], row2[2]};
}

void __cMatrix3d_from_eigenvectors(cMatrix3D& m, const cVector3D& e0, const cVector3D& e1,
                                   const cVector3D& e2) {
    m = {e0.x, e1.x, e2.x, e0.y, e1.y, e2.y, e0.z, e1.z, e2.z};
}

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

// A row at once; the fourth lane of a row is overwritten by the row below. `b` may be `m`, so
// nothing is stored before the end.
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
    quillon::read_component_fields<16>(m, 9, text);
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
    __cMatrix3d_yaw(m, quillon::platform::runtime_rand() / 32767.0 * quillon::TWO_PI);
    __cMatrix3d_pitch(m, (quillon::platform::runtime_rand() / 32767.0 - 0.5) * quillon::PI);
}

void __cVector3d_rotate_by_matrix(cVector3D& v, const cMatrix3D& m) {
    turn(v, m.m);
}

void __cVector3d_rotate_backwards_by_matrix(cVector3D& v, const cMatrix3D& m) {
    turn_back(v, m.m);
}

QUILLON_CPU_CLONES void __cVector3d_rotate_by_quaternion(cVector3D& v, const cQuaternion& q) {
    turn(v, Rotation(q).m);
}

void __cVector3d_rotate_backwards_by_quaternion(cVector3D& v, const cQuaternion& q) {
    turn_back(v, Rotation(q).m);
}
