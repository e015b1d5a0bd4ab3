// SPDX-License-Identifier: MIT
#include "frame_target.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace quillon::graphics_gl {
namespace {

int possible_samples(int wanted) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return wanted < 2 ? 0 : std::min<int>(wanted, most);
}

GlRenderbuffer make_storage(GLenum format, int samples, PixelSize size) {
    auto buffer = generate<GlRenderbuffer>(glGenRenderbuffers);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer.get());
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, size.width, size.height);
    return buffer;
}

GlFramebuffer make_framebuffer(const GlRenderbuffer& color, const GlRenderbuffer* depth) {
    auto buffer = generate<GlFramebuffer>(glGenFramebuffers);
    glBindFramebuffer(GL_FRAMEBUFFER, buffer.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color.get());
    if (depth != nullptr)
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER,
                                  depth->get());
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE ||
        glGetError() == GL_OUT_OF_MEMORY)
        throw std::runtime_error("the driver has no memory for a surface of this size");
    return buffer;
}

} // namespace

FrameTarget::FrameTarget(PixelSize pixels, int wanted_samples)
    : frame_size(pixels),
      sample_count(possible_samples(wanted_samples)),
      scene_color(make_storage(GL_RGBA8, sample_count, pixels)),
      scene_depth(make_storage(GL_DEPTH_COMPONENT24, sample_count, pixels)),
      finished_color(make_storage(GL_RGBA8, 0, pixels)),
      scene(make_framebuffer(scene_color, &scene_depth)),
      finished(make_framebuffer(finished_color, nullptr)) {
    glClear(GL_COLOR_BUFFER_BIT);
}

void FrameTarget::begin_scene() const {
    glBindFramebuffer(GL_FRAMEBUFFER, scene.get());
    glViewport(0, 0, frame_size.width, frame_size.height);
    glDepthMask(GL_TRUE);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void FrameTarget::finish_scene() const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, scene.get());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, finished.get());
    glBlitFramebuffer(0, 0, frame_size.width, frame_size.height, 0, 0, frame_size.width,
                      frame_size.height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, finished.get());
}

void FrameTarget::present(PixelSize window) const {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, finished.get());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glBlitFramebuffer(0, 0, frame_size.width, frame_size.height, 0, 0, window.width, window.height,
                      GL_COLOR_BUFFER_BIT, GL_LINEAR);
}

void FrameTarget::read(std::uint8_t* pixels) const {
    const std::size_t stride = std::size_t{4} * static_cast<std::size_t>(frame_size.width);
    const auto rows = static_cast<std::size_t>(frame_size.height);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, finished.get());
    glReadPixels(0, 0, frame_size.width, frame_size.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    for (std::size_t row = 0; row < rows / 2; ++row)
        std::swap_ranges(pixels + row * stride, pixels + (row + 1) * stride,
                         pixels + (rows - 1 - row) * stride);
    for (std::size_t alpha = 3; alpha < rows * stride; alpha += 4)
        pixels[alpha] = 255;
}

} // namespace quillon::graphics_gl
