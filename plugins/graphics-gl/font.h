// SPDX-License-Identifier: MIT
// A TrueType font and the glyphs that were drawn of it.
#pragma once

#include "gl_name.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct stbtt_fontinfo;

namespace quillon::graphics_gl {

// Where a glyph is in the atlas and beside the pen, in pixels.
struct Glyph {
    std::uint16_t left;
    std::uint16_t top;
    std::uint16_t width;
    std::uint16_t height;
    std::int16_t from_pen;      // to the right
    std::int16_t from_baseline; // down
};

class Font {
public:
    // Throws std::runtime_error if the file is not there or not a sound TrueType font.
    explicit Font(const std::string& file);
    ~Font();

    // The first of the usual places that has a font.
    static std::string default_file();

    // The glyph of a character at `size` pixels from line to line. Throws std::runtime_error once
    // the atlas is full.
    const Glyph& glyph(char32_t character, std::uint16_t size);
    // How far the pen moves from one character to the next; 0 is the end of the line.
    float advance(char32_t character, char32_t next, std::uint16_t size) const;
    // From the top of a line to its baseline.
    float ascent(std::uint16_t size) const;

    // Forgets all glyphs if the atlas was full; for the time between frames.
    void make_space();

    // A texture of one channel, which samples as white with that alpha.
    GLuint atlas() const { return texture.get(); }

    static constexpr std::uint16_t ATLAS_SIDE = 2048;

private:
    struct Key {
        char32_t character;
        std::uint16_t size;
        auto operator<=>(const Key&) const = default;
    };

    float scale(std::uint16_t size) const;
    Glyph draw(char32_t character, std::uint16_t size);
    // Finds a place in the atlas, on the shelf that is being filled or on a new one.
    void place(Glyph& glyph);

    std::vector<std::uint8_t> bytes;
    std::unique_ptr<stbtt_fontinfo> info;
    std::map<Key, Glyph> glyphs;
    GlTexture texture;
    std::uint16_t shelf_left = 0;
    std::uint16_t shelf_top = 0;
    std::uint16_t shelf_height = 0;
    bool is_full = false;
};

} // namespace quillon::graphics_gl
