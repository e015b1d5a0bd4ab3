// SPDX-License-Identifier: MIT
#include "view.h"

#include <cmath>
#include <stdexcept>
#include <utility>

namespace quillon::graphics_gl {
namespace {

constexpr double HALF_TURN = 3.14159265358979323846;

float to_float(double value) {
    return static_cast<float>(value);
}

// The curve of sRGB (IEC 61966-2-1), mirrored for the colours below 0 that some materials have.
float to_linear(float component) {
    const float size = std::abs(component);
    const float light = size <= 0.04045F ? size / 12.92F : std::pow((size + 0.055F) / 1.055F, 2.4F);
    return std::copysign(light, component);
}

} // namespace

View::View(Camera seen_from, double aspect) : camera(std::move(seen_from)) {
    const double angle = camera.vertical_field_of_view;
    if (!(angle > 0.0 && angle < HALF_TURN))
        throw std::runtime_error("the camera's field of view is not between 0 and half a turn");
    if (!(camera.near_plane > 0.0 && camera.far_plane > camera.near_plane))
        throw std::runtime_error("the camera's near plane is not between 0 and its far plane");
    y_scale = 1.0 / std::tan(angle / 2);
    x_scale = y_scale / aspect;
}

Float3 View::relative(const cVector3D& place) const {
    return {to_float(place.x - camera.position.x), to_float(place.y - camera.position.y),
            to_float(place.z - camera.position.z)};
}

Float3 View::axis(int column) const {
    const auto& m = camera.orientation.m;
    return {to_float(m[0][column]), to_float(m[1][column]), to_float(m[2][column])};
}

Matrix4 View::projection() const {
    const auto& m = camera.orientation.m;
    const double depth = camera.far_plane - camera.near_plane;
    const double z_scale = (camera.far_plane + camera.near_plane) / depth;
    Matrix4 result{};
    // The rows of the rotation into the camera's space are the columns of its orientation.
    for (std::size_t world = 0; world < 3; ++world)
        result[world] = {to_float(x_scale * m[world][0]), to_float(y_scale * m[world][1]),
                         to_float(z_scale * m[world][2]), to_float(m[world][2])};
    result[3][2] = to_float(-2.0 * camera.far_plane * camera.near_plane / depth);
    return result;
}

Matrix4 View::sky_rays() const {
    Matrix4 result{};
    for (std::size_t world = 0; world < 3; ++world) {
        const auto& row = camera.orientation.m[world];
        result[0][world] = to_float(row[0] / x_scale);
        result[1][world] = to_float(row[1] / y_scale);
        result[2][world] = to_float(row[2]);
    }
    return result;
}

bool View::may_see(const Float3& center, double radius) const {
    std::array<double, 3> seen{};
    for (std::size_t world = 0; world < 3; ++world)
        for (std::size_t own = 0; own < 3; ++own)
            seen[own] += camera.orientation.m[world][own] * center[world];
    const auto is_outside = [&](double across, double scale) {
        return scale * std::abs(across) - seen[2] > radius * std::hypot(scale, 1.0);
    };
    return seen[2] > camera.near_plane - radius && seen[2] < camera.far_plane + radius &&
           !is_outside(seen[0], x_scale) && !is_outside(seen[1], y_scale);
}

Float4 values_of(const cColor& color) {
    return {color.r, color.g, color.b, color.a};
}

Float4 linear_values_of(const cColor& color) {
    return {to_linear(color.r), to_linear(color.g), to_linear(color.b), color.a};
}

} // namespace quillon::graphics_gl
