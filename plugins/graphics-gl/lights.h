// SPDX-License-Identifier: MIT
// The lights as the mesh shader reads them.
#pragma once

#include "view.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace quillon::graphics_gl {

// A light ends where its strength has fallen to this part.
inline constexpr double LIGHT_END = 1.0 / 256;

// Laid out by the rules of std140.
struct ShaderLight {
    Float4 place;           // or the direction to a light that is far away
    Float4 axis_and_cutoff; // the cosine of the cone's half angle; below -1 without a cone
    Float4 diffuse_and_exponent;
    Float4 specular;
    Float4 ambient;
    Float4 attenuation;

    bool operator==(const ShaderLight&) const = default;
};

struct LightBlock {
    std::array<ShaderLight, MAX_LIGHTS> lights;
    std::array<std::int32_t, 4> counts; // of those that are far away, which come first, and of all

    bool operator==(const LightBlock&) const = default;
};

static_assert(sizeof(LightBlock) == MAX_LIGHTS * 6 * 16 + 16);

// The lights of a frame around its camera.
class FrameLights {
public:
    FrameLights() = default;
    FrameLights(std::span<const cLight> lights, const View& view);

    // Those that reach into a sphere.
    LightBlock reaching(const Float3& center, double radius) const;

    bool have_cones() const { return has_cones; }

private:
    struct Reach {
        ShaderLight light;
        double distance; // infinite for one that never ends
    };

    std::vector<Reach> far_away;
    std::vector<Reach> points;
    bool has_cones = false;
};

} // namespace quillon::graphics_gl
