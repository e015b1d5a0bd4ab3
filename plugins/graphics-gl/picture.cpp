// SPDX-License-Identifier: MIT
#include "picture.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace quillon::graphics_gl {
namespace {

constexpr GLint MAX_SIDE = 8192;

void check(const std::uint8_t* pixels, std::uint16_t width, std::uint16_t height) {
    GLint possible = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &possible);
    const GLint most = std::min(MAX_SIDE, possible);
    if (pixels == nullptr || width == 0 || height == 0)
        throw std::runtime_error("the picture has no pixels");
    if (width > most || height > most)
        throw std::runtime_error("the picture has more than " + std::to_string(most) +
                                 " pixels a side");
}

} // namespace

PictureTexture::PictureTexture(const std::uint8_t* pixels, std::uint16_t width,
                               std::uint16_t height, const PictureOptions& options)
    : name(make_texture()), has_copies(options.smooth) {
    glBindTexture(GL_TEXTURE_2D, name.get());
    const GLint wrap = options.repeat ? GL_REPEAT : GL_CLAMP_TO_EDGE;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, has_copies ? GL_LINEAR : GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                    has_copies ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST);
    replace(pixels, width, height);
}

void PictureTexture::replace(const std::uint8_t* pixels, std::uint16_t width,
                             std::uint16_t height) {
    check(pixels, width, height);
    glBindTexture(GL_TEXTURE_2D, name.get());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    if (glGetError() == GL_OUT_OF_MEMORY)
        throw std::runtime_error("the driver has no memory for the picture");
    if (has_copies)
        glGenerateMipmap(GL_TEXTURE_2D);
}

} // namespace quillon::graphics_gl
