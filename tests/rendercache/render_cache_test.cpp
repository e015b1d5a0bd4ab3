#include "quillon/rendercache/render_cache.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <vector>

using quillon::cColor;
using quillon::cRenderCache;
using quillon::cVector3D;
using testing::Each;
using testing::ElementsAre;
using TexCoord = quillon::cVector2D<double>;

namespace {

constexpr float UNTOUCHED = -77.0F;

struct Cleanup {
    void operator()(cRenderCache* cache) const {
        __mGraphics_render_cache_cleanup(cache);
        delete cache;
    }
};

using Cache = std::unique_ptr<cRenderCache, Cleanup>;

Cache make_cache(std::uint32_t polys, std::uint32_t corners) {
    Cache cache(__mGraphics_create_render_cache(polys, corners, true, true, true, true));
    const std::size_t entries = std::size_t{polys} * corners;
    for (float* array : {cache->positions, cache->normals, cache->tangents})
        std::fill_n(array, entries * 3, UNTOUCHED);
    std::fill_n(cache->texcoords, entries * 2, UNTOUCHED);
    std::fill_n(cache->colors, entries * 4, UNTOUCHED);
    return cache;
}

std::vector<float> floats(const float* array, std::size_t count) {
    return {array, array + count};
}

// Sources of one length each, with values that 32 bits have to round.
struct Sources {
    std::vector<cVector3D> positions;
    std::vector<TexCoord> texcoords;
    std::vector<cVector3D> normals;
    std::vector<cColor> colors;

    explicit Sources(std::size_t count) {
        std::mt19937 random(7);
        std::uniform_real_distribution<double> spread(-1000.0, 1000.0);
        const auto next = [&] { return spread(random); };
        const auto component = [&] { return static_cast<float>(spread(random)); };
        for (std::size_t i = 0; i < count; ++i) {
            positions.emplace_back(next(), next(), next());
            texcoords.emplace_back(next(), next());
            normals.emplace_back(next(), next(), next());
            colors.emplace_back(component(), component(), component(), component());
        }
    }
};

using Indices = std::vector<std::uint32_t>;

Indices random_indices(std::size_t count, std::uint32_t elements, unsigned seed) {
    std::mt19937 random(seed);
    Indices indices(count);
    for (auto& index : indices)
        index = static_cast<std::uint32_t>(random() % elements);
    return indices;
}

void expect_vector(const cVector3D& vector, const float* entry) {
    EXPECT_EQ(static_cast<float>(vector.x), entry[0]);
    EXPECT_EQ(static_cast<float>(vector.y), entry[1]);
    EXPECT_EQ(static_cast<float>(vector.z), entry[2]);
}

void expect_entry(const cRenderCache& cache, std::size_t i, const Sources& sources,
                  std::size_t position, std::size_t texcoord, std::size_t normal,
                  std::size_t color) {
    expect_vector(sources.positions[position], cache.positions + i * 3);
    expect_vector(sources.normals[normal], cache.normals + i * 3);
    EXPECT_EQ(static_cast<float>(sources.texcoords[texcoord].x), cache.texcoords[i * 2]);
    EXPECT_EQ(static_cast<float>(sources.texcoords[texcoord].y), cache.texcoords[i * 2 + 1]);
    EXPECT_EQ(0, std::memcmp(&sources.colors[color].r, cache.colors + i * 4, 4 * sizeof(float)));
}

} // namespace

TEST(RenderCache, HoldsOnlyWhatIsAskedFor) {
    const Cache bare(__mGraphics_create_render_cache(2, 3, false, false, false, false));
    EXPECT_NE(nullptr, bare->positions);
    EXPECT_EQ(nullptr, bare->normals);
    EXPECT_EQ(nullptr, bare->tangents);
    EXPECT_EQ(nullptr, bare->texcoords);
    EXPECT_EQ(nullptr, bare->colors);
    EXPECT_EQ(2U, bare->poly_count);
    EXPECT_EQ(3U, bare->verts_per_poly);

    const Cache textured(__mGraphics_create_render_cache(0, 4, true, false, false, false));
    EXPECT_NE(nullptr, textured->texcoords);
    EXPECT_EQ(nullptr, textured->normals);
}

TEST(RenderCache, CountsBeyondMemoryFailAsTheAllocatorDoes) {
    constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    // Its four-float entries alone would wrap to a short array.
    for (const std::uint32_t corners : {most, 1U << 30})
        EXPECT_THROW(__mGraphics_create_render_cache(most, corners, true, true, true, true),
                     std::bad_alloc);
}

