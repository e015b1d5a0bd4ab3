// SPDX-License-Identifier: MIT
#include "program.h"

#include <stdexcept>

namespace quillon::graphics_gl {
namespace {

// The first line of what the driver says.
template <typename GetLog>
[[noreturn]] void fail(const char* task, GLuint name, GetLog get_log) {
    std::array<char, 256> log{};
    get_log(name, static_cast<GLsizei>(log.size()), nullptr, log.data());
    const std::string text = log.data();
    throw std::runtime_error(std::string("the driver does not ") + task +
                             " a shader: " + text.substr(0, text.find('\n')));
}

GlShader compile(GLenum kind, const std::string& source) {
    GlShader shader(glCreateShader(kind));
    const char* const text = source.c_str();
    glShaderSource(shader.get(), 1, &text, nullptr);
    glCompileShader(shader.get());
    GLint is_compiled = GL_FALSE;
    glGetShaderiv(shader.get(), GL_COMPILE_STATUS, &is_compiled);
    if (is_compiled == GL_FALSE)
        fail("compile", shader.get(), glGetShaderInfoLog);
    return shader;
}

} // namespace

Program::Program(const std::string& vertex_source, const std::string& fragment_source)
    : name(glCreateProgram()) {
    const GlShader vertex = compile(GL_VERTEX_SHADER, vertex_source);
    const GlShader fragment = compile(GL_FRAGMENT_SHADER, fragment_source);
    glAttachShader(name.get(), vertex.get());
    glAttachShader(name.get(), fragment.get());
    glLinkProgram(name.get());
    GLint is_linked = GL_FALSE;
    glGetProgramiv(name.get(), GL_LINK_STATUS, &is_linked);
    if (is_linked == GL_FALSE)
        fail("link", name.get(), glGetProgramInfoLog);
    use();
}

void Program::set_sampler(const char* sampler, GLint unit) const {
    glUniform1i(uniform(sampler), unit);
}

void Program::set_block(const char* block, GLuint binding) const {
    const GLuint index = glGetUniformBlockIndex(name.get(), block);
    if (index != GL_INVALID_INDEX)
        glUniformBlockBinding(name.get(), index, binding);
}

} // namespace quillon::graphics_gl
