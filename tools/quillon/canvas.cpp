// SPDX-License-Identifier: MIT
#include "canvas.h"

#include "command.h"

#include "quillon/appearance/bitmap.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stb/stb_truetype.h>
#include <string>

namespace tool {
namespace {

using quillon::cColor;

// Where distributions keep the font DejaVu Sans, and Windows one that holds as much.
constexpr const char* FONT_FILES[] = {
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans.ttf",
    "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    "C:/Windows/Fonts/arial.ttf",
};

class Font {
public:
    Font() {
        for (const char* file : FONT_FILES) {
            std::ifstream stream(file, std::ios::binary);
            bytes.assign(std::istreambuf_iterator<char>(stream), {});
            if (!bytes.empty() && stbtt_InitFont(&info, data(), 0) != 0)
                return;
        }
        throw Failure("there is no font for the names: install the package fonts-dejavu-core");
    }

    const stbtt_fontinfo* get() const { return &info; }

private:
    const unsigned char* data() const {
        return reinterpret_cast<const unsigned char*>(bytes.data());
    }

    std::string bytes;
    stbtt_fontinfo info{};
};

} // namespace

Canvas::Canvas(std::int16_t width, std::int16_t height, const cColor& background) {
    std::uint8_t* pixels = nullptr;
    __cBitmap_init(width, height, pixels);
    drawn.pixels.reset(pixels);
    drawn.width = static_cast<std::uint16_t>(width);
    drawn.height = static_cast<std::uint16_t>(height);
    __cBitmap_set_to_color(background, pixels, width * height);
}

void Canvas::blend(int x, int y, cColor color) {
    if (x < 0 || x >= drawn.width || y < 0 || y >= drawn.height)
        return;
    const std::int32_t index = y * drawn.width + x;
    cColor below(0, 0, 0, 1);
    __cBitmap_get_pixel(below, drawn.pixels.get(), index);
    const float alpha = std::clamp(color.a, 0.0F, 1.0F);
    for (int channel = 0; channel < 3; ++channel)
        color[channel] =
            std::clamp(color[channel], 0.0F, 1.0F) * alpha + below[channel] * (1 - alpha);
    color.a = 1;
    __cBitmap_set_pixel(color, drawn.pixels.get(), index);
}

void Canvas::fill(int x, int y, int width, int height, const cColor& color) {
    for (int row = y; row < y + height; ++row)
        for (int column = x; column < x + width; ++column)
            blend(column, row, color);
}

void Canvas::write(int x, int y, int size, std::string_view text, const cColor& color) {
    static const Font font;
    const float scale = stbtt_ScaleForPixelHeight(font.get(), static_cast<float>(size));
    int ascent = 0;
    int advance = 0;
    int unused = 0;
    stbtt_GetFontVMetrics(font.get(), &ascent, &unused, &unused);
    const int baseline = y + static_cast<int>(std::lround(static_cast<float>(ascent) * scale));
    auto pen = static_cast<float>(x);
    for (const char letter : text) {
        const int left = static_cast<int>(pen);
        int width = 0;
        int height = 0;
        int to_right = 0;
        int down = 0;
        const std::unique_ptr<unsigned char, decltype(&std::free)> coverage(
            stbtt_GetCodepointBitmapSubpixel(font.get(), scale, scale,
                                             pen - static_cast<float>(left), 0, letter, &width,
                                             &height, &to_right, &down),
            &std::free);
        for (int i = 0; i < width * height; ++i) {
            cColor ink = color;
            ink.a *= static_cast<float>(coverage.get()[i]) / 255;
            blend(left + to_right + i % width, baseline + down + i / width, ink);
        }
        stbtt_GetCodepointHMetrics(font.get(), letter, &advance, &unused);
        pen += static_cast<float>(advance) * scale;
    }
}

} // namespace tool
