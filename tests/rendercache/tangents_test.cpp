// SPDX-License-Identifier: MIT
#include "quillon/rendercache/tangents.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace quillon;
using TexCoord = cVector2D<double>;

namespace {

constexpr float UNTOUCHED = -77.0F;

// A cache over vectors, with a guard after the tangents.
struct Mesh {
    std::vector<float> positions;
    std::vector<float> texcoords;
    std::vector<float> tangents;
    cRenderCache cache{};

    Mesh(std::uint32_t polys, std::uint32_t corners)
        : positions(std::size_t{polys} * corners * 3),
          texcoords(std::size_t{polys} * corners * 2),
          tangents(positions.size() + 1, UNTOUCHED) {
        cache.positions = positions.data();
        cache.texcoords = texcoords.data();
        cache.tangents = tangents.data();
        cache.poly_count = polys;
        cache.verts_per_poly = corners;
    }

    // The tangent of the first three corners of a polygon by the flat function.
    cVector3D expected(std::size_t poly) const {
        cVector3D p[3];
        TexCoord uv[3];
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t entry = poly * cache.verts_per_poly + c;
            const float* position = positions.data() + entry * 3;
            p[c].set(position[0], position[1], position[2]);
            uv[c] = {texcoords[entry * 2], texcoords[entry * 2 + 1]};
        }
        cVector3D tangent;
        __tarn_find_tangent_from_tri(tangent, p, uv);
        return tangent;
    }
};

} // namespace

TEST(TriangleTangent, FollowsTheFirstTextureAxis) {
    const struct {
        const char* name;
        cVector3D positions[3];
        TexCoord texcoords[3];
        cVector3D expected;
    } cases[] = {
        {"along x", {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}, {{0, 0}, {1, 0}, {0, 1}}, {1, 0, 0}},
        {"mirrored", {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}, {{0, 0}, {-1, 0}, {0, 1}}, {-1, 0, 0}},
        {"turned to z", {{1, 1, 1}, {1, 2, 1}, {1, 1, 3}}, {{0, 0}, {0, 1}, {1, 0}}, {0, 0, 1}},
        {"degenerate",
         {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}},
         {{0, 0}, {9.99e-5, 0}, {0, 1}},
         {1, 0, 0}},
        {"just not", {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{0, 0}, {1.001e-4, 0}, {0, 1}}, {0, 1, 0}},
        {"no extent", {{5, 5, 5}, {5, 5, 5}, {5, 5, 5}}, {{0, 0}, {1, 0}, {0, 1}}, {0, 0, 0}},
    };

    for (const auto& row : cases) {
        cVector3D tangent(9, 9, 9);
        __tarn_find_tangent_from_tri(tangent, row.positions, row.texcoords);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(row.expected[i], tangent[i]) << row.name;
    }
}

TEST(CacheTangents, EqualTheFlatFunction) {
    constexpr float edges[] = {0.0F, -0.0F, 1.0F, 0.01F, 0.0099F, 1.0e-30F, 1e38F, INFINITY, NAN};
    std::mt19937 random(3);
    std::uniform_real_distribution<float> spread(-2, 2);
    const auto next = [&] {
        return random() % 8 == 0 ? edges[random() % std::size(edges)] : spread(random);
    };
    for (const std::uint32_t polys : {1U, 3U, 4U, 5U, 63U, 64U, 65U, 1000U}) {
        for (const std::uint32_t corners : {3U, 4U, 7U}) {
            Mesh mesh(polys, corners);
            std::generate(mesh.positions.begin(), mesh.positions.end(), next);
            std::generate(mesh.texcoords.begin(), mesh.texcoords.end(), next);
            __mGraphics_render_cache_calc_tangents(&mesh.cache);
            for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
                const double wide = mesh.expected(i / corners / 3)[static_cast<int>(i % 3)];
                const float tangent = mesh.tangents[i];
                ASSERT_TRUE(std::isnan(wide) ? std::isnan(tangent)
                                             : static_cast<float>(wide) == tangent)
                    << "component " << i << " of " << polys << " polygons of " << corners;
            }
            EXPECT_EQ(UNTOUCHED, mesh.tangents.back());
        }
    }
}

TEST(CacheTangents, OfUnfitCachesAreUnchanged) {
    Mesh lines(4, 2);
    Mesh empty(0, 3);
    Mesh untextured(4, 3);
    untextured.cache.texcoords = nullptr;
    for (Mesh* mesh : {&lines, &empty, &untextured}) {
        __mGraphics_render_cache_calc_tangents(&mesh->cache);
        EXPECT_THAT(mesh->tangents, testing::Each(UNTOUCHED));
        mesh->cache.tangents = nullptr;
        __mGraphics_render_cache_calc_tangents(&mesh->cache);
    }
}
