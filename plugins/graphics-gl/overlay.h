// SPDX-License-Identifier: MIT
// Pictures and text over the frame, collected while it is drawn and drawn at its end.
#pragma once

#include "font.h"
#include "gl_name.h"
#include "program.h"
#include "view.h"
#include "window.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillon::graphics_gl {

// What is drawn and what it shows: in pixels of the surface, and in parts of the picture.
struct Rectangle {
    float left;
    float top;
    float right;
    float bottom;
};

struct TextSize {
    float width;
    float height;
};

class Overlay {
public:
    Overlay();

    void add(GLuint texture, const Rectangle& place, const Rectangle& shown, const cColor& color);
    // Adds nothing if it throws std::runtime_error.
    void add_text(Font& font, const TextDrawing& drawing);

    static TextSize measure(const Font& font, const TextDrawing& drawing);

    // Draws what was collected, and forgets it.
    void draw(PixelSize surface);
    void clear();

    std::uint32_t triangle_count() const { return static_cast<std::uint32_t>(vertices.size() / 3); }

    std::uint32_t batch_count() const { return static_cast<std::uint32_t>(batches.size()); }

private:
    struct Vertex {
        std::array<float, 2> position;
        std::array<float, 2> texcoord;
        Float4 color;
    };

    // Neighbours of the same texture, drawn by one call.
    struct Batch {
        GLuint texture;
        std::uint32_t first;
        std::uint32_t count;
    };

    Program program;
    GlVertexArray attributes;
    GlBuffer buffer;
    std::vector<Vertex> vertices;
    std::vector<Batch> batches;
};

} // namespace quillon::graphics_gl
