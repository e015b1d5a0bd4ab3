// SPDX-License-Identifier: MIT
// Pictures as textures.
#pragma once

#include "gl_name.h"

#include "plugins/contracts/graphics.h"

#include <cstdint>

namespace quillon::graphics_gl {

// Top row first, so that texture coordinate (0, 0) is the top left corner.
class PictureTexture {
public:
    // Both throw std::runtime_error for a size that is not drawn.
    PictureTexture(const std::uint8_t* pixels, std::uint16_t width, std::uint16_t height,
                   const PictureOptions& options);
    void replace(const std::uint8_t* pixels, std::uint16_t width, std::uint16_t height);

    GLuint get() const { return name.get(); }

private:
    GlTexture name;
    bool has_copies;
};

} // namespace quillon::graphics_gl
