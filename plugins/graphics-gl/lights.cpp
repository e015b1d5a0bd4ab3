#include "lights.h"

#include <cmath>

namespace quillon::graphics_gl {
namespace {

constexpr float NO_CONE = -2.0F;
constexpr double DEGREE = 3.14159265358979323846 / 180;

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

LightBlock::Light shader_light(const cLight& light, const View& view) {
    const cVector3D direction = light.direction.normalized();
    const Float4 diffuse = scaled(linear_values_of(light.diffuse), light.intensity);
    return {.place_and_kind = with(view.relative(light.position), light.light_flag),
            .direction_and_cutoff = {static_cast<float>(direction.x),
                                     static_cast<float>(direction.y),
                                     static_cast<float>(direction.z),
                                     cosine_of_cone(light.spot_cutoff)},
            .diffuse_and_exponent = {diffuse[0], diffuse[1], diffuse[2], light.spot_exponent},
            .specular = scaled(linear_values_of(light.specular), light.intensity),
            .ambient = scaled(linear_values_of(light.ambient), light.intensity),
            .attenuation = {light.constant_attenuation, light.linear_attenuation,
                            light.quadratic_attenuation, 0.0F}};
}

} // namespace

LightBlock block_of(const std::vector<cLight>& lights, const View& view) {
    LightBlock block{};
    std::size_t count = 0;
    for (const cLight& light : lights)
        if (light.light_flag == LIGHT_POINT || light.light_flag == LIGHT_DIRECTIONAL)
            block.lights.at(count++) = shader_light(light, view);
    block.count[0] = static_cast<std::int32_t>(count);
    return block;
}

} // namespace quillon::graphics_gl
