#include "quillon/rendercache/tangents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

using quillon::cRenderCache;
using quillon::cVector3D;
using testing::Each;
using TexCoord = quillon::cVector2D<double>;

namespace {

constexpr float UNTOUCHED = -77.0F;

// A cache over vectors, with a guard behind the tangents.
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

    // What the flat function gives for the first three corners of a polygon.
    cVector3D expected(std::size_t poly) const {
        cVector3D p[3];
        TexCoord uv[3];
        const std::size_t entry = poly * cache.verts_per_poly;
        for (std::size_t c = 0; c < 3; ++c) {
            const float* position = positions.data() + (entry + c) * 3;
            p[c].set(position[0], position[1], position[2]);
            uv[c] = {texcoords[(entry + c) * 2], texcoords[(entry + c) * 2 + 1]};
        }
        cVector3D tangent;
        __tarn_find_tangent_from_tri(tangent, p, uv);
        return tangent;
    }
};

bool same(double expected, float value) {
    return std::isnan(expected) ? std::isnan(value) : static_cast<float>(expected) == value;
}

void expect_like_the_flat_function(const Mesh& mesh) {
    const std::size_t corners = mesh.cache.verts_per_poly;
    for (std::size_t poly = 0; poly < mesh.cache.poly_count; ++poly) {
        const cVector3D expected = mesh.expected(poly);
        for (std::size_t c = 0; c < corners; ++c) {
            const float* tangent = mesh.tangents.data() + (poly * corners + c) * 3;
            ASSERT_TRUE(same(expected.x, tangent[0]) && same(expected.y, tangent[1]) &&
                        same(expected.z, tangent[2]))
                << "corner " << c << " of polygon " << poly;
        }
    }
    EXPECT_EQ(UNTOUCHED, mesh.tangents.back());
}

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
        {"equal coordinates",
         {{0, 0, 0}, {0, 4, 0}, {0, 0, 4}},
         {{2, 2}, {2, 2}, {2, 2}},
         {1, 0, 0}},
        {"just degenerate",
         {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}},
         {{0, 0}, {0.0000999, 0}, {0, 1}},
         {1, 0, 0}},
        {"just not degenerate",
         {{0, 0, 0}, {0, 1, 0}, {0, 0, 1}},
         {{0, 0}, {0.0001001, 0}, {0, 1}},
         {0, 1, 0}},
        {"no extent", {{5, 5, 5}, {5, 5, 5}, {5, 5, 5}}, {{0, 0}, {1, 0}, {0, 1}}, {0, 0, 0}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        cVector3D tangent(9, 9, 9);
        __tarn_find_tangent_from_tri(tangent, row.positions, row.texcoords);
        EXPECT_EQ(row.expected.x, tangent.x);
        EXPECT_EQ(row.expected.y, tangent.y);
        EXPECT_EQ(row.expected.z, tangent.z);
    }
}

TEST(CacheTangents, EqualTheFlatFunction) {
    constexpr float edges[] = {0.0F,
                               -0.0F,
                               1.0F,
                               0.01F,
                               0.0099F,
                               1.0e-30F,
                               1.0e38F,
                               std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()};
    std::mt19937 random(3);
    std::uniform_real_distribution<float> spread(-2, 2);
    const auto next = [&] {
        return random() % 8 == 0 ? edges[random() % std::size(edges)] : spread(random);
    };
    for (const std::uint32_t polys : {1U, 3U, 4U, 5U, 63U, 64U, 65U, 1000U}) {
        for (const std::uint32_t corners : {3U, 4U, 7U}) {
            SCOPED_TRACE(testing::Message() << polys << " polygons of " << corners);
            Mesh mesh(polys, corners);
            std::generate(mesh.positions.begin(), mesh.positions.end(), next);
            std::generate(mesh.texcoords.begin(), mesh.texcoords.end(), next);
            __mGraphics_render_cache_calc_tangents(&mesh.cache);
            expect_like_the_flat_function(mesh);
        }
    }
}

TEST(CacheTangents, LeaveUnfitCachesAlone) {
    Mesh lines(4, 2);
    Mesh empty(0, 3);
    Mesh untextured(4, 3);
    untextured.cache.texcoords = nullptr;
    for (Mesh* mesh : {&lines, &empty, &untextured}) {
        __mGraphics_render_cache_calc_tangents(&mesh->cache);
        EXPECT_THAT(mesh->tangents, Each(UNTOUCHED));
        mesh->cache.tangents = nullptr;
        __mGraphics_render_cache_calc_tangents(&mesh->cache);
    }
}
