// SPDX-License-Identifier: MIT
#include "scene.h"

#include "scene_program.h"
#include "shaders.h"
#include "vertex_layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace quillon::graphics_gl {
namespace {

// Laid out by the rules of std140.
struct FrameBlock {
    Matrix4 view_projection;
    Matrix4 sky_rays;
    Float4 zenith;
    Float4 horizon;
    Float4 nadir;
    Float4 fog;
};

GlBuffer make_block(GLuint binding, std::size_t size) {
    GlBuffer buffer = make_buffer();
    glBindBuffer(GL_UNIFORM_BUFFER, buffer.get());
    glBufferData(GL_UNIFORM_BUFFER, static_cast<GLsizeiptr>(size), nullptr, GL_DYNAMIC_DRAW);
    glBindBufferBase(GL_UNIFORM_BUFFER, binding, buffer.get());
    return buffer;
}

template <typename Block>
void write_block(const GlBuffer& buffer, const Block& block) {
    glBindBuffer(GL_UNIFORM_BUFFER, buffer.get());
    glBufferSubData(GL_UNIFORM_BUFFER, 0, sizeof block, &block);
}

Float4 fog_of(const Atmosphere& atmosphere) {
    const double depth = atmosphere.fog_end - atmosphere.fog_start;
    return {static_cast<float>(atmosphere.fog_start),
            depth > 0.0 ? static_cast<float>(1.0 / depth) : 0.0F, 0.0F, 0.0F};
}

void set_blend(Blend blend) {
    glDepthMask(blend == Blend::Opaque ? GL_TRUE : GL_FALSE);
    if (blend == Blend::Opaque) {
        glDisable(GL_BLEND);
        return;
    }
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, blend == Blend::Add ? GL_ONE : GL_ONE_MINUS_SRC_ALPHA);
}

void bind_texture(GLint unit, GLuint texture) {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    glBindTexture(GL_TEXTURE_2D, texture);
}

// Columns: the rotated axes, scaled; then the place.
Matrix4 model_of(const MeshDrawing& drawing, const Float3& place) {
    Matrix4 model{};
    for (std::size_t column = 0; column < 3; ++column)
        for (std::size_t row = 0; row < 3; ++row)
            model[column][row] = static_cast<float>(drawing.rotation.m[row][column] *
                                                    drawing.scale[static_cast<int>(column)]);
    model[3] = {place[0], place[1], place[2], 1.0F};
    return model;
}

// Normals keep their right angle to the surface if they are scaled the other way round.
Matrix3 normal_model_of(const MeshDrawing& drawing) {
    Matrix3 model{};
    for (std::size_t column = 0; column < 3; ++column) {
        const double scale = drawing.scale[static_cast<int>(column)];
        for (std::size_t row = 0; row < 3; ++row)
            model[column][row] =
                static_cast<float>(scale == 0.0 ? 0.0 : drawing.rotation.m[row][column] / scale);
    }
    return model;
}

Float3 moved(const Matrix4& model, const Float3& point) {
    Float3 result{};
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = model[0][row] * point[0] + model[1][row] * point[1] +
                      model[2][row] * point[2] + model[3][row];
    return result;
}

double largest_scale(const MeshDrawing& drawing) {
    return std::max(
        {std::abs(drawing.scale.x), std::abs(drawing.scale.y), std::abs(drawing.scale.z)});
}

} // namespace

Scene::Scene()
    : sky(make_scene_program(SKY_VERTEX, SKY_FRAGMENT)),
      plain(make_scene_program(PLAIN_VERTEX, PLAIN_FRAGMENT)),
      frame_block(make_block(FRAME_BINDING, sizeof(FrameBlock))),
      light_block(make_block(LIGHT_BINDING, sizeof(LightBlock))),
      no_attributes(make_vertex_array()),
      plain_attributes(make_vertex_array()),
      plain_buffer(make_buffer()) {
    constexpr AttributePart layout[] = {{3, offsetof(PlainVertex, position)},
                                        {2, offsetof(PlainVertex, texcoord)},
                                        {4, offsetof(PlainVertex, color)}};
    set_layout<PlainVertex>(plain_attributes, plain_buffer, layout);
}

