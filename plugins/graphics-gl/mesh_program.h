// SPDX-License-Identifier: MIT
// The programs that draw meshes, each made when it is first needed.
#pragma once

#include "program.h"
#include "view.h"

#include "plugins/contracts/graphics.h"

#include <compare>
#include <map>

namespace quillon::graphics_gl {

// What a program has to compute.
struct MeshFeatures {
    bool is_lit;
    bool has_picture;
    bool has_normal_map;
    bool has_shine;
    bool has_cones;
    bool has_fog;

    auto operator<=>(const MeshFeatures&) const = default;
};

// Where a mesh goes, as the driver takes it.
struct MeshPlace {
    Matrix4 model;
    Matrix3 normal_model;
};

class MeshProgram {
public:
    explicit MeshProgram(const MeshFeatures& features);

    // Takes the program into use with this place and material.
    void use(const MeshPlace& place, const cMaterial& material) const;

private:
    Program program;
    bool is_lit;
    GLint model;
    GLint normal_model;
    GLint ambient;
    GLint diffuse;
    GLint specular_and_shininess;
    GLint emission;
};

class MeshPrograms {
public:
    const MeshProgram& get(const MeshFeatures& features) {
        return programs.try_emplace(features, features).first->second;
    }

private:
    std::map<MeshFeatures, MeshProgram> programs;
};

} // namespace quillon::graphics_gl
