// SPDX-License-Identifier: MIT
// Quaternions: orientations in four numbers.
//
// No operation normalises, so rounding moves the norm.
// The matrix of a quaternion (matrix.h) is the transpose of the usual formula; pitch and roll enter
// with a negative half angle, so that quaternions and matrices turn the same way.
// Angles are radians. Sines and cosines are the runtime's, those of __cQuaternion_slerp the
// tables'.
#pragma once

#include "quillon/export.h"
#include "quillon/math/serializable.h"
#include "quillon/math/vector.h"

#include <cstdint>

extern "C" {

// Sets `q` to the rotation by `angle` about `axis`, which is not normalised first.
QUILLON_API void __cQuaternion_from_axis_angle(quillon::cQuaternion& q,
                                               const quillon::cVector3D& axis, const double& angle);

// Set `q` so that its matrix is pitch times yaw times roll. __nsMatrix3d_euler has another order.
//
// `e` holds the pitch in x, the yaw in y, the roll in z.
QUILLON_API void __cQuaternion_from_euler(quillon::cQuaternion& q, const quillon::cVector3D& e);
QUILLON_API void __cQuaternion_from_euler_components(quillon::cQuaternion& q, const double& pitch,
                                                     const double& yaw, const double& roll);

// Sets `q` to the quaternion whose matrix is the rotation `m`, by Shepperd's method.
//
// A matrix that is no rotation can lead to infinities and NaN.
QUILLON_API void __cQuaternion_from_matrix(quillon::cQuaternion& q, const quillon::cMatrix3D& m);

// Turn `q` about its own axis, as __cMatrix3d_yaw and its sisters turn its matrix.
QUILLON_API void __cQuaternion_yaw(quillon::cQuaternion& q, const double& angle);
QUILLON_API void __cQuaternion_pitch(quillon::cQuaternion& q, const double& angle);
QUILLON_API void __cQuaternion_roll(quillon::cQuaternion& q, const double& angle);

// Add `b` to `q` or subtract it, component by component.
QUILLON_API void __cQuaternion_add(quillon::cQuaternion& q, const quillon::cQuaternion& b);
QUILLON_API void __cQuaternion_subtract(quillon::cQuaternion& q, const quillon::cQuaternion& b);

// Sets `q` to the Hamilton product `q` times `b`, which may be `q` itself.
QUILLON_API void __cQuaternion_multiply(quillon::cQuaternion& q, const quillon::cQuaternion& b);

// Reads the text form "x#y#z#w#" into `q`.
//
// A component without a closed field keeps its value; fields after the fourth are skipped.
// A field that does not parse is 0; its characters after the 15th are dropped.
QUILLON_API void __cQuaternion_from_string(quillon::cQuaternion& q, const char* text);

// Sets `q` to the spherical linear interpolation of `a` and `b` along the shorter arc.
//
// `t` runs from 0 (`a`, up to a table step) to 1. Weights move in table steps of 0.005 degree of
// arc. The result is not normalised. `q` may be `a` or `b`. The mean for any `t` where the arc is
// below 0.001; `a` where the dot product is 1 or more. Zeros before __init_trig_tables. Source: K.
// Shoemake, Animating Rotation with Quaternion Curves, SIGGRAPH 1985.
QUILLON_API void __cQuaternion_slerp(quillon::cQuaternion& q, const quillon::cQuaternion& a,
                                     const quillon::cQuaternion& b, double t);

// Sets `q` from three random Euler angles of up to one turn: not uniform over rotations.
//
// Draws roll, then yaw, then pitch from the runtime's rand, which the host seeds.
QUILLON_API void __nsQuaternion_random(quillon::cQuaternion& q);
}

namespace quillon {

// Vector part x, y, z and scalar part w, 64-bit; a new one is the identity.
//
// Flat form: x, y, z, w as 32-bit floats, 16 bytes.
// An index outside 0 to 3 refers to a scratch zero, which all quaternions share.
class cQuaternion : public cSerializable {
public:
    // The components.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;

    constexpr cQuaternion() = default;

    // A quaternion of these components; it is not normalised.
    constexpr cQuaternion(const double& x_value, const double& y_value, const double& z_value,
                          const double& w_value)
        : x(x_value), y(y_value), z(z_value), w(w_value) {}

    constexpr cQuaternion(const cQuaternion&) = default;

    // The rotation about an axis: __cQuaternion_from_axis_angle.
    cQuaternion(const cVector3D& axis, const double& angle) {
        __cQuaternion_from_axis_angle(*this, axis, angle);
    }

    constexpr cQuaternion& operator=(const cQuaternion&) = default;

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        detail::write_components<float>(buffer, *this, 4);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        detail::read_components<float>(buffer, *this, 4);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override { return 4 * sizeof(float); }

    constexpr virtual ~cQuaternion() {} // NOLINT(modernize-use-equals-default)

    // Sets all components and returns this.
    constexpr cQuaternion& set(double x_value, double y_value, double z_value, double w_value) {
        x = x_value;
        y = y_value;
        z = z_value;
        w = w_value;
        return *this;
    }

    // Component 0 to 3: x, y, z, w.
    constexpr double& operator[](int index) {
        return detail::component_at(*this, COMPONENTS, index);
    }

    // The same for reading.
    constexpr const double& operator[](int index) const {
        return detail::component_at(*this, COMPONENTS, index);
    }

    // Sets this to __cQuaternion_multiply of this and `b`.
    cQuaternion& operator*=(const cQuaternion& b) {
        __cQuaternion_multiply(*this, b);
        return *this;
    }

    // That product.
    cQuaternion operator*(const cQuaternion& b) const {
        cQuaternion product = *this;
        product *= b;
        return product;
    }

private:
    static constexpr double cQuaternion::*COMPONENTS[] = {&cQuaternion::x, &cQuaternion::y,
                                                          &cQuaternion::z, &cQuaternion::w};
};

// The quaternion that turns nothing.
constexpr cQuaternion QUATERNION_IDENTITY(0.0, 0.0, 0.0, 1.0);

} // namespace quillon