void Scene::begin(const View& seen_from, const Atmosphere& atmosphere) {
    view = seen_from;
    frame_lights = FrameLights(current_lights(), view);
    has_fog = fog_of(atmosphere)[1] > 0.0F;
    counts = {};
    write_block(frame_block, FrameBlock{.view_projection = view.projection(),
                                        .sky_rays = view.sky_rays(),
                                        .zenith = values_of(atmosphere.zenith),
                                        .horizon = values_of(atmosphere.horizon),
                                        .nadir = values_of(atmosphere.nadir),
                                        .fog = fog_of(atmosphere)});
    sky.use();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBindVertexArray(no_attributes.get());
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glEnable(GL_DEPTH_TEST);
}

void Scene::set_lights(std::span<const cLight> new_lights) {
    std::copy(new_lights.begin(), new_lights.end(), lights.begin());
    light_count = new_lights.size();
    frame_lights = FrameLights(current_lights(), view);
}

void Scene::use_lights(const LightBlock& block) {
    if (block == used_lights)
        return;
    write_block(light_block, block);
    used_lights = block;
}

void Scene::draw(const MeshDrawing& drawing, const Mesh& mesh, const SceneTextures& textures) {
    const MeshPlace place = {model_of(drawing, view.relative(drawing.position)),
                             normal_model_of(drawing)};
    const Float3 center = moved(place.model, mesh.bounds().center);
    const double radius = mesh.bounds().radius * largest_scale(drawing);
    if (!view.may_see(center, radius))
        return;
    const cMaterial& material = drawing.material != nullptr ? *drawing.material : MATERIAL_DEFAULT;
    mesh_programs
        .get({.is_lit = drawing.is_lit,
              .has_picture = drawing.texture != 0,
              .has_normal_map = drawing.normal_map != 0 && mesh.has_tangents(),
              .has_shine = material.shininess > 0.0F,
              .has_cones = frame_lights.have_cones(),
              .has_fog = has_fog})
        .use(place, material);
    if (drawing.is_lit)
        use_lights(frame_lights.reaching(center, radius));
    bind_texture(NORMAL_UNIT, textures.normal_map);
    bind_texture(PICTURE_UNIT, textures.picture);
    set_blend(drawing.blend);
    mesh.draw();
    counts.triangles += mesh.triangle_count();
    ++counts.draw_calls;
}

void Scene::draw_lines(std::span<const cVector3D> points, const cColor& color) {
    std::vector<PlainVertex> corners;
    corners.reserve(points.size());
    for (const cVector3D& point : points)
        corners.push_back({view.relative(point), {0.0F, 0.0F}, values_of(color)});
    draw_plain(GL_LINE_STRIP, corners, color.a < 1.0F ? Blend::Alpha : Blend::Opaque, true);
}

void Scene::draw(const SpriteDrawing& drawing, GLuint picture) {
    const Float3 center = view.relative(drawing.position);
    const auto corner = [&](float across, float along) {
        Float3 place = center;
        for (std::size_t axis = 0; axis < 3; ++axis)
            place[axis] += view.right()[axis] * across * static_cast<float>(drawing.width) / 2 +
                           view.up()[axis] * along * static_cast<float>(drawing.height) / 2;
        return PlainVertex{place, {across / 2 + 0.5F, 0.5F - along / 2}, values_of(drawing.color)};
    };
    bind_texture(PICTURE_UNIT, picture);
    draw_plain(GL_TRIANGLE_STRIP, {corner(-1, -1), corner(-1, 1), corner(1, -1), corner(1, 1)},
               drawing.blend, drawing.has_fog);
    counts.triangles += 2;
}

void Scene::draw_plain(GLenum kind, const std::vector<PlainVertex>& corners, Blend blend,
                       bool takes_fog) {
    plain.use();
    glUniform1i(plain.uniform("has_fog"), takes_fog && has_fog ? 1 : 0);
    glUniform1i(plain.uniform("adds_light"), blend == Blend::Add ? 1 : 0);
    set_blend(blend);
    glBindVertexArray(plain_attributes.get());
    upload(plain_buffer, corners, GL_STREAM_DRAW);
    glDrawArrays(kind, 0, static_cast<GLsizei>(corners.size()));
    ++counts.draw_calls;
}

} // namespace quillon::graphics_gl
