// SPDX-License-Identifier: MIT
// A render cache as triangles in the driver's memory.
#pragma once

#include "gl_name.h"

#include "quillon/rendercache/render_cache.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillon::graphics_gl {

using Float3 = std::array<float, 3>;

// A sphere that holds the whole mesh, in the mesh's own space.
struct Bounds {
    Float3 center;
    float radius;
};

struct MeshVertex {
    Float3 position;
    Float3 normal;
    std::array<float, 4> tangent; // the fourth is 1 or -1: the side of the second texture axis
    std::array<float, 2> texcoord;
    std::array<float, 4> color;
};

// The corners of a cache, with what it does not hold filled in.
//
// Throws std::runtime_error for a cache that cannot be drawn.
std::vector<MeshVertex> corners_of(const cRenderCache& cache);

class Mesh {
public:
    explicit Mesh(const cRenderCache& cache);

    void replace(const cRenderCache& cache);
    void draw() const;

    std::uint32_t triangle_count() const { return index_count / 3; }

    const Bounds& bounds() const { return sphere; }

    // Whether a normal map has what it needs.
    bool has_tangents() const { return can_be_bumped; }

private:
    GlVertexArray attributes;
    GlBuffer vertices;
    GlBuffer indices;
    std::uint32_t index_count = 0;
    Bounds sphere{};
    bool can_be_bumped = false;
};

} // namespace quillon::graphics_gl
