// SPDX-License-Identifier: MIT
// Unrolling and tangents on a million corners, beside a plain version and the bare memory traffic.
//
// Rows that begin with "first" make, fill and free a cache, whose pages are new each time, as a
// host does when it loads a model. The others fill one cache again and again.
#include "quillon/comfort.h"
#include "quillon/rendercache/tangents.h"
#include "quillon/simd/stores.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <random>
#include <vector>

#include <malloc.h>
#include <unistd.h>

using quillon::cColor;
using quillon::cRenderCache;
using quillon::cVector3D;
using TexCoord = quillon::cVector2D<double>;

namespace {

constexpr std::uint32_t CORNERS_PER_QUAD = 4;
constexpr std::uint32_t QUADS = 250'000;
constexpr std::uint32_t CORNERS = QUADS * CORNERS_PER_QUAD;
constexpr std::uint32_t GRID_WIDTH = 500;

struct Model {
    std::vector<cVector3D> positions;
    std::vector<TexCoord> texcoords;
    std::vector<cVector3D> normals;
    std::vector<cColor> colors;
    std::array<std::vector<std::uint32_t>, 4> indices;
    quillon::RenderCache cache;

    explicit Model(std::size_t elements, std::uint32_t corners_per_poly = CORNERS_PER_QUAD)
        : cache(__mGraphics_create_render_cache(CORNERS / corners_per_poly, corners_per_poly, true,
                                                true, true, true)) {
        std::mt19937 random(1);
        std::uniform_real_distribution<double> spread(-1.0, 1.0);
        for (std::size_t i = 0; i < elements; ++i) {
            positions.emplace_back(spread(random), spread(random), spread(random));
            texcoords.emplace_back(spread(random), spread(random));
            normals.emplace_back(spread(random), spread(random), spread(random));
            colors.emplace_back(0.25F, 0.5F, 0.75F, 1.0F);
        }
    }

