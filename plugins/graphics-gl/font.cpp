// SPDX-License-Identifier: MIT
#include "font.h"

#include "font_file.h"

#include <algorithm>
#include <filesystem>
#include <stb/stb_truetype.h>
#include <stdexcept>

namespace quillon::graphics_gl {
namespace {

// Where distributions keep the font DejaVu Sans.
constexpr const char* USUAL_FILES[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
};

// Between glyphs, so that none shows at the edge of its neighbour.
constexpr std::uint16_t GAP = 1;

GlTexture make_atlas(std::uint16_t side) {
    GlTexture texture = make_texture();
    glBindTexture(GL_TEXTURE_2D, texture.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R8, side, side, 0, GL_RED, GL_UNSIGNED_BYTE, nullptr);
    constexpr GLint white_with_alpha[] = {GL_ONE, GL_ONE, GL_ONE, GL_RED};
    glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, white_with_alpha);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    return texture;
}

} // namespace

std::string Font::default_file() {
    for (const char* file : USUAL_FILES)
        if (std::filesystem::exists(file))
            return file;
    throw std::runtime_error("there is no font: install the package fonts-dejavu-core, or name a "
                             "TrueType file with set_font");
}

Font::Font(const std::string& file)
    : bytes(read_font_file(file)), info(std::make_unique<stbtt_fontinfo>()) {
    if (stbtt_InitFont(info.get(), bytes.data(), stbtt_GetFontOffsetForIndex(bytes.data(), 0)) == 0)
        throw std::runtime_error("'" + file + "' is not a TrueType font with outlines");
    texture = make_atlas(ATLAS_SIDE);
}

Font::~Font() = default;

float Font::scale(std::uint16_t size) const {
    return stbtt_ScaleForPixelHeight(info.get(), size);
}

float Font::ascent(std::uint16_t size) const {
    int ascent = 0;
    int descent = 0;
    int line_gap = 0;
    stbtt_GetFontVMetrics(info.get(), &ascent, &descent, &line_gap);
    return static_cast<float>(ascent) * scale(size);
}

float Font::advance(char32_t character, char32_t next, std::uint16_t size) const {
    int width = 0;
    int bearing = 0;
    stbtt_GetCodepointHMetrics(info.get(), static_cast<int>(character), &width, &bearing);
    if (next != 0)
        width += stbtt_GetCodepointKernAdvance(info.get(), static_cast<int>(character),
                                               static_cast<int>(next));
    return static_cast<float>(width) * scale(size);
}

const Glyph& Font::glyph(char32_t character, std::uint16_t size) {
    const Key key = {character, size};
    const auto found = glyphs.find(key);
    return found != glyphs.end() ? found->second
                                 : glyphs.emplace(key, draw(character, size)).first->second;
}

Glyph Font::draw(char32_t character, std::uint16_t size) {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    stbtt_GetCodepointBitmapBox(info.get(), static_cast<int>(character), scale(size), scale(size),
                                &left, &top, &right, &bottom);
    Glyph glyph = {.left = 0,
                   .top = 0,
                   .width = static_cast<std::uint16_t>(right - left),
                   .height = static_cast<std::uint16_t>(bottom - top),
                   .from_pen = static_cast<std::int16_t>(left),
                   .from_baseline = static_cast<std::int16_t>(top)};
    place(glyph);
    std::vector<std::uint8_t> coverage(std::size_t{glyph.width} * glyph.height);
    if (coverage.empty())
        return glyph;
    stbtt_MakeCodepointBitmap(info.get(), coverage.data(), glyph.width, glyph.height, glyph.width,
                              scale(size), scale(size), static_cast<int>(character));
    glBindTexture(GL_TEXTURE_2D, texture.get());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, glyph.left, glyph.top, glyph.width, glyph.height, GL_RED,
                    GL_UNSIGNED_BYTE, coverage.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    return glyph;
}

void Font::place(Glyph& glyph) {
    if (shelf_left + glyph.width > ATLAS_SIDE) {
        shelf_top = static_cast<std::uint16_t>(shelf_top + shelf_height);
        shelf_left = 0;
        shelf_height = 0;
    }
    if (glyph.width > ATLAS_SIDE || shelf_top + glyph.height > ATLAS_SIDE) {
        is_full = true;
        throw std::runtime_error("there are too many glyphs in one frame");
    }
    glyph.left = shelf_left;
    glyph.top = shelf_top;
    shelf_left = static_cast<std::uint16_t>(shelf_left + glyph.width + GAP);
    shelf_height = std::max(shelf_height, static_cast<std::uint16_t>(glyph.height + GAP));
}

void Font::make_space() {
    if (!is_full)
        return;
    glyphs.clear();
    shelf_left = shelf_top = shelf_height = 0;
    is_full = false;
}

} // namespace quillon::graphics_gl
