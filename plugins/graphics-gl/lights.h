// The lights as the mesh shader reads them.
#pragma once

#include "view.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillon::graphics_gl {

// Laid out by the rules of std140.
struct LightBlock {
    struct Light {
        Float4 place_and_kind;
        Float4 direction_and_cutoff; // the cosine of the cone's half angle; below -1 without a cone
        Float4 diffuse_and_exponent;
        Float4 specular;
        Float4 ambient;
        Float4 attenuation;
    };

    std::array<Light, MAX_LIGHTS> lights;
    std::array<std::int32_t, 4> count;
};

static_assert(sizeof(LightBlock) == MAX_LIGHTS * 6 * 16 + 16);

// Those that shine.
LightBlock block_of(const std::vector<cLight>& lights, const View& view);

} // namespace quillon::graphics_gl
