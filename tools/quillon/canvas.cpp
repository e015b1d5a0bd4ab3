#include "canvas.h"

#include "quillon/appearance/bitmap.h"

#include <algorithm>
#include <array>
#include <stb/stb_easy_font.h>
#include <vector>

namespace tool {
namespace {

using quillon::cColor;

// A corner of a rectangle, of which the font writes four in turn.
struct Corner {
    float x;
    float y;
    float z;
    std::array<unsigned char, 4> color;
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

void Canvas::write(int x, int y, std::string text, const cColor& color) {
    // A letter is at most a dozen rectangles.
    std::vector<Corner> corners(text.size() * 12 * 4);
    unsigned char unused[4] = {};
    const int rectangles = stb_easy_font_print(0, 0, text.data(), unused, corners.data(),
                                               static_cast<int>(corners.size() * sizeof(Corner)));
    for (int i = 0; i < rectangles; ++i) {
        const Corner& first = corners[static_cast<std::size_t>(i) * 4];
        const Corner& opposite = corners[static_cast<std::size_t>(i) * 4 + 2];
        fill(x + static_cast<int>(first.x), y + static_cast<int>(first.y),
             static_cast<int>(opposite.x - first.x), static_cast<int>(opposite.y - first.y), color);
    }
}

} // namespace tool
