// SPDX-License-Identifier: MIT
#include "quillon/rendercache/tangents.h"

#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace quillon;
using TexCoord = cVector2D<double>;

namespace quillon {
namespace {

using simd::LANES;

constexpr double SMALLEST_DETERMINANT = 0.0001;

// This many polygons are computed in two short loops, since a processor overlaps more of the roots
// and divisions of a short one.
constexpr std::size_t BATCH = 64;

// A vector of each of LANES<Lanes> polygons: a lane holds one number of one polygon.
template <typename Lanes>
struct Directions {
    Lanes x, y, z;
};

// The tangents by the arithmetic of __tarn_find_tangent_from_tri, not yet normalised.
template <typename Lanes>
QUILLON_KERNEL inline Directions<Lanes>
find_directions(const float* positions, const float* texcoords, std::size_t corners) {
    const auto texture_step = [=](std::size_t corner, std::size_t axis) QUILLON_KERNEL {
        return simd::gather<Lanes>(texcoords + corner * 2 + axis, corners * 2) -
               simd::gather<Lanes>(texcoords + axis, corners * 2);
    };
    const auto edge = [=](std::size_t corner, std::size_t axis) QUILLON_KERNEL {
        return simd::gather<Lanes>(positions + corner * 3 + axis, corners * 3) -
               simd::gather<Lanes>(positions + axis, corners * 3);
    };
    const Lanes du1 = texture_step(1, 0);
    const Lanes dv1 = texture_step(1, 1);
    const Lanes du2 = texture_step(2, 0);
    const Lanes dv2 = texture_step(2, 1);
    const Lanes determinant = du1 * dv2 - du2 * dv1;
    const auto degenerate =
        (determinant > -SMALLEST_DETERMINANT) & (determinant < SMALLEST_DETERMINANT);
    const Lanes r = 1.0 / determinant;
    const auto direction = [&](std::size_t axis, double fallback) QUILLON_KERNEL {
        return degenerate ? Lanes{} + fallback : (edge(1, axis) * dv2 - edge(2, axis) * dv1) * r;
    };
    return {direction(0, 1.0), direction(1, 0.0), direction(2, 0.0)};
}

// Normalises the directions and writes them to every corner of their polygons.
//
// Each entry is written with one float too many, which the next one covers.
template <typename Lanes>
QUILLON_KERNEL inline void write_tangents(const Directions<Lanes>& directions, float* tangents,
                                          std::size_t corners) {
    const auto& [x, y, z] = directions;
    const Lanes length = simd::square_roots(x * x + y * y + z * z);
    const Lanes divisor = length == 0.0 ? Lanes{} + 1.0 : length;
    const auto unit_x = simd::narrowed(x / divisor);
    const auto unit_y = simd::narrowed(y / divisor);
    const auto unit_z = simd::narrowed(z / divisor);
    for (std::size_t i = 0; i < LANES<Lanes>; ++i) {
        const float tangent[] = {unit_x[i], unit_y[i], unit_z[i], 0.0F};
        for (std::size_t c = 0; c < corners; ++c, tangents += 3)
            std::memcpy(tangents, tangent, sizeof(tangent));
    }
}

template <typename Lanes>
QUILLON_KERNEL inline void fill(const cRenderCache* cache, std::size_t polys, std::size_t corners) {
    Directions<Lanes> batch[BATCH / LANES<Lanes>];
    for (std::size_t first = 0; first < polys; first += BATCH) {
        const std::size_t count = std::min(BATCH, polys - first) / LANES<Lanes>;
        const float* positions = cache->positions + first * corners * 3;
        const float* texcoords = cache->texcoords + first * corners * 2;
        float* tangents = cache->tangents + first * corners * 3;
        for (std::size_t i = 0; i < count; ++i)
            batch[i] = find_directions<Lanes>(positions + i * LANES<Lanes> * corners * 3,
                                              texcoords + i * LANES<Lanes> * corners * 2, corners);
        for (std::size_t i = 0; i < count; ++i)
            write_tangents(batch[i], tangents + i * LANES<Lanes> * corners * 3, corners);
    }
}

// Fills the first `polys` polygons, a multiple of the lanes. Compiled once for triangles, once for
// quads and once for all others.
template <typename Lanes>
QUILLON_KERNEL inline void fill_polygons(const cRenderCache* cache, std::size_t polys) {
    const std::size_t corners = cache->verts_per_poly;
    if (corners == 3)
        fill<Lanes>(cache, polys, 3);
    else if (corners == 4)
        fill<Lanes>(cache, polys, 4);
    else
        fill<Lanes>(cache, polys, corners);
}

void fill_polygon(const cRenderCache& cache, std::size_t poly) {
    const std::size_t entry = poly * cache.verts_per_poly;
    cVector3D positions[3];
    TexCoord texcoords[3];
    for (std::size_t c = 0; c < 3; ++c) {
        const float* position = cache.positions + (entry + c) * 3;
        const float* texcoord = cache.texcoords + (entry + c) * 2;
        positions[c].set(position[0], position[1], position[2]);
        texcoords[c] = {texcoord[0], texcoord[1]};
    }
    cVector3D tangent;
    __tarn_find_tangent_from_tri(tangent, positions, texcoords);
    float* to = cache.tangents + entry * 3;
    for (std::size_t c = 0; c < cache.verts_per_poly; ++c, to += 3) {
        to[0] = static_cast<float>(tangent.x);
        to[1] = static_cast<float>(tangent.y);
        to[2] = static_cast<float>(tangent.z);
    }
}

} // namespace
} // namespace quillon

void __tarn_find_tangent_from_tri(cVector3D& out, const cVector3D* positions,
                                  const TexCoord* texcoords) {
    const cVector3D e1 = positions[1] - positions[0];
    const cVector3D e2 = positions[2] - positions[0];
    const double du1 = texcoords[1].x - texcoords[0].x;
    const double dv1 = texcoords[1].y - texcoords[0].y;
    const double du2 = texcoords[2].x - texcoords[0].x;
    const double dv2 = texcoords[2].y - texcoords[0].y;
    const double determinant = du1 * dv2 - du2 * dv1;
    if (std::fabs(determinant) < SMALLEST_DETERMINANT) {
        out.set(1.0, 0.0, 0.0);
        return;
    }
    out = ((e1 * dv2 - e2 * dv1) * (1.0 / determinant)).normalized();
}

void __mGraphics_render_cache_calc_tangents(cRenderCache* cache) {
    if (cache == nullptr || cache->positions == nullptr || cache->texcoords == nullptr ||
        cache->tangents == nullptr || cache->verts_per_poly < 3 || cache->poly_count == 0)
        return;
    // No entry follows the last polygon's, which would cover its float too many.
    const std::size_t lanes = LANES<simd::Quad>;
    const std::size_t vectorised = (cache->poly_count - 1) / lanes * lanes;
    simd::run_vectorised<fill_polygons<simd::Quad>, fill_polygons<simd::Pair>>(
        static_cast<const cRenderCache*>(cache), vectorised);
    for (std::size_t poly = vectorised; poly < cache->poly_count; ++poly)
        fill_polygon(*cache, poly);
}