// Sizes on both sides of a group of four, of a run, and of where the stores go past the cache;
// shifted arrays are as odd as a float's address can be.
TEST(RenderCache, UnrollsVertsAndPolysLikeThePlainRule) {
    for (const std::uint32_t polys : {1U, 2U, 21U, 22U, 43U, 50'000U}) {
        for (const std::size_t shift : {0U, 1U, 2U, 3U}) {
            SCOPED_TRACE(testing::Message() << polys << " triangles, shifted by " << shift);
            const std::size_t corners = std::size_t{polys} * 3;
            const Sources sources(corners);
            std::vector<float> memory(corners * 12 + 32, UNTOUCHED);
            cRenderCache cache{};
            cache.positions = memory.data() + shift;
            cache.normals = cache.positions + corners * 3 + 1;
            cache.texcoords = cache.normals + corners * 3 + 1;
            cache.colors = cache.texcoords + corners * 2 + 1;
            cache.poly_count = polys;
            cache.verts_per_poly = 3;
            __mGraphics_modify_render_cache_from_verts(
                &cache, sources.positions.data(), sources.texcoords.data(), sources.normals.data(),
                sources.colors.data());
            for (std::size_t i = 0; i < corners; ++i)
                expect_entry(cache, i, sources, i, i, i, i);

            const auto elements = static_cast<std::uint32_t>(corners);
            const Indices p = random_indices(corners, elements, 1);
            const Indices t = random_indices(corners, elements, 2);
            const Indices n = random_indices(corners, elements, 3);
            const Indices c = random_indices(corners, elements, 4);
            __mGraphics_modify_render_cache_from_polys(
                &cache, sources.positions.data(), sources.texcoords.data(), sources.normals.data(),
                sources.colors.data(), p.data(), t.data(), n.data(), c.data());
            for (std::size_t i = 0; i < corners; ++i)
                expect_entry(cache, i, sources, p[i], t[i], n[i], c[i]);
            for (const float* gap : {cache.normals - 1, cache.texcoords - 1, cache.colors - 1,
                                     cache.colors + corners * 4})
                EXPECT_EQ(UNTOUCHED, *gap);
        }
    }
}

TEST(RenderCache, TinyValuesRoundToZeroAndColorsAreNotClamped) {
    const Cache cache = make_cache(1, 1);
    const cVector3D position(1.0e-50, -1.0, 16777217.0);
    const cColor color(-2, 7, 0.5F, 1);
    __mGraphics_modify_render_cache_from_verts(cache.get(), &position, nullptr, nullptr, &color);
    EXPECT_THAT(floats(cache->positions, 3), ElementsAre(0, -1, 16777216));
    EXPECT_THAT(floats(cache->colors, 4), ElementsAre(-2, 7, 0.5F, 1));
    EXPECT_THAT(floats(cache->normals, 3), Each(UNTOUCHED));
    EXPECT_THAT(floats(cache->texcoords, 2), Each(UNTOUCHED));
    EXPECT_THAT(floats(cache->tangents, 3), Each(UNTOUCHED));
}

TEST(RenderCache, FiveCornersTakeTheFirstElement) {
    const Sources sources(2);
    const Cache cache = make_cache(3, 5);
    __mGraphics_modify_render_cache_from_polys(
        cache.get(), sources.positions.data(), sources.texcoords.data(), sources.normals.data(),
        sources.colors.data(), nullptr, nullptr, nullptr, nullptr);
    for (std::size_t i = 0; i < 15; ++i)
        expect_entry(*cache, i, sources, 0, 0, 0, 0);
}

TEST(RenderCache, SkipsWhatIsMissing) {
    const Sources sources(4);
    const Cache bare(__mGraphics_create_render_cache(1, 4, false, false, false, false));
    std::fill_n(bare->positions, 12, UNTOUCHED);
    __mGraphics_modify_render_cache_from_polys(
        bare.get(), sources.positions.data(), sources.texcoords.data(), sources.normals.data(),
        sources.colors.data(), nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(floats(bare->positions, 12), Each(UNTOUCHED));

    __mGraphics_modify_render_cache_from_verts(bare.get(), sources.positions.data(),
                                               sources.texcoords.data(), sources.normals.data(),
                                               sources.colors.data());
    expect_vector(sources.positions[3], bare->positions + 9);
    __mGraphics_modify_render_cache_from_verts(nullptr, sources.positions.data(), nullptr, nullptr,
                                               nullptr);
}

TEST(RenderCache, CopiesWhatTheDestinationHolds) {
    const Sources sources(6);
    const Cache full = make_cache(2, 3);
    __mGraphics_modify_render_cache_from_verts(full.get(), sources.positions.data(),
                                               sources.texcoords.data(), sources.normals.data(),
                                               sources.colors.data());
    const Cache plain(__mGraphics_create_render_cache(3, 4, true, true, true, false));
    __mGraphics_copy_render_cache(nullptr, plain.get(), full.get());
    EXPECT_EQ(floats(full->positions, 18), floats(plain->positions, 18));
    EXPECT_EQ(floats(full->normals, 18), floats(plain->normals, 18));
    EXPECT_EQ(floats(full->tangents, 18), floats(plain->tangents, 18));
    EXPECT_EQ(floats(full->texcoords, 12), floats(plain->texcoords, 12));
    EXPECT_EQ(nullptr, plain->colors);
    EXPECT_EQ(3U, plain->poly_count);
    EXPECT_EQ(4U, plain->verts_per_poly);

    const Cache colored = make_cache(2, 3);
    __mGraphics_copy_render_cache(nullptr, colored.get(), nullptr);
    EXPECT_THAT(floats(colored->positions, 18), Each(UNTOUCHED));
    const Cache bare(__mGraphics_create_render_cache(2, 3, false, false, false, false));
    std::copy_n(full->positions, 18, bare->positions);
    __mGraphics_copy_render_cache(nullptr, colored.get(), bare.get());
    EXPECT_EQ(floats(full->positions, 18), floats(colored->positions, 18));
    EXPECT_THAT(floats(colored->colors, 24), Each(UNTOUCHED));
}

TEST(RenderCache, CleanupTwiceIsHarmless) {
    const Cache cache = make_cache(2, 3);
    for (int i = 0; i < 2; ++i) {
        __mGraphics_render_cache_cleanup(cache.get());
        for (const float* array :
             {cache->positions, cache->normals, cache->tangents, cache->texcoords, cache->colors})
            EXPECT_EQ(nullptr, array);
    }
    EXPECT_EQ(2U, cache->poly_count);
}
