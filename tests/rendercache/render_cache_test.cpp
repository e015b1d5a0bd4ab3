// SPDX-License-Identifier: MIT
#include "quillon/rendercache/render_cache.h"

#include "quillon/appearance/color_names.h"
#include "quillon/comfort.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

using namespace quillon;
using testing::Each;
using testing::ElementsAre;

namespace {

constexpr float UNTOUCHED = -77.0F;

using Cache = RenderCache;

std::vector<float> floats(const float* array, std::size_t count) {
    return {array, array + count};
}

// Values that 32 bits have to round, different for every element and component.
struct Sources {
    std::vector<cVector3D> positions;
    std::vector<cVector2D<double>> texcoords;
    std::vector<cVector3D> normals;
    std::vector<cColor> colors;

    explicit Sources(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const double v = static_cast<double>(i) + 0.1;
            positions.emplace_back(v, v / 3, -v / 7);
            texcoords.emplace_back(v / 11, v / 13);
            normals.emplace_back(v / 17, v / 19, v / 23);
            colors.emplace_back(static_cast<float>(v), 2.0F, -3.0F, static_cast<float>(-v));
        }
    }

    void fill(cRenderCache& cache) const {
        __mGraphics_modify_render_cache_from_verts(&cache, positions.data(), texcoords.data(),
                                                   normals.data(), colors.data());
    }

    // Without indices every corner takes the first element.
    void fill(cRenderCache& cache, const std::vector<std::uint32_t> (&indices)[4]) const {
        const auto data = [&](int i) { return indices[i].empty() ? nullptr : indices[i].data(); };
        __mGraphics_modify_render_cache_from_polys(&cache, positions.data(), texcoords.data(),
                                                   normals.data(), colors.data(), data(0), data(1),
                                                   data(2), data(3));
    }
};

// Entry i against the elements of the four attributes: position, texcoord, normal, colour.
void expect_entry(const cRenderCache& cache, std::size_t i, const Sources& sources, std::size_t p,
                  std::size_t t, std::size_t n, std::size_t c) {
    const auto expect = [i](const auto& source, const float* array, int components) {
        for (int k = 0; k < components; ++k)
            EXPECT_EQ(static_cast<float>(source[k]), array[i * components + k]);
    };
    expect(sources.positions[p], cache.positions, 3);
    expect(sources.texcoords[t], cache.texcoords, 2);
    expect(sources.normals[n], cache.normals, 3);
    expect(sources.colors[c], cache.colors, 4);
}

} // namespace

TEST(RenderCache, HoldsOnlyWhatIsAskedForUntilCleanup) {
    for (const unsigned asked : {0b0000U, 0b0001U, 0b0010U, 0b0100U, 0b1000U}) {
        const auto is_asked = [=](int flag) { return (asked >> flag & 1) != 0; };
        const Cache cache(__mGraphics_create_render_cache(2, 4, is_asked(0), is_asked(1),
                                                          is_asked(2), is_asked(3)));
        const auto held = [&] {
            return std::vector<bool>{cache->positions != nullptr, cache->texcoords != nullptr,
                                     cache->normals != nullptr, cache->tangents != nullptr,
                                     cache->colors != nullptr};
        };
        EXPECT_THAT(held(), ElementsAre(true, is_asked(0), is_asked(1), is_asked(2), is_asked(3)));
        __mGraphics_render_cache_cleanup(cache.get());
        __mGraphics_render_cache_cleanup(cache.get());
        EXPECT_THAT(held(), Each(false));
        EXPECT_EQ(2U, cache->poly_count);
    }
}

TEST(RenderCache, CountsBeyondMemoryFailAsTheAllocatorDoes) {
    constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    // The product with 2^30 alone fits; its entries of four floats would wrap to a short array.
    for (const std::uint32_t corners : {most, 1U << 30})
        EXPECT_THROW(__mGraphics_create_render_cache(most, corners, true, true, true, true),
                     std::bad_alloc);
}

