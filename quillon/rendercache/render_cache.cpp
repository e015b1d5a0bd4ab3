// SPDX-License-Identifier: MIT
#include "quillon/rendercache/render_cache.h"

#include "quillon/platform/memory.h"
#include "quillon/simd/stores.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

using namespace quillon;
using TexCoord = cVector2D<double>;
using simd::CachedStores;
using simd::StreamingStores;

namespace quillon {
namespace {

// From this many corners on, an unrolled cache exceeds a processor's, and streaming pays
// (bench_rendercache, verts and polys).
constexpr std::size_t STREAM_FROM = std::size_t{1} << 17;

// Sources in corner order are read side by side in runs of this many corners: that keeps the
// prefetchers busy and writes whole cache lines to every array.
// Indexed sources are read one after the other, since scattered reads need the whole cache.
constexpr std::size_t RUN = 16;

// Four entries fill whole stores; eight keep more loads in flight.
constexpr std::size_t GROUP = 8;

template <typename Source>
inline constexpr std::size_t WIDTH = 3;
template <>
inline constexpr std::size_t WIDTH<TexCoord> = 2;
template <>
inline constexpr std::size_t WIDTH<cColor> = 4;

void flatten(const cVector3D& vector, float* entry) {
    entry[0] = static_cast<float>(vector.x);
    entry[1] = static_cast<float>(vector.y);
    entry[2] = static_cast<float>(vector.z);
}

void flatten(const TexCoord& vector, float* entry) {
    entry[0] = static_cast<float>(vector.x);
    entry[1] = static_cast<float>(vector.y);
}

void flatten(const cColor& color, float* entry) {
    entry[0] = color.r;
    entry[1] = color.g;
    entry[2] = color.b;
    entry[3] = color.a;
}

std::size_t corner_count(const cRenderCache& cache) {
    return std::size_t{cache.poly_count} * cache.verts_per_poly;
}

// The arrays in field order, with the floats of one entry.
struct Array {
    float* cRenderCache::*pointer;
    std::size_t width;
};

constexpr Array ARRAYS[] = {{&cRenderCache::positions, 3},
                            {&cRenderCache::normals, 3},
                            {&cRenderCache::tangents, 3},
                            {&cRenderCache::texcoords, 2},
                            {&cRenderCache::colors, 4}};

std::unique_ptr<float[]> allocate(bool wanted, std::uint64_t corners, std::size_t width) {
    constexpr std::uint64_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
    if (!wanted)
        return nullptr;
    if (corners > most / width)
        throw std::bad_array_new_length();
    const std::size_t length = static_cast<std::size_t>(corners) * width;
    auto array = std::make_unique_for_overwrite<float[]>(length);
    platform::prefer_huge_pages(array.get(), length * sizeof(float));
    return array;
}

// The element of a source that a corner takes.
struct InOrder {
    std::size_t operator()(std::size_t corner) const { return corner; }
};

struct ByIndex {
    const std::uint32_t* indices;

    std::size_t operator()(std::size_t corner) const { return indices[corner]; }
};

struct AlwaysFirst {
    std::size_t operator()(std::size_t) const { return 0; }
};

// Writes the entries of the corners from `first` up to `end`.
template <typename Stores, typename Source, typename Element>
void unroll_by(float* array, const Source* source, Element element, std::size_t first,
               std::size_t end) {
    constexpr std::size_t width = WIDTH<Source>;
    const auto flatten_one = [=](std::size_t corner) {
        flatten(source[element(corner)], array + corner * width);
    };

    std::size_t corner = first;
    for (; corner < end && !simd::is_store_aligned(array + corner * width); ++corner)
        flatten_one(corner);
    for (; end - corner >= GROUP; corner += GROUP) {
        alignas(simd::STORE_ALIGNMENT) float group[GROUP * width];
        for (std::size_t i = 0; i < GROUP; ++i)
            flatten(source[element(corner + i)], group + i * width);
        for (std::size_t i = 0; i < GROUP * width; i += 4)
            Stores::put(array + corner * width + i, group + i);
    }
    for (; corner < end; ++corner)
        flatten_one(corner);
}

// The same where both arrays exist, by the stores that suit a cache of `total` corners.
template <typename Source, typename Element>
void unroll(float* array, const Source* source, Element element, std::size_t first, std::size_t end,
            std::size_t total) {
    if (array == nullptr || source == nullptr)
        return;
    if (total >= STREAM_FROM)
        unroll_by<StreamingStores>(array, source, element, first, end);
    else
        unroll_by<CachedStores>(array, source, element, first, end);
}

// Called once before an array is filled.
template <typename Source>
void make_resident(float* array, const Source* source, std::size_t corners) {
    if (array != nullptr && source != nullptr)
        platform::make_resident(array, corners * WIDTH<Source> * sizeof(float));
}

template <typename Source>
void unroll_indexed(const cRenderCache& cache, float* array, const Source* source,
                    const std::uint32_t* indices) {
    const std::size_t corners = corner_count(cache);
    const bool by_index = cache.verts_per_poly <= 4;
    if (by_index && indices == nullptr)
        return;
    make_resident(array, source, corners);
    if (by_index)
        unroll(array, source, ByIndex{indices}, 0, corners, corners);
    else
        unroll(array, source, AlwaysFirst{}, 0, corners, corners);
}

} // namespace
} // namespace quillon

