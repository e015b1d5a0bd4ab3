// SPDX-License-Identifier: MIT
// A shader program and its uniforms.
#pragma once

#include "gl_name.h"

#include <array>
#include <string>

namespace quillon::graphics_gl {

class Program {
public:
    // Throws std::runtime_error with the driver's words if the source does not compile.
    Program(const std::string& vertex_source, const std::string& fragment_source);

    void use() const { glUseProgram(name.get()); }

    GLint uniform(const char* uniform_name) const {
        return glGetUniformLocation(name.get(), uniform_name);
    }

    // For the program in use: reads a sampler from a texture unit, a block from a binding point.
    // One that the program does not use is left out.
    void set_sampler(const char* sampler, GLint unit) const;
    void set_block(const char* block, GLuint binding) const;

private:
    GlProgram name;
};

} // namespace quillon::graphics_gl