// Sizes on both sides of a group, a run, and the limit of streaming, for all numbers of corners
// that have indices, and for five, which all take the first element; arrays at every alignment of a
// float.
TEST(RenderCache, UnrollsVertsAndPolysLikeThePlainRule) {
    constexpr std::uint32_t sizes[][2] = {{1, 3},  {1, 4}, {21, 3},    {5, 1},
                                          {11, 2}, {7, 5}, {50'000, 3}};
    for (const auto& [polys, width] : sizes) {
        for (const std::size_t shift : {0U, 1U, 2U, 3U}) {
            SCOPED_TRACE(testing::Message()
                         << polys << " of " << width << ", shifted by " << shift);
            const std::size_t corners = std::size_t{polys} * width;
            const Sources sources(corners);
            std::vector<float> memory(corners * 12 + 32, UNTOUCHED);
            cRenderCache cache{};
            cache.positions = memory.data() + shift;
            cache.normals = cache.positions + corners * 3 + 1;
            cache.texcoords = cache.normals + corners * 3 + 1;
            cache.colors = cache.texcoords + corners * 2 + 1;
            cache.poly_count = polys;
            cache.verts_per_poly = width;
            sources.fill(cache);
            for (std::size_t i = 0; i < corners; ++i)
                expect_entry(cache, i, sources, i, i, i, i);

            std::vector<std::uint32_t> order[4];
            for (std::uint32_t attribute = 0; attribute < 4; ++attribute)
                for (std::size_t i = 0; i < corners && width <= 4; ++i)
                    order[attribute].push_back(
                        static_cast<std::uint32_t>((i * 40'503 + attribute * 7) % corners));
            sources.fill(cache, order);
            const auto at = [&](int attribute, std::size_t i) {
                return order[attribute].empty() ? 0 : order[attribute][i];
            };
            for (std::size_t i = 0; i < corners; ++i)
                expect_entry(cache, i, sources, at(0, i), at(1, i), at(2, i), at(3, i));
            for (const float* gap : {cache.normals - 1, cache.texcoords - 1, cache.colors - 1,
                                     cache.colors + corners * 4})
                EXPECT_EQ(UNTOUCHED, *gap);
        }
    }
}

TEST(RenderCache, SkipsWhatIsMissing) {
    const cVector3D positions[] = {{1.0e-50, -1.0, 16777217.0}};
    const Cache cache(__mGraphics_create_render_cache(1, 1, false, true, false, false));
    std::fill_n(cache->positions, 3, UNTOUCHED);
    std::fill_n(cache->normals, 3, UNTOUCHED);
    __mGraphics_modify_render_cache_from_polys(cache.get(), positions, nullptr, positions, nullptr,
                                               nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(floats(cache->positions, 3), Each(UNTOUCHED));
    __mGraphics_modify_render_cache_from_verts(cache.get(), positions, nullptr, nullptr, &WHITE);
    EXPECT_THAT(floats(cache->positions, 3), ElementsAre(0, -1, 16777216));
    EXPECT_THAT(floats(cache->normals, 3), Each(UNTOUCHED));
}

TEST(RenderCache, CopiesWhatTheDestinationHolds) {
    const Sources sources(6);
    const Cache full(__mGraphics_create_render_cache(2, 3, true, true, true, true));
    sources.fill(*full);
    std::fill_n(full->tangents, 18, 4.0F);
    const Cache larger(__mGraphics_create_render_cache(3, 4, true, true, true, true));
    __mGraphics_copy_render_cache(nullptr, larger.get(), full.get());
    for (float* cRenderCache::*array :
         {&cRenderCache::positions, &cRenderCache::normals, &cRenderCache::tangents})
        EXPECT_EQ(floats((*full).*array, 18), floats((*larger).*array, 18));
    EXPECT_EQ(floats(full->texcoords, 12), floats(larger->texcoords, 12));
    EXPECT_EQ(floats(full->colors, 24), floats(larger->colors, 24));
    EXPECT_EQ(3U, larger->poly_count);
    EXPECT_EQ(4U, larger->verts_per_poly);

    const Cache bare(__mGraphics_create_render_cache(2, 3, false, false, false, false));
    __mGraphics_copy_render_cache(nullptr, bare.get(), full.get());
    EXPECT_EQ(floats(full->positions, 18), floats(bare->positions, 18));
    std::fill_n(bare->positions, 18, 5.0F);
    __mGraphics_copy_render_cache(nullptr, full.get(), nullptr);
    __mGraphics_copy_render_cache(nullptr, full.get(), bare.get());
    EXPECT_THAT(floats(full->positions, 18), Each(5));
    EXPECT_THAT(floats(full->tangents, 18), Each(4));
}