    void index(const std::vector<std::uint32_t>& order) {
        indices.fill(order);
        __mGraphics_modify_render_cache_from_polys(
            cache.get(), positions.data(), texcoords.data(), normals.data(), colors.data(),
            indices[0].data(), indices[1].data(), indices[2].data(), indices[3].data());
    }
};

Model& in_corner_order() {
    static Model model(CORNERS);
    return model;
}

// The quads of a grid, row by row, as exporters write them.
Model& in_grid_order() {
    static Model model = [] {
        Model grid(QUADS + GRID_WIDTH + 1);
        std::vector<std::uint32_t> order;
        for (std::uint32_t quad = 0; quad < QUADS; ++quad)
            for (const std::uint32_t step : {0U, 1U, GRID_WIDTH + 1, GRID_WIDTH})
                order.push_back(quad + step);
        grid.index(order);
        return grid;
    }();
    return model;
}

// The same grid as triangles, two for each quad.
Model& in_triangles() {
    static Model model = [] {
        constexpr std::uint32_t corners_per_quad = 6;
        Model grid(QUADS + GRID_WIDTH + 1, 3);
        std::vector<std::uint32_t> order;
        for (std::uint32_t quad = 0; quad <= CORNERS / corners_per_quad; ++quad)
            for (const std::uint32_t step :
                 {0U, 1U, GRID_WIDTH + 1, 0U, GRID_WIDTH + 1, GRID_WIDTH})
                order.push_back(quad + step);
        grid.index(order);
        return grid;
    }();
    return model;
}

Model& in_random_order() {
    static Model model = [] {
        Model scattered(QUADS);
        std::vector<std::uint32_t> order(CORNERS);
        std::mt19937 random(2);
        std::generate(order.begin(), order.end(), [&] { return random() % QUADS; });
        scattered.index(order);
        return scattered;
    }();
    return model;
}

void from_verts(const Model& model, cRenderCache& cache) {
    __mGraphics_modify_render_cache_from_verts(&cache, model.positions.data(),
                                               model.texcoords.data(), model.normals.data(),
                                               model.colors.data());
}

// Filled once; only the tangents are written again.
template <std::uint32_t corners_per_poly>
Model& in_polygons() {
    static Model model = [] {
        Model soup(CORNERS, corners_per_poly);
        from_verts(soup, *soup.cache);
        return soup;
    }();
    return model;
}

void plain_write(float* array, std::size_t i, const cVector3D& vector) {
    array[i * 3] = static_cast<float>(vector.x);
    array[i * 3 + 1] = static_cast<float>(vector.y);
    array[i * 3 + 2] = static_cast<float>(vector.z);
}

void plain_write(float* array, std::size_t i, const TexCoord& vector) {
    array[i * 2] = static_cast<float>(vector.x);
    array[i * 2 + 1] = static_cast<float>(vector.y);
}

void plain_write(float* array, std::size_t i, const cColor& color) {
    array[i * 4] = color.r;
    array[i * 4 + 1] = color.g;
    array[i * 4 + 2] = color.b;
    array[i * 4 + 3] = color.a;
}

// A plain version of the contract: polygon by polygon, corner by corner, attribute by attribute.
// `element(indices, poly, c)` is the element that corner c of a polygon takes.
template <typename Element>
[[gnu::noinline]] void plain_unroll(const cRenderCache* cache, const cVector3D* positions,
                                    const TexCoord* texcoords, const cVector3D* normals,
                                    const cColor* colors, const std::uint32_t* const* indices,
                                    Element element) {
    for (std::size_t poly = 0; poly < cache->poly_count; ++poly) {
        for (std::size_t c = 0; c < cache->verts_per_poly; ++c) {
            const std::size_t i = poly * cache->verts_per_poly + c;
            plain_write(cache->positions, i, positions[element(indices[0], poly, c)]);
            if (normals != nullptr)
                plain_write(cache->normals, i, normals[element(indices[2], poly, c)]);
            if (texcoords != nullptr)
                plain_write(cache->texcoords, i, texcoords[element(indices[1], poly, c)]);
            if (colors != nullptr)
                plain_write(cache->colors, i, colors[element(indices[3], poly, c)]);
        }
    }
}

template <typename Element>
void plain_unroll(const Model& model, const cRenderCache& cache, Element element) {
    const std::uint32_t* indices[] = {model.indices[0].data(), model.indices[1].data(),
                                      model.indices[2].data(), model.indices[3].data()};
    plain_unroll(&cache, model.positions.data(), model.texcoords.data(), model.normals.data(),
                 model.colors.data(), indices, element);
}

void plain_from_verts(const Model& model, cRenderCache& cache) {
    const std::size_t width = cache.verts_per_poly;
    plain_unroll(model, cache, [width](const std::uint32_t*, std::size_t poly, std::size_t c) {
        return poly * width + c;
    });
}

void plain_from_polys(const Model& model, cRenderCache& cache) {
    const std::size_t width = cache.verts_per_poly;
    plain_unroll(model, cache,
                 [width](const std::uint32_t* indices, std::size_t poly, std::size_t c) {
                     return width >= 1 && width <= 4 ? std::size_t{indices[poly * width + c]} : 0;
                 });
}

void from_polys(const Model& model, cRenderCache& cache) {
    __mGraphics_modify_render_cache_from_polys(
        &cache, model.positions.data(), model.texcoords.data(), model.normals.data(),
        model.colors.data(), model.indices[0].data(), model.indices[1].data(),
        model.indices[2].data(), model.indices[3].data());
}

// Fetches the cache line of an element and writes every byte of its entry: the traffic of a
// conversion without its arithmetic.
template <std::size_t width, typename Source>
void bare_entry(const Source& source, float* entry) {
    float first;
    std::memcpy(&first, static_cast<const void*>(&source), sizeof(first));
    std::fill_n(entry, width, first);
}

void bare_traffic(const Model& model, cRenderCache& cache) {
    for (std::size_t i = 0; i < CORNERS; ++i) {
        bare_entry<3>(model.positions[i], cache.positions + i * 3);
        bare_entry<3>(model.normals[i], cache.normals + i * 3);
        bare_entry<2>(model.texcoords[i], cache.texcoords + i * 2);
        bare_entry<4>(model.colors[i], cache.colors + i * 4);
    }
}

// The least that the grid costs, attribute by attribute: each line of the indices and of the
// elements is fetched once, and each entry written past the cache.
template <std::size_t width, typename Source>
void bare_grid_attribute(const std::vector<std::uint32_t>& indices,
                         const std::vector<Source>& sources, float* array) {
    for (std::size_t i = 0; i < CORNERS; i += CORNERS_PER_QUAD) {
        float index;
        float first;
        std::memcpy(&index, &indices[i], sizeof(index));
        std::memcpy(&first, static_cast<const void*>(&sources[i / CORNERS_PER_QUAD]),
                    sizeof(first));
        std::array<float, 4> four;
        four.fill(index + first);
        for (std::size_t to = 0; to < width * CORNERS_PER_QUAD; to += four.size())
            quillon::simd::StreamingStores::put(array + i * width + to, four.data());
    }
}

void bare_grid(const Model& model, cRenderCache& cache) {
    bare_grid_attribute<3>(model.indices[0], model.positions, cache.positions);
    bare_grid_attribute<3>(model.indices[2], model.normals, cache.normals);
    bare_grid_attribute<2>(model.indices[1], model.texcoords, cache.texcoords);
    bare_grid_attribute<4>(model.indices[3], model.colors, cache.colors);
    quillon::simd::finish_streaming();
}

// A plain version of the tangents: polygon by polygon through the flat function.
void plain_tangents(const Model& /*model*/, cRenderCache& cache) {
    for (std::size_t poly = 0; poly < cache.poly_count; ++poly) {
        const std::size_t entry = poly * cache.verts_per_poly;
        cVector3D p[3];
        TexCoord uv[3];
        for (std::size_t c = 0; c < 3; ++c) {
            const float* position = cache.positions + (entry + c) * 3;
            p[c].set(position[0], position[1], position[2]);
            uv[c] = {cache.texcoords[(entry + c) * 2], cache.texcoords[(entry + c) * 2 + 1]};
        }
        cVector3D tangent;
        __tarn_find_tangent_from_tri(tangent, p, uv);
        for (std::size_t c = 0; c < cache.verts_per_poly; ++c)
            plain_write(cache.tangents, entry + c, tangent);
    }
}

void tangents(const Model& /*model*/, cRenderCache& cache) {
    __mGraphics_render_cache_calc_tangents(&cache);
}

// All that a host does with a model that it has loaded.
void load(const Model& model, cRenderCache& cache) {
    from_polys(model, cache);
    tangents(model, cache);
}

void plain_load(const Model& model, cRenderCache& cache) {
    plain_from_polys(model, cache);
    plain_tangents(model, cache);
}

// What new pages cost without any work on them.
void touch_pages(const Model& /*model*/, cRenderCache& cache) {
    const std::size_t step = static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / sizeof(float);
    const auto touch = [step](float* array, std::size_t width) {
        for (std::size_t i = 0; i < CORNERS * width; i += step)
            array[i] = 1.0F;
    };
    touch(cache.positions, 3);
    touch(cache.normals, 3);
    touch(cache.texcoords, 2);
    touch(cache.colors, 4);
}

using Work = void(const Model&, cRenderCache&);

void run(benchmark::State& state, Work* work, Model& (*model)()) {
    const Model& subject = model();
    work(subject, *subject.cache); // its pages are there from now on
    for (auto _ : state) {
        work(subject, *subject.cache);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CORNERS);
}

quillon::RenderCache new_cache(std::uint32_t poly_count, std::uint32_t verts_per_poly) {
    return quillon::make_render_cache(
        poly_count, verts_per_poly,
        {.texcoords = true, .normals = true, .tangents = true, .colors = true});
}

// Nothing but the allocations.
quillon::RenderCache plain_cache(std::uint32_t poly_count, std::uint32_t verts_per_poly) {
    const std::size_t corners = std::size_t{poly_count} * verts_per_poly;
    return quillon::RenderCache(new cRenderCache{
        new float[corners * 3], new float[corners * 3], new float[corners * 3],
        new float[corners * 2], new float[corners * 4], poly_count, verts_per_poly});
}

void run_first(benchmark::State& state, decltype(new_cache)* make, Work* work, Model& (*model)()) {
    // Fixed, so that the allocator always asks the system for pages and never keeps any.
    mallopt(M_MMAP_THRESHOLD, 1 << 17);
    const Model& subject = model();
    for (auto _ : state) {
        const quillon::RenderCache cache =
            make(subject.cache->poly_count, subject.cache->verts_per_poly);
        work(subject, *cache);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CORNERS);
}

#define QUILLON_BENCH(name, work, model)                                                           \
    BENCHMARK_CAPTURE(run, name, work, model)->Unit(benchmark::kMillisecond)

QUILLON_BENCH(verts_bare, bare_traffic, in_corner_order);
QUILLON_BENCH(verts_plain, plain_from_verts, in_corner_order);
QUILLON_BENCH(verts_quillon, from_verts, in_corner_order);
QUILLON_BENCH(polys_grid_bare, bare_grid, in_grid_order);
QUILLON_BENCH(polys_grid_plain, plain_from_polys, in_grid_order);
QUILLON_BENCH(polys_grid_quillon, from_polys, in_grid_order);
QUILLON_BENCH(polys_triangles_plain, plain_from_polys, in_triangles);
QUILLON_BENCH(polys_triangles_quillon, from_polys, in_triangles);
QUILLON_BENCH(polys_random_plain, plain_from_polys, in_random_order);
QUILLON_BENCH(polys_random_quillon, from_polys, in_random_order);
QUILLON_BENCH(tangents_quads_plain, plain_tangents, in_polygons<4>);
QUILLON_BENCH(tangents_quads_quillon, tangents, in_polygons<4>);
QUILLON_BENCH(tangents_triangles_plain, plain_tangents, in_polygons<3>);
QUILLON_BENCH(tangents_triangles_quillon, tangents, in_polygons<3>);

#define QUILLON_BENCH_FIRST(name, make, work, model)                                               \
    BENCHMARK_CAPTURE(run_first, first_##name, make, work, model)->Unit(benchmark::kMillisecond)

QUILLON_BENCH_FIRST(touch, plain_cache, touch_pages, in_corner_order);
QUILLON_BENCH_FIRST(touch_quillon, new_cache, touch_pages, in_corner_order);
QUILLON_BENCH_FIRST(verts_plain, plain_cache, plain_from_verts, in_corner_order);
QUILLON_BENCH_FIRST(verts_quillon, new_cache, from_verts, in_corner_order);
QUILLON_BENCH_FIRST(polys_grid_plain, plain_cache, plain_from_polys, in_grid_order);
QUILLON_BENCH_FIRST(polys_grid_quillon, new_cache, from_polys, in_grid_order);
QUILLON_BENCH_FIRST(polys_triangles_plain, plain_cache, plain_from_polys, in_triangles);
QUILLON_BENCH_FIRST(polys_triangles_quillon, new_cache, from_polys, in_triangles);
QUILLON_BENCH_FIRST(load_triangles_plain, plain_cache, plain_load, in_triangles);
QUILLON_BENCH_FIRST(load_triangles_quillon, new_cache, load, in_triangles);

} // namespace
