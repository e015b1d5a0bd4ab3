// SPDX-License-Identifier: MIT
// Vectors of two and three components.
#pragma once

#include "quillon/export.h"
#include "quillon/math/constants.h"
#include "quillon/math/serializable.h"

#include <cmath>
#include <cstdint>

namespace quillon {

class cVector3D;
class cMatrix3D;
class cQuaternion;

} // namespace quillon

extern "C" {

// The angle between `a` and `b` in radians, 0 to pi, by the runtime's acos.
//
// 0 if either is the zero vector; PI / 2.0 if the dot product is exactly 0.
// NaN where rounding lifts the ratio beyond 1.
QUILLON_API double __cVector3d_get_angle_between(const quillon::cVector3D& a,
                                                 const quillon::cVector3D& b);

// The factor that scales `b` to the projection of `a` onto it; 0 if either is the zero vector.
QUILLON_API double __cVector3d_get_scalar_for_projection_onto(const quillon::cVector3D& a,
                                                              const quillon::cVector3D& b);

// Reads the text form "x#y#z#" into `v`.
//
// A component without a closed field keeps its value; fields after the third are skipped.
// A field that does not parse is 0; its characters after the 23rd are dropped.
QUILLON_API void __cVector3d_vector_from_string(quillon::cVector3D& v, const char* text);

// Sets `out` to a random direction: a point of a cube, normalised, so not uniform.
//
// Draws z, then y, then x from the runtime's rand, which the host seeds.
QUILLON_API void __nsVector3d_on_unit_sphere(quillon::cVector3D& out);

// Turn `v` by a rotation, or back by its transpose: the matrix times the column vector `v`.
// Defined in rotation.cpp, with the quaternion's matrix.
QUILLON_API void __cVector3d_rotate_by_matrix(quillon::cVector3D& v, const quillon::cMatrix3D& m);
QUILLON_API void __cVector3d_rotate_backwards_by_matrix(quillon::cVector3D& v,
                                                        const quillon::cMatrix3D& m);

// The same by the matrix of a quaternion.
QUILLON_API void __cVector3d_rotate_by_quaternion(quillon::cVector3D& v,
                                                  const quillon::cQuaternion& q);
QUILLON_API void __cVector3d_rotate_backwards_by_quaternion(quillon::cVector3D& v,
                                                            const quillon::cQuaternion& q);
}

namespace quillon {

// A point or direction in space, 64-bit; a new one is (0, 0, 0).
//
// Flat form: x, y, z as 32-bit floats, 12 bytes.
// An index outside 0 to 2 refers to a scratch zero, which all vectors share.
class cVector3D : public cSerializable {
public:
    // The components.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr cVector3D() = default;

    // A vector of these components.
    constexpr cVector3D(double x_value, double y_value, double z_value)
        : x(x_value), y(y_value), z(z_value) {}

    constexpr cVector3D(const cVector3D&) = default;
    constexpr cVector3D& operator=(const cVector3D&) = default;

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        detail::write_components<float>(buffer, *this, 3);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        detail::read_components<float>(buffer, *this, 3);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override { return 3 * sizeof(float); }

    // Spelled out, since gcc 12 takes no constant whose virtual destructor is defaulted.
    constexpr virtual ~cVector3D() {} // NOLINT(modernize-use-equals-default)

    // Sets all components and returns this.
    constexpr cVector3D& set(double x_value, double y_value, double z_value) {
        x = x_value;
        y = y_value;
        z = z_value;
        return *this;
    }

    // Component 0 to 2: x, y, z.
    constexpr double& operator[](int index) {
        return detail::component_at(*this, COMPONENTS, index);
    }

    // The same for reading.
    constexpr const double& operator[](int index) const {
        return detail::has_index(COMPONENTS, index) ? this->*COMPONENTS[index]
                                                    : detail::CONSTANT_ZERO<double>;
    }

    // The square root of squared_length.
    double length() const { return std::sqrt(squared_length()); }

    // x * x + y * y + z * z.
    constexpr double squared_length() const { return x * x + y * y + z * z; }

    // Scales the vector to unit length; one whose squared length is exactly 0 or 1 is unchanged.
    void normalize() {
        const double squared = squared_length();
        if (squared == 1.0)
            return;
        const double divisor = std::sqrt(squared);
        if (divisor == 0.0)
            return;
        *this /= divisor;
    }

    // A copy that `normalize` was called on.
    cVector3D normalized() const {
        cVector3D unit = *this;
        unit.normalize();
        return unit;
    }

    // The dot product.
    constexpr double dot(const cVector3D& b) const { return x * b.x + y * b.y + z * b.z; }

