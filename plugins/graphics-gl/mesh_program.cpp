// SPDX-License-Identifier: MIT
#include "mesh_program.h"

#include "lights.h"
#include "scene_program.h"
#include "shaders.h"

#include <string>

namespace quillon::graphics_gl {
namespace {

struct Definition {
    const char* name;
    bool MeshFeatures::*is_set;
};

constexpr Definition DEFINITIONS[] = {
    {"IS_LIT", &MeshFeatures::is_lit},
    {"HAS_PICTURE", &MeshFeatures::has_picture},
    {"HAS_NORMAL_MAP", &MeshFeatures::has_normal_map},
    {"HAS_SHINE", &MeshFeatures::has_shine},
    {"HAS_CONES", &MeshFeatures::has_cones},
    {"HAS_FOG", &MeshFeatures::has_fog},
};

std::string definitions_of(const MeshFeatures& features) {
    std::string text = "#define MAX_LIGHTS " + std::to_string(MAX_LIGHTS) + "\n#define LIGHT_END " +
                       std::to_string(LIGHT_END) + "\n";
    for (const Definition& definition : DEFINITIONS)
        if (features.*definition.is_set)
            text += std::string("#define ") + definition.name + "\n";
    return text;
}

} // namespace

MeshProgram::MeshProgram(const MeshFeatures& features)
    : program(make_scene_program(MESH_VERTEX, definitions_of(features) + MESH_FRAGMENT)),
      is_lit(features.is_lit),
      model(program.uniform("model")),
      normal_model(program.uniform("normal_model")),
      ambient(program.uniform("ambient")),
      diffuse(program.uniform("diffuse")),
      specular_and_shininess(program.uniform("specular_and_shininess")),
      emission(program.uniform("emission")) {}

void MeshProgram::use(const MeshPlace& place, const cMaterial& material) const {
    const auto values = is_lit ? linear_values_of : values_of;
    Float4 specular = values(material.specular);
    specular[3] = material.shininess;
    program.use();
    glUniformMatrix4fv(model, 1, GL_FALSE, place.model[0].data());
    glUniformMatrix3fv(normal_model, 1, GL_FALSE, place.normal_model[0].data());
    glUniform4fv(ambient, 1, values(material.ambient).data());
    glUniform4fv(diffuse, 1, values(material.diffuse).data());
    glUniform4fv(specular_and_shininess, 1, specular.data());
    glUniform4fv(emission, 1, values(material.emission).data());
}

} // namespace quillon::graphics_gl
