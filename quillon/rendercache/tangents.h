// SPDX-License-Identifier: MIT
// Tangents along the first texture axis.
#pragma once

#include "quillon/export.h"
#include "quillon/math/vector.h"
#include "quillon/rendercache/render_cache.h"

extern "C" {

// The unit tangent of a triangle along its first texture axis, from three positions and three
// texture coordinates.
//
//     out = normalised((dv2 * e1 - dv1 * e2) / det)
//     det = du1 * dv2 - du2 * dv1
// with the edges e1, e2 from corner 0 and their texture steps (du1, dv1), (du2, dv2).
// (1, 0, 0) where det is nearer to 0 than 0.0001; the zero vector for a triangle without extent.
QUILLON_API void __tarn_find_tangent_from_tri(quillon::cVector3D& out,
                                              const quillon::cVector3D* positions,
                                              const quillon::cVector2D<double>* texcoords);

// Fills the tangents from positions and texture coordinates: every corner of a polygon gets the
// tangent of the polygon's corners 0, 1 and 2. Nothing is smoothed across polygons.
//
// A cache without positions, texcoords or tangents, or with fewer than 3 corners for each polygon,
// is unchanged.
QUILLON_API void __mGraphics_render_cache_calc_tangents(quillon::cRenderCache* cache);
}