    // The cross product, this times `b`: x cross y is z.
    constexpr cVector3D cross(const cVector3D& b) const {
        return {y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x};
    }

    // The difference, component by component.
    constexpr cVector3D operator-(const cVector3D& b) const { return {x - b.x, y - b.y, z - b.z}; }

    // The sum, component by component.
    constexpr cVector3D operator+(const cVector3D& b) const { return {x + b.x, y + b.y, z + b.z}; }

    // Each component times `scalar`.
    constexpr cVector3D operator*(double scalar) const {
        return {x * scalar, y * scalar, z * scalar};
    }

    // Divides each component; a zero divisor leads to infinities and NaN.
    constexpr cVector3D operator/(double scalar) const {
        return {x / scalar, y / scalar, z / scalar};
    }

    // Subtracts `b`, component by component.
    constexpr cVector3D& operator-=(const cVector3D& b) { return set(x - b.x, y - b.y, z - b.z); }

    // Adds `b`, component by component.
    constexpr cVector3D& operator+=(const cVector3D& b) { return set(x + b.x, y + b.y, z + b.z); }

    // Multiplies each component.
    constexpr cVector3D& operator*=(double scalar) {
        return set(x * scalar, y * scalar, z * scalar);
    }

    // Divides each component; a zero divisor leads to infinities and NaN.
    constexpr cVector3D& operator/=(double scalar) {
        return set(x / scalar, y / scalar, z / scalar);
    }

    // Turns the vector by the matrix of `q`.
    cVector3D& operator*=(const cQuaternion& q) {
        __cVector3d_rotate_by_quaternion(*this, q);
        return *this;
    }

private:
    static constexpr double cVector3D::*COMPONENTS[] = {&cVector3D::x, &cVector3D::y,
                                                        &cVector3D::z};
};

namespace detail {

template <typename T>
struct ComponentOf {
    using type = T;
};

// 32 bits on every platform, whatever the width of `long`.
template <>
struct ComponentOf<long> {
    using type = std::int32_t;
};

} // namespace detail

// A pair of components: 64-bit floats for cVector2D<double>, signed 32-bit integers for
// cVector2D<long>; a new one is (0, 0).
//
// Flat form: x, y unchanged, 16 or 8 bytes.
// An index outside 0 to 1 refers to a scratch zero, which all vectors share.
template <typename T>
class cVector2D : public cSerializable {
public:
    // The type of x and y.
    using Component = typename detail::ComponentOf<T>::type;

    // The components.
    Component x{};
    Component y{};

    constexpr cVector2D() = default;

    // A vector of these components.
    constexpr cVector2D(Component x_value, Component y_value) : x(x_value), y(y_value) {}

    constexpr cVector2D(const cVector2D&) = default;
    constexpr cVector2D& operator=(const cVector2D&) = default;

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        detail::write_components<Component>(buffer, *this, 2);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        detail::read_components<Component>(buffer, *this, 2);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override { return 2 * sizeof(Component); }

    constexpr virtual ~cVector2D() {} // NOLINT(modernize-use-equals-default)

    // Component 0 to 1: x, y.
    constexpr Component& operator[](int index) {
        return detail::component_at(*this, COMPONENTS, index);
    }

    // The same for reading.
    constexpr const Component& operator[](int index) const {
        return detail::component_at(*this, COMPONENTS, index);
    }

private:
    static constexpr Component cVector2D::*COMPONENTS[] = {&cVector2D::x, &cVector2D::y};
};

// Vectors for reuse: zero, the axes, and all ones.
constexpr cVector2D<double> VECTOR2D_ZERO(0.0, 0.0);
constexpr cVector2D<double> VECTOR2D_UNIT_X(1.0, 0.0);
constexpr cVector2D<double> VECTOR2D_UNIT_Y(0.0, 1.0);
constexpr cVector2D<double> VECTOR2D_ONE(1.0, 1.0);

// The same of integers.
constexpr cVector2D<long> VECTOR2L_ZERO(0, 0);
constexpr cVector2D<long> VECTOR2L_UNIT_X(1, 0);
constexpr cVector2D<long> VECTOR2L_UNIT_Y(0, 1);
constexpr cVector2D<long> VECTOR2L_ONE(1, 1);

// The same in space.
constexpr cVector3D VECTOR3D_ZERO(0.0, 0.0, 0.0);
constexpr cVector3D VECTOR3D_UNIT_X(1.0, 0.0, 0.0);
constexpr cVector3D VECTOR3D_UNIT_Y(0.0, 1.0, 0.0);
constexpr cVector3D VECTOR3D_UNIT_Z(0.0, 0.0, 1.0);
constexpr cVector3D VECTOR3D_ONE(1.0, 1.0, 1.0);

} // namespace quillon
