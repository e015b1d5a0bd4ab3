// A picture to draw on.
#pragma once

#include "pictures.h"
#include "quillon/appearance/color.h"

#include <string>

namespace tool {

// Pixels by column and row; pixels outside the picture are ignored. Colours are clamped to 0 to 1
// and blended by their alpha.
class Canvas {
public:
    Canvas(std::int16_t width, std::int16_t height, const quillon::cColor& background);

    void blend(int x, int y, quillon::cColor color);
    void fill(int x, int y, int width, int height, const quillon::cColor& color);

    // A line of text in ASCII, 12 pixels high, with its top left corner at (x, y).
    void write(int x, int y, std::string text, const quillon::cColor& color);

    const Picture& picture() const { return drawn; }

private:
    Picture drawn;
};

} // namespace tool
