#include "quillon/rendercache/tangents.h"

#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using quillon::cRenderCache;
using quillon::cVector3D;
using TexCoord = quillon::cVector2D<double>;

// Vectors are passed between functions that are all inlined: no calling convention comes into it.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace {

constexpr double SMALLEST_DETERMINANT = 0.0001;

// So many polygons are worked on in two short loops, since a processor overlaps more of the roots
// and divisions of a short one.
constexpr std::size_t BATCH = 64;

// Works on as many polygons at once as a vector has lanes, each of which holds one number of one
// polygon.
template <typename Floats, typename Doubles, std::size_t... lane>
struct Kernel {
    static constexpr std::size_t LANES = sizeof...(lane);

    // A vector of each polygon.
    struct Directions {
        Doubles x, y, z;
    };

    // The number of each polygon, whose entries are `stride` apart.
    [[gnu::always_inline]] static Doubles gather(const float* number, std::size_t stride) {
        return Doubles{number[lane * stride]...};
    }

    // The tangents by the arithmetic of __tarn_find_tangent_from_tri, not yet normalised.
    [[gnu::always_inline]] static Directions
    find_directions(const float* positions, const float* texcoords, std::size_t corners) {
        const auto texture_step = [=](std::size_t corner, std::size_t axis)
            __attribute__((always_inline)) {
            return gather(texcoords + corner * 2 + axis, corners * 2) -
                   gather(texcoords + axis, corners * 2);
        };
        const auto edge = [=](std::size_t corner, std::size_t axis) __attribute__((always_inline)) {
            return gather(positions + corner * 3 + axis, corners * 3) -
                   gather(positions + axis, corners * 3);
        };
        const Doubles du1 = texture_step(1, 0);
        const Doubles dv1 = texture_step(1, 1);
        const Doubles du2 = texture_step(2, 0);
        const Doubles dv2 = texture_step(2, 1);
        const Doubles determinant = du1 * dv2 - du2 * dv1;
        const auto degenerate =
            (determinant > -SMALLEST_DETERMINANT) & (determinant < SMALLEST_DETERMINANT);
        const Doubles r = 1.0 / determinant;
        const auto direction = [&](std::size_t axis, double fallback)
            __attribute__((always_inline)) {
            return degenerate ? Doubles{} + fallback
                              : (edge(1, axis) * dv2 - edge(2, axis) * dv1) * r;
        };
        return {direction(0, 1.0), direction(1, 0.0), direction(2, 0.0)};
    }

    // Normalises the directions and writes them to every corner of their polygons.
    //
    // Each entry is written with one float too many, which the next one covers.
    [[gnu::always_inline]] static void write_tangents(const Directions& directions, float* tangents,
                                                      std::size_t corners) {
        const auto& [x, y, z] = directions;
        const Doubles squared = x * x + y * y + z * z;
        const Doubles length = {std::sqrt(squared[lane])...};
        const Doubles divisor = length == 0.0 ? Doubles{} + 1.0 : length;
        const Floats unit_x = __builtin_convertvector(x / divisor, Floats);
        const Floats unit_y = __builtin_convertvector(y / divisor, Floats);
        const Floats unit_z = __builtin_convertvector(z / divisor, Floats);
        for (std::size_t i = 0; i < LANES; ++i) {
            const float tangent[] = {unit_x[i], unit_y[i], unit_z[i], 0.0F};
            for (std::size_t c = 0; c < corners; ++c, tangents += 3)
                std::memcpy(tangents, tangent, sizeof(tangent));
        }
    }

    [[gnu::always_inline]] static void fill(const cRenderCache* cache, std::size_t polys,
                                            std::size_t corners) {
        Directions batch[BATCH / LANES];
        for (std::size_t first = 0; first < polys; first += BATCH) {
            const std::size_t count = std::min(BATCH, polys - first) / LANES;
            const float* positions = cache->positions + first * corners * 3;
            const float* texcoords = cache->texcoords + first * corners * 2;
            float* tangents = cache->tangents + first * corners * 3;
            for (std::size_t i = 0; i < count; ++i)
                batch[i] = find_directions(positions + i * LANES * corners * 3,
                                           texcoords + i * LANES * corners * 2, corners);
            for (std::size_t i = 0; i < count; ++i)
                write_tangents(batch[i], tangents + i * LANES * corners * 3, corners);
        }
    }

    // Fills the first `polys` polygons, of which there is a multiple of LANES. Compiled once for
    // triangles, once for quads and once for all others.
    [[gnu::always_inline]] static void run(const cRenderCache* cache, std::size_t polys) {
        const std::size_t corners = cache->verts_per_poly;
        if (corners == 3)
            fill(cache, polys, 3);
        else if (corners == 4)
            fill(cache, polys, 4);
        else
            fill(cache, polys, corners);
    }
};

using TwoFloats [[gnu::vector_size(8)]] = float;
using FourFloats [[gnu::vector_size(16)]] = float;
using NarrowKernel = Kernel<TwoFloats, quillon::simd::Pair, 0, 1>;
using WideKernel = Kernel<FourFloats, quillon::simd::Quad, 0, 1, 2, 3>;

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
    // The last polygon has none behind it that would cover its float too many.
    const std::size_t vectorised = (cache->poly_count - 1) / WideKernel::LANES * WideKernel::LANES;
    quillon::simd::run_vectorised<WideKernel::run, NarrowKernel::run>(
        static_cast<const cRenderCache*>(cache), vectorised);
    for (std::size_t poly = vectorised; poly < cache->poly_count; ++poly)
        fill_polygon(*cache, poly);
}
