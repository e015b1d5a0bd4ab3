// SPDX-License-Identifier: MIT
#include "mesh.h"

#include "vertex_layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <stdexcept>

namespace quillon::graphics_gl {
namespace {

constexpr std::uint32_t MAX_CORNERS = 1U << 24;

constexpr AttributePart MESH_LAYOUT[] = {
    {3, offsetof(MeshVertex, position)}, {3, offsetof(MeshVertex, normal)},
    {4, offsetof(MeshVertex, tangent)},  {2, offsetof(MeshVertex, texcoord)},
    {4, offsetof(MeshVertex, color)},
};

Float3 difference(const Float3& a, const Float3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Float3 cross(const Float3& a, const Float3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

float dot(const Float3& a, const Float3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void check(const cRenderCache& cache) {
    if (cache.positions == nullptr)
        throw std::runtime_error("the render cache has no positions");
    if (cache.verts_per_poly < 3)
        throw std::runtime_error("the polygons of the render cache have fewer than 3 corners");
    if (std::uint64_t{cache.poly_count} * cache.verts_per_poly > MAX_CORNERS)
        throw std::runtime_error("the render cache has too many corners for one mesh");
}

template <std::size_t size>
std::array<float, size> entry(const float* values, std::size_t corner,
                              const std::array<float, size>& missing) {
    if (values == nullptr)
        return missing;
    std::array<float, size> result{};
    std::copy_n(values + corner * size, size, result.begin());
    return result;
}

MeshVertex corner_of(const cRenderCache& cache, std::size_t corner) {
    const Float3 tangent = entry<3>(cache.tangents, corner, {});
    return {entry<3>(cache.positions, corner, {}),
            entry<3>(cache.normals, corner, {}),
            {tangent[0], tangent[1], tangent[2], 1.0F},
            entry<2>(cache.texcoords, corner, {}),
            entry<4>(cache.colors, corner, {1.0F, 1.0F, 1.0F, 1.0F})};
}

// On which side of normal and tangent the second texture axis is: a picture that is laid out as it
// would be read has it on the side of their cross product, a mirrored one on the other.
float handedness(const MeshVertex& a, const MeshVertex& b, const MeshVertex& c) {
    const Float3 e1 = difference(b.position, a.position);
    const Float3 e2 = difference(c.position, a.position);
    const float u1 = b.texcoord[0] - a.texcoord[0];
    const float v1 = b.texcoord[1] - a.texcoord[1];
    const float u2 = c.texcoord[0] - a.texcoord[0];
    const float v2 = c.texcoord[1] - a.texcoord[1];
    const float area = u1 * v2 - u2 * v1;
    const Float3 second_axis = {(e2[0] * u1 - e1[0] * u2) * area, (e2[1] * u1 - e1[1] * u2) * area,
                                (e2[2] * u1 - e1[2] * u2) * area};
    const Float3 along = {a.tangent[0], a.tangent[1], a.tangent[2]};
    return dot(cross(a.normal, along), second_axis) < 0.0F ? -1.0F : 1.0F;
}

// Fills in what the cache does not hold.
void complete(const cRenderCache& cache, std::span<MeshVertex> polygon) {
    if (cache.normals == nullptr) {
        const Float3 normal = cross(difference(polygon[1].position, polygon[0].position),
                                    difference(polygon[2].position, polygon[0].position));
        for (MeshVertex& vertex : polygon)
            vertex.normal = normal;
    }
    if (cache.tangents == nullptr || cache.texcoords == nullptr)
        return;
    const float side = handedness(polygon[0], polygon[1], polygon[2]);
    for (MeshVertex& vertex : polygon)
        vertex.tangent[3] = side;
}

// Each polygon as triangles around its first corner.
std::vector<std::uint32_t> fans_of(const cRenderCache& cache) {
    const std::uint32_t corners = cache.verts_per_poly;
    std::vector<std::uint32_t> fans;
    fans.reserve(std::size_t{cache.poly_count} * (corners - 2) * 3);
    for (std::uint32_t polygon = 0; polygon < cache.poly_count; ++polygon)
        for (std::uint32_t corner = 1; corner + 1 < corners; ++corner) {
            const std::uint32_t first = polygon * corners;
            fans.insert(fans.end(), {first, first + corner, first + corner + 1});
        }
    return fans;
}

// Around the middle of the box: not the smallest sphere, but found in two passes.
Bounds bounds_of(std::span<const MeshVertex> vertices) {
    if (vertices.empty())
        return {};
    Float3 low = vertices[0].position;
    Float3 high = low;
    for (const MeshVertex& vertex : vertices)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], vertex.position[axis]);
            high[axis] = std::max(high[axis], vertex.position[axis]);
        }
    const Float3 center = {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2, (low[2] + high[2]) / 2};
    float squared_radius = 0.0F;
    for (const MeshVertex& vertex : vertices) {
        const Float3 arm = difference(vertex.position, center);
        squared_radius = std::max(squared_radius, dot(arm, arm));
    }
    return {center, std::sqrt(squared_radius)};
}

} // namespace

std::vector<MeshVertex> corners_of(const cRenderCache& cache) {
    check(cache);
    const std::size_t corners = std::size_t{cache.poly_count} * cache.verts_per_poly;
    std::vector<MeshVertex> vertices;
    vertices.reserve(corners);
    for (std::size_t corner = 0; corner < corners; ++corner)
        vertices.push_back(corner_of(cache, corner));
    for (std::size_t first = 0; first < corners; first += cache.verts_per_poly)
        complete(cache, std::span(vertices).subspan(first, cache.verts_per_poly));
    return vertices;
}

Mesh::Mesh(const cRenderCache& cache)
    : attributes(make_vertex_array()), vertices(make_buffer()), indices(make_buffer()) {
    replace(cache);
    set_layout<MeshVertex>(attributes, vertices, MESH_LAYOUT);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices.get());
}

void Mesh::replace(const cRenderCache& cache) {
    const std::vector<MeshVertex> corners = corners_of(cache);
    const std::vector<std::uint32_t> fans = fans_of(cache);
    upload(vertices, corners, GL_STATIC_DRAW);
    upload(indices, fans, GL_STATIC_DRAW);
    index_count = static_cast<std::uint32_t>(fans.size());
    sphere = bounds_of(corners);
    can_be_bumped = cache.tangents != nullptr && cache.texcoords != nullptr;
}

void Mesh::draw() const {
    glBindVertexArray(attributes.get());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(index_count), GL_UNSIGNED_INT, nullptr);
}

} // namespace quillon::graphics_gl
