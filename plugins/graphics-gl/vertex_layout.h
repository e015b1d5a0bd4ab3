// SPDX-License-Identifier: MIT
// How vertices of one struct reach the attributes 0, 1, 2, ... of a program.
#pragma once

#include "gl_name.h"

#include <cstddef>
#include <span>
#include <stdexcept>
#include <vector>

namespace quillon::graphics_gl {

struct AttributePart {
    GLint floats;
    std::size_t offset;
};

template <typename Vertex>
void set_layout(const GlVertexArray& attributes, const GlBuffer& vertices,
                std::span<const AttributePart> parts) {
    glBindVertexArray(attributes.get());
    glBindBuffer(GL_ARRAY_BUFFER, vertices.get());
    for (GLuint i = 0; i < parts.size(); ++i) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, parts[i].floats, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                              reinterpret_cast<const void*>(parts[i].offset));
    }
}

// Replaces the contents of a buffer of vertices or indices. Throws std::runtime_error if the driver
// has no memory for them.
template <typename Element>
void upload(const GlBuffer& buffer, const std::vector<Element>& elements, GLenum usage) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer.get());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(elements.size() * sizeof(Element)),
                 elements.data(), usage);
    if (glGetError() == GL_OUT_OF_MEMORY)
        throw std::runtime_error("the driver has no memory for so many vertices");
}

} // namespace quillon::graphics_gl
