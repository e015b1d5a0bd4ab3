// SPDX-License-Identifier: MIT
// A picture to draw on.
#pragma once

#include "pictures.h"
#include "quillon/appearance/color.h"

#include <string_view>

namespace tool {

// Pixels by column and row; pixels outside the picture are ignored. Colours are clamped to 0 to 1
// and blended by their alpha.
class Canvas {
public:
    Canvas(std::int16_t width, std::int16_t height, const quillon::cColor& background);

    void blend(int x, int y, quillon::cColor color);
    void fill(int x, int y, int width, int height, const quillon::cColor& color);

    // A line of ASCII text of that size in pixels, with its top left corner at (x, y).
    void write(int x, int y, int size, std::string_view text, const quillon::cColor& color);

    const Picture& picture() const { return drawn; }

private:
    Picture drawn;
};

} // namespace tool
