// SPDX-License-Identifier: MIT
// Draws the three-dimensional part of a frame.
#pragma once

#include "lights.h"
#include "mesh.h"
#include "mesh_program.h"
#include "picture.h"
#include "program.h"
#include "view.h"

#include "plugins/contracts/graphics.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace quillon::graphics_gl {

// Textures in place of handles; 0 is the plain white one.
struct SceneTextures {
    GLuint picture;
    GLuint normal_map;
};

class Scene {
public:
    Scene();

    // Draws the sky and takes the camera for what follows.
    void begin(const View& seen_from, const Atmosphere& atmosphere);
    // At most MAX_LIGHTS.
    void set_lights(std::span<const cLight> new_lights);

    void draw(const MeshDrawing& drawing, const Mesh& mesh, const SceneTextures& textures);
    void draw_lines(std::span<const cVector3D> points, const cColor& color);
    void draw(const SpriteDrawing& drawing, GLuint picture);

    const FrameFigures& figures() const { return counts; }

private:
    struct PlainVertex {
        Float3 position;
        std::array<float, 2> texcoord;
        Float4 color;
    };

    void draw_plain(GLenum kind, const std::vector<PlainVertex>& corners, Blend blend,
                    bool takes_fog);

    std::span<const cLight> current_lights() const { return {lights.data(), light_count}; }

    // Writes the lights that the program in use reads, if they are others than before.
    void use_lights(const LightBlock& block);

    View view;
    bool has_fog = false;
    std::array<cLight, MAX_LIGHTS> lights;
    std::size_t light_count = 0;
    FrameLights frame_lights;
    LightBlock used_lights{};
    FrameFigures counts;

    Program sky;
    Program plain;
    MeshPrograms mesh_programs;
    GlBuffer frame_block;
    GlBuffer light_block;
    GlVertexArray no_attributes;
    GlVertexArray plain_attributes;
    GlBuffer plain_buffer;
};

} // namespace quillon::graphics_gl
