#include "mesh.h"

#include "vertex_layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace quillon::graphics_gl {
namespace {

constexpr std::uint32_t MAX_VERTICES = 1U << 24;

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

void check(const cRenderCache* cache) {
    if (cache->positions == nullptr)
        throw std::runtime_error("the render cache has no positions");
    if (cache->verts_per_poly < 3)
        throw std::runtime_error("the polygons of the render cache have fewer than 3 corners");
    const std::uint64_t triangles = std::uint64_t{cache->poly_count} * (cache->verts_per_poly - 2);
    if (triangles * 3 > MAX_VERTICES)
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

std::vector<MeshVertex> triangles_of(const cRenderCache& cache) {
    check(&cache);
    const std::size_t corners = cache.verts_per_poly;
    std::vector<MeshVertex> triangles;
    triangles.reserve(cache.poly_count * (corners - 2) * 3);
    std::vector<MeshVertex> polygon(corners);
    for (std::size_t i = 0; i < cache.poly_count; ++i) {
        for (std::size_t corner = 0; corner < corners; ++corner)
            polygon[corner] = corner_of(cache, i * corners + corner);
        complete(cache, polygon);
        for (std::size_t corner = 1; corner + 1 < corners; ++corner)
            triangles.insert(triangles.end(), {polygon[0], polygon[corner], polygon[corner + 1]});
    }
    return triangles;
}

Mesh::Mesh(const cRenderCache& cache) : attributes(make_vertex_array()), vertices(make_buffer()) {
    replace(cache);
    set_layout<MeshVertex>(attributes, vertices, MESH_LAYOUT);
}

void Mesh::replace(const cRenderCache& cache) {
    const std::vector<MeshVertex> triangles = triangles_of(cache);
    glBindBuffer(GL_ARRAY_BUFFER, vertices.get());
    upload_vertices(triangles, GL_STATIC_DRAW);
    vertex_count = static_cast<std::uint32_t>(triangles.size());
    sphere = bounds_of(triangles);
    can_be_bumped = cache.tangents != nullptr && cache.texcoords != nullptr;
}

void Mesh::draw() const {
    glBindVertexArray(attributes.get());
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(vertex_count));
}

} // namespace quillon::graphics_gl