cRenderCache* __mGraphics_create_render_cache(std::uint32_t poly_count,
                                              std::uint32_t verts_per_poly, bool texcoords,
                                              bool normals, bool tangents, bool colors) {
    const std::uint64_t corners = std::uint64_t{poly_count} * verts_per_poly;
    auto position_array = allocate(true, corners, 3);
    auto normal_array = allocate(normals, corners, 3);
    auto tangent_array = allocate(tangents, corners, 3);
    auto texcoord_array = allocate(texcoords, corners, 2);
    auto color_array = allocate(colors, corners, 4);
    return new cRenderCache{position_array.release(),
                            normal_array.release(),
                            tangent_array.release(),
                            texcoord_array.release(),
                            color_array.release(),
                            poly_count,
                            verts_per_poly};
}

void __mGraphics_modify_render_cache_from_verts(cRenderCache* cache, const cVector3D* positions,
                                                const TexCoord* texcoords, const cVector3D* normals,
                                                const cColor* colors) {
    if (cache == nullptr)
        return;
    const std::size_t corners = corner_count(*cache);
    make_resident(cache->positions, positions, corners);
    make_resident(cache->normals, normals, corners);
    make_resident(cache->texcoords, texcoords, corners);
    make_resident(cache->colors, colors, corners);
    for (std::size_t first = 0; first < corners; first += RUN) {
        const std::size_t end = std::min(first + RUN, corners);
        unroll(cache->positions, positions, InOrder{}, first, end, corners);
        unroll(cache->normals, normals, InOrder{}, first, end, corners);
        unroll(cache->texcoords, texcoords, InOrder{}, first, end, corners);
        unroll(cache->colors, colors, InOrder{}, first, end, corners);
    }
    simd::finish_streaming();
}

void __mGraphics_modify_render_cache_from_polys(cRenderCache* cache, const cVector3D* positions,
                                                const TexCoord* texcoords, const cVector3D* normals,
                                                const cColor* colors,
                                                const std::uint32_t* position_indices,
                                                const std::uint32_t* texcoord_indices,
                                                const std::uint32_t* normal_indices,
                                                const std::uint32_t* color_indices) {
    if (cache == nullptr)
        return;
    unroll_indexed(*cache, cache->positions, positions, position_indices);
    unroll_indexed(*cache, cache->normals, normals, normal_indices);
    unroll_indexed(*cache, cache->texcoords, texcoords, texcoord_indices);
    unroll_indexed(*cache, cache->colors, colors, color_indices);
    simd::finish_streaming();
}

void __mGraphics_copy_render_cache(void* /*context*/, cRenderCache* destination,
                                   const cRenderCache* source) {
    if (destination == nullptr || source == nullptr)
        return;
    for (const auto& [pointer, width] : ARRAYS) {
        float* to = destination->*pointer;
        const float* from = source->*pointer;
        if (to != nullptr && from != nullptr)
            std::memmove(to, from, corner_count(*source) * width * sizeof(float));
    }
}

void __mGraphics_render_cache_cleanup(cRenderCache* cache) {
    if (cache == nullptr)
        return;
    for (const Array& array : ARRAYS) {
        delete[](cache->*array.pointer);
        cache->*array.pointer = nullptr;
    }
}
