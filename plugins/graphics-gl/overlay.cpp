// SPDX-License-Identifier: MIT
#include "overlay.h"

#include "shaders.h"
#include "vertex_layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace quillon::graphics_gl {
namespace {

constexpr float MIN_TEXT_SIZE = 4.0F;
constexpr float MAX_TEXT_SIZE = 256.0F;

constexpr const char* NATIVE_UTF32 = SDL_BYTEORDER == SDL_LIL_ENDIAN ? "UTF-32LE" : "UTF-32BE";

// The characters of UTF-8 text, without what is none.
std::u32string characters_of(const char* text) {
    struct Free {
        void operator()(void* memory) const { SDL_free(memory); }
    };

    const std::unique_ptr<char, Free> converted(
        SDL_iconv_string(NATIVE_UTF32, "UTF-8", text, SDL_strlen(text) + 1));
    if (converted == nullptr)
        throw std::runtime_error("the text is not UTF-8");
    std::u32string characters;
    const auto* next = reinterpret_cast<const Uint32*>(converted.get());
    for (; *next != 0; ++next)
        characters.push_back(*next);
    return characters;
}

std::uint16_t whole_size(float size) {
    if (!(size >= MIN_TEXT_SIZE && size <= MAX_TEXT_SIZE))
        throw std::runtime_error("the text size " + std::to_string(size) +
                                 " is not between 4 and 256 pixels");
    return static_cast<std::uint16_t>(std::lround(size));
}

// Calls `visit(character, x, line)` for each visible character, with the place of the pen, and
// returns the widest line and the number of lines.
template <typename Visit>
TextSize walk(const Font& font, const std::u32string& characters, std::uint16_t size, Visit visit) {
    float x = 0.0F;
    float widest = 0.0F;
    int line = 0;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const char32_t next = i + 1 < characters.size() ? characters[i + 1] : U'\0';
        if (characters[i] == U'\n') {
            x = 0.0F;
            ++line;
            continue;
        }
        visit(characters[i], x, static_cast<float>(line));
        x += font.advance(characters[i], next == U'\n' ? U'\0' : next, size);
        widest = std::max(widest, x);
    }
    return {widest, static_cast<float>(line + 1)};
}

} // namespace

Overlay::Overlay()
    : program(OVERLAY_VERTEX, OVERLAY_FRAGMENT),
      attributes(make_vertex_array()),
      buffer(make_buffer()) {
    constexpr AttributePart layout[] = {{2, offsetof(Vertex, position)},
                                        {2, offsetof(Vertex, texcoord)},
                                        {4, offsetof(Vertex, color)}};
    set_layout<Vertex>(attributes, buffer, layout);
    program.set_sampler("picture", 0);
}

void Overlay::add(GLuint texture, const Rectangle& place, const Rectangle& shown,
                  const cColor& color) {
    const Float4 tint = values_of(color);
    const Vertex top_left = {{place.left, place.top}, {shown.left, shown.top}, tint};
    const Vertex top_right = {{place.right, place.top}, {shown.right, shown.top}, tint};
    const Vertex bottom_left = {{place.left, place.bottom}, {shown.left, shown.bottom}, tint};
    const Vertex bottom_right = {{place.right, place.bottom}, {shown.right, shown.bottom}, tint};
    if (batches.empty() || batches.back().texture != texture)
        batches.push_back({texture, static_cast<std::uint32_t>(vertices.size()), 0});
    vertices.insert(vertices.end(),
                    {top_left, top_right, bottom_left, bottom_left, top_right, bottom_right});
    batches.back().count += 6;
}

void Overlay::add_text(Font& font, const TextDrawing& drawing) {
    const std::uint16_t size = whole_size(drawing.size);
    const std::u32string characters = characters_of(drawing.text);
    const float baseline = drawing.y + font.ascent(size);
    // Drawn first as a whole, so that a full atlas leaves no half of a text.
    for (const char32_t character : characters)
        if (character != U'\n')
            font.glyph(character, size);
    walk(font, characters, size, [&](char32_t character, float x, float line) {
        const Glyph& glyph = font.glyph(character, size);
        // On whole pixels, where a glyph is as sharp as it was drawn.
        const float left = std::round(drawing.x + x) + glyph.from_pen;
        const float top = std::round(baseline + line * size) + glyph.from_baseline;
        constexpr float side = Font::ATLAS_SIDE;
        add(font.atlas(), {left, top, left + glyph.width, top + glyph.height},
            {glyph.left / side, glyph.top / side, (glyph.left + glyph.width) / side,
             (glyph.top + glyph.height) / side},
            drawing.color);
    });
}

TextSize Overlay::measure(const Font& font, const TextDrawing& drawing) {
    const std::uint16_t size = whole_size(drawing.size);
    const TextSize lines =
        walk(font, characters_of(drawing.text), size, [](char32_t, float, float) {});
    return {lines.width, lines.height * size};
}

void Overlay::draw(PixelSize surface) {
    program.use();
    glUniform2f(program.uniform("surface"), static_cast<float>(surface.width),
                static_cast<float>(surface.height));
    glBindVertexArray(attributes.get());
    upload(buffer, vertices, GL_STREAM_DRAW);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (const Batch& batch : batches) {
        glBindTexture(GL_TEXTURE_2D, batch.texture);
        glDrawArrays(GL_TRIANGLES, static_cast<GLint>(batch.first),
                     static_cast<GLsizei>(batch.count));
    }
    clear();
}

void Overlay::clear() {
    vertices.clear();
    batches.clear();
}

} // namespace quillon::graphics_gl
