// SPDX-License-Identifier: MIT
#include "lights.h"

#include <cmath>
#include <limits>

namespace quillon::graphics_gl {
namespace {

constexpr float NO_CONE = -2.0F;
constexpr double DEGREE = 3.14159265358979323846 / 180;
constexpr double ENDLESS = std::numeric_limits<double>::infinity();

float cosine_of_cone(float cutoff_in_degrees) {
    return cutoff_in_degrees < 90.0F ? static_cast<float>(std::cos(cutoff_in_degrees * DEGREE))
                                     : NO_CONE;
}

Float4 with(const Float3& values, float fourth) {
    return {values[0], values[1], values[2], fourth};
}

Float4 scaled(Float4 color, float factor) {
    for (float& component : color)
        component *= factor;
    return color;
}

Float3 narrowed(const cVector3D& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

ShaderLight shader_light(const cLight& light, const View& view) {
    const Float4 diffuse = scaled(linear_values_of(light.diffuse), light.intensity);
    const cVector3D axis = light.direction.normalized();
    const Float3 place = light.light_flag == LIGHT_DIRECTIONAL ? narrowed(axis * -1.0)
                                                               : view.relative(light.position);
    return {.place = with(place, 0.0F),
            .axis_and_cutoff = with(narrowed(axis), cosine_of_cone(light.spot_cutoff)),
            .diffuse_and_exponent = {diffuse[0], diffuse[1], diffuse[2], light.spot_exponent},
            .specular = scaled(linear_values_of(light.specular), light.intensity),
            .ambient = scaled(linear_values_of(light.ambient), light.intensity),
            .attenuation = {light.constant_attenuation, light.linear_attenuation,
                            light.quadratic_attenuation, 0.0F}};
}

// The positive root of quadratic d^2 + linear d + constant = 1 / LIGHT_END.
double reach_of(const cLight& light) {
    const double rest = 1 / LIGHT_END - light.constant_attenuation;
    const double linear = light.linear_attenuation;
    const double quadratic = light.quadratic_attenuation;
    if (quadratic > 0)
        return (std::sqrt(linear * linear + 4 * quadratic * rest) - linear) / (2 * quadratic);
    return linear > 0 ? rest / linear : ENDLESS;
}

} // namespace

FrameLights::FrameLights(std::span<const cLight> lights, const View& view) {
    for (const cLight& light : lights) {
        if (light.light_flag == LIGHT_DIRECTIONAL)
            far_away.push_back({shader_light(light, view), ENDLESS});
        if (light.light_flag == LIGHT_POINT)
            points.push_back({shader_light(light, view), reach_of(light)});
        has_cones |= light.light_flag == LIGHT_POINT && light.spot_cutoff < 90.0F;
    }
}

LightBlock FrameLights::reaching(const Float3& center, double radius) const {
    LightBlock block{};
    std::size_t count = 0;
    for (const Reach& reach : far_away)
        block.lights[count++] = reach.light;
    block.counts[0] = static_cast<std::int32_t>(count);
    for (const Reach& reach : points) {
        const double distance =
            std::hypot(center[0] - reach.light.place[0], center[1] - reach.light.place[1],
                       center[2] - reach.light.place[2]);
        // Not the other way round, so that a place that is NaN is lit like any other.
        if (!(distance - radius > reach.distance))
            block.lights[count++] = reach.light;
    }
    block.counts[1] = static_cast<std::int32_t>(count);
    return block;
}

} // namespace quillon::graphics_gl
