// SPDX-License-Identifier: MIT
// Flat 32-bit arrays for drawing, converted from vectors and colours.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/export.h"
#include "quillon/math/vector.h"

#include <cstdint>

namespace quillon {

// One array for each attribute, with one entry for every corner of every polygon.
//
// Corner c of polygon p has the flat index p * verts_per_poly + c in every array.
// An array is null if it was not asked for. The cache owns its arrays, each from new[].
// The field order is the contract with the renderer.
struct cRenderCache {
    float* positions;             // 3 floats for each corner: x, y, z
    float* normals;               // 3 floats: x, y, z
    float* tangents;              // 3 floats: x, y, z
    float* texcoords;             // 2 floats: x, y
    float* colors;                // 4 floats: red, green, blue, alpha
    std::uint32_t poly_count;     // polygons
    std::uint32_t verts_per_poly; // corners of each
};

} // namespace quillon

extern "C" {

// A new cache with positions and the arrays that are asked for; their contents are undefined.
//
// The caller frees the arrays with __mGraphics_render_cache_cleanup, then the record with delete.
// Throws std::bad_alloc, with nothing left allocated, where memory runs out or an array is too long
// to be addressed.
QUILLON_API quillon::cRenderCache* __mGraphics_create_render_cache(std::uint32_t poly_count,
                                                                   std::uint32_t verts_per_poly,
                                                                   bool texcoords, bool normals,
                                                                   bool tangents, bool colors);

// Fills the cache from sources in corner order: entry i from element i, rounded to 32 bits.
//
// Each source has poly_count * verts_per_poly elements, or is null and its array is unchanged.
// Tangents are unchanged. An attribute whose array the cache lacks is skipped.
QUILLON_API void __mGraphics_modify_render_cache_from_verts(
    quillon::cRenderCache* cache, const quillon::cVector3D* positions,
    const quillon::cVector2D<double>* texcoords, const quillon::cVector3D* normals,
    const quillon::cColor* colors);

// Fills the cache from indexed sources: entry i from the element at index i of the attribute's own
// index array, rounded to 32 bits.
//
// An index array has verts_per_poly indices for each polygon, for 1 to 4 of them. With any other
// verts_per_poly every corner takes element 0, and no index array is read.
// A null source leaves its array unchanged.
// An attribute whose array the cache lacks, or whose index array is null, is skipped.
QUILLON_API void __mGraphics_modify_render_cache_from_polys(
    quillon::cRenderCache* cache, const quillon::cVector3D* positions,
    const quillon::cVector2D<double>* texcoords, const quillon::cVector3D* normals,
    const quillon::cColor* colors, const std::uint32_t* position_indices,
    const std::uint32_t* texcoord_indices, const std::uint32_t* normal_indices,
    const std::uint32_t* color_indices);

// Copies the source's entries into every array that the destination holds.
//
// The destination's arrays are at least as long as the source's; its counts are unchanged.
// A null source changes nothing. An array that the source lacks is skipped. `context` is not read.
QUILLON_API void __mGraphics_copy_render_cache(void* context, quillon::cRenderCache* destination,
                                               const quillon::cRenderCache* source);

// Frees the arrays and sets them to null; the counts and the record stay. A second call does
// nothing.
QUILLON_API void __mGraphics_render_cache_cleanup(quillon::cRenderCache* cache);
}
