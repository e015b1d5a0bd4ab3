// SPDX-License-Identifier: MIT
// Names of OpenGL objects that are deleted with their owner.
#pragma once

#include <epoxy/gl.h>
#include <utility>

namespace quillon::graphics_gl {

template <typename Delete>
class GlName {
public:
    GlName() = default;

    explicit GlName(GLuint owned) : name(owned) {}

    GlName(GlName&& other) noexcept : name(std::exchange(other.name, 0)) {}

    GlName& operator=(GlName&& other) noexcept {
        std::swap(name, other.name);
        return *this;
    }

    ~GlName() {
        if (name != 0)
            Delete()(name);
    }

    GLuint get() const { return name; }

private:
    GLuint name = 0;
};

struct DeleteBuffer {
    void operator()(GLuint name) const { glDeleteBuffers(1, &name); }
};

struct DeleteFramebuffer {
    void operator()(GLuint name) const { glDeleteFramebuffers(1, &name); }
};

struct DeleteProgram {
    void operator()(GLuint name) const { glDeleteProgram(name); }
};

struct DeleteRenderbuffer {
    void operator()(GLuint name) const { glDeleteRenderbuffers(1, &name); }
};

struct DeleteShader {
    void operator()(GLuint name) const { glDeleteShader(name); }
};

struct DeleteTexture {
    void operator()(GLuint name) const { glDeleteTextures(1, &name); }
};

struct DeleteVertexArray {
    void operator()(GLuint name) const { glDeleteVertexArrays(1, &name); }
};

using GlBuffer = GlName<DeleteBuffer>;
using GlFramebuffer = GlName<DeleteFramebuffer>;
using GlProgram = GlName<DeleteProgram>;
using GlRenderbuffer = GlName<DeleteRenderbuffer>;
using GlShader = GlName<DeleteShader>;
using GlTexture = GlName<DeleteTexture>;
using GlVertexArray = GlName<DeleteVertexArray>;

// A new name from one of the glGen functions.
template <typename Name, typename Generate>
Name generate(Generate generate_names) {
    GLuint name = 0;
    generate_names(1, &name);
    return Name(name);
}

inline GlBuffer make_buffer() {
    return generate<GlBuffer>(glGenBuffers);
}

inline GlTexture make_texture() {
    return generate<GlTexture>(glGenTextures);
}

inline GlVertexArray make_vertex_array() {
    return generate<GlVertexArray>(glGenVertexArrays);
}

} // namespace quillon::graphics_gl
