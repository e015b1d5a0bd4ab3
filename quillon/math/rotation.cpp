// SPDX-License-Identifier: MIT
// Vectors turned by matrices and quaternions, and the matrix of a quaternion.
#include "quillon/math/matrix.h"
#include "quillon/math/quaternion.h"
#include "quillon/math/vector.h"
#include "quillon/simd/dispatch.h"

using namespace quillon;

namespace quillon {
namespace {

// The matrix of a quaternion as plain numbers, by which a vector is turned without leaving
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
} // namespace quillon

void __cMatrix3d_from_quaternion(cMatrix3D& m, const cQuaternion& q) {
    const auto& [row0, row1, row2] = Rotation(q).m;
    m = {row0[0], row0[1], row0[2], row1[0], row1[1], row1[2], row2[0], row2[1], row2[2]};
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
