// SPDX-License-Identifier: MIT
// 3x3 matrices: rotations and general linear maps.
//
// Vectors are columns and a rotation is M times v; angles are radians. With c and s the cosine and
// sine of the angle by table look-up, in steps of 0.005 degree, the basic rotations are
//     yaw, about y     pitch, about x     roll, about z
//      c  0 -s          1  0  0            c -s  0
//      0  1  0          0  c -s            s  c  0
//      s  0  c          0  s  c            0  0  1
// so pitch and roll are right-handed, and a positive yaw carries +z toward -x.
// Before __init_trig_tables both c and s are 0.
#pragma once

#include "quillon/export.h"
#include "quillon/math/serializable.h"
#include "quillon/math/vector.h"

#include <cstdint>

extern "C" {

// Sets `m` to the rotation by `angle` about `axis`, which is normalised first.
//
// The axes x, y and z lead to exactly pitch, yaw and roll.
// About a mixed axis with a part along y the matrix need not be orthogonal.
// A zero axis leads to the identity times the cosine.
QUILLON_API void __cMatrix3d_construct_matrix(quillon::cMatrix3D& m, double angle,
                                              const quillon::cVector3D& axis);

// Sets `m` to the matrix of `q`, which is not normalised first: the transpose of the usual formula.
// Defined in rotation.cpp, beside the rotations of vectors.
QUILLON_API void __cMatrix3d_from_quaternion(quillon::cMatrix3D& m, const quillon::cQuaternion& q);

// Sets the columns of `m` to `e0`, `e1` and `e2`.
QUILLON_API void __cMatrix3d_from_eigenvectors(quillon::cMatrix3D& m, const quillon::cVector3D& e0,
                                               const quillon::cVector3D& e1,
                                               const quillon::cVector3D& e2);

// Sets the columns of `m` to right, up and forward: unit vectors at right angles, forward kept.
//
// The identity for forward (0, 0, 1) and up (0, 1, 0); two zero columns if they are parallel.
QUILLON_API void __cMatrix3d_from_forward_and_up(quillon::cMatrix3D& m,
                                                 const quillon::cVector3D& forward,
                                                 const quillon::cVector3D& up);

// Scales each column to unit length; a zero column is unchanged, and angles between columns are
// kept.
QUILLON_API void __cMatrix3d_normalize(quillon::cMatrix3D& m);

// Add `b` to `m` or subtract it, element by element.
QUILLON_API void __cMatrix3d_add(quillon::cMatrix3D& m, const quillon::cMatrix3D& b);
QUILLON_API void __cMatrix3d_subtract(quillon::cMatrix3D& m, const quillon::cMatrix3D& b);

// Sets `m` to `m` times `b`, which may be `m` itself.
QUILLON_API void __cMatrix3d_multiply(quillon::cMatrix3D& m, const quillon::cMatrix3D& b);

// The determinant of `m`.
QUILLON_API double __cMatrix3d_get_determinant(const quillon::cMatrix3D& m);

// Changes `m` to the basis of the rotation `r`: `r` times `m` times the transpose of `r`.
QUILLON_API void __cMatrix3d_rotate(quillon::cMatrix3D& m, const quillon::cMatrix3D& r);

// Turn `m` about its own, already turned axis: `m` times the basic rotation.
//
// One turn, PI * 2.0, is added to a negative angle, so that the nearest table entry is read.
QUILLON_API void __cMatrix3d_yaw(quillon::cMatrix3D& m, double angle);
QUILLON_API void __cMatrix3d_pitch(quillon::cMatrix3D& m, double angle);
QUILLON_API void __cMatrix3d_roll(quillon::cMatrix3D& m, double angle);

// Reads nine fields, each closed by "#", into `m` row by row.
//
// An element without a closed field keeps its value; fields after the ninth are skipped.
// A field that does not parse is 0; its characters after the 15th are dropped.
QUILLON_API void __cMatrix3d_from_string(quillon::cMatrix3D& m, const char* text);

// Set `m` to the basic rotation.
QUILLON_API void __nsMatrix3d_yaw(quillon::cMatrix3D& m, double angle);
QUILLON_API void __nsMatrix3d_pitch(quillon::cMatrix3D& m, double angle);
QUILLON_API void __nsMatrix3d_roll(quillon::cMatrix3D& m, double angle);

// Sets `m` to yaw(e.y) times pitch(e.x) times roll(e.z).
QUILLON_API void __nsMatrix3d_euler(quillon::cMatrix3D& m, const quillon::cVector3D& e);

// Sets `m` to a random yaw of up to one turn, then a random pitch of up to a quarter turn either
// way.
//
// Draws the yaw, then the pitch from the runtime's rand, which the host seeds.
QUILLON_API void __nsMatrix3d_random(quillon::cMatrix3D& m);
}

namespace quillon {

// Nine 64-bit elements in row-major order; a new matrix is the identity.
//
// Flat form: the elements as 32-bit floats, row by row, 36 bytes.
// Index 3 * row + column. One outside 0 to 8 refers to a scratch zero, which all matrices share.
class cMatrix3D : public cSerializable {
public:
    // The elements: `m[row][column]`.
    double m[3][3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};

    constexpr cMatrix3D() = default;

    // A matrix of these elements, named by row and column.
    constexpr cMatrix3D(double m00, double m01, double m02, double m10, double m11, double m12,
                        double m20, double m21, double m22)
        : m{{m00, m01, m02}, {m10, m11, m12}, {m20, m21, m22}} {}

    constexpr cMatrix3D(const cMatrix3D&) = default;

    // The matrix of `q`: __cMatrix3d_from_quaternion.
    explicit cMatrix3D(const cQuaternion& q) { __cMatrix3d_from_quaternion(*this, q); }

    constexpr cMatrix3D& operator=(const cMatrix3D&) = default;

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        detail::write_components<float>(buffer, *this, 9);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        detail::read_components<float>(buffer, *this, 9);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override { return 9 * sizeof(float); }

    constexpr virtual ~cMatrix3D() {} // NOLINT(modernize-use-equals-default)

    // The element at 3 * row + column.
    constexpr double& operator[](int index) {
        if (index < 0 || index > 8)
            return detail::zeroed(detail::writable_scratch<cMatrix3D, double>);
        return m[index / 3][index % 3];
    }

    // The same for reading.
    constexpr const double& operator[](int index) const {
        if (index < 0 || index > 8)
            return detail::CONSTANT_ZERO<double>;
        return m[index / 3][index % 3];
    }

    // Sets the matrix to the identity.
    constexpr void set_identity() { *this = cMatrix3D(); }

    // The matrix with rows and columns exchanged.
    constexpr cMatrix3D transposed() const {
        return {m[0][0], m[1][0], m[2][0], m[0][1], m[1][1], m[2][1], m[0][2], m[1][2], m[2][2]};
    }

    // Sets this to this times `b`.
    cMatrix3D& operator*=(const cMatrix3D& b) {
        __cMatrix3d_multiply(*this, b);
        return *this;
    }

    // This times `b`.
    cMatrix3D operator*(const cMatrix3D& b) const {
        cMatrix3D product = *this;
        product *= b;
        return product;
    }

    // Turns the matrix about its own y axis: __cMatrix3d_yaw.
    void yaw(double angle) { __cMatrix3d_yaw(*this, angle); }

    // Turns the matrix about its own x axis: __cMatrix3d_pitch.
    void pitch(double angle) { __cMatrix3d_pitch(*this, angle); }
};

// All zeros, and the identity.
constexpr cMatrix3D MATRIX3D_ZERO(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
constexpr cMatrix3D MATRIX3D_IDENTITY;

} // namespace quillon
