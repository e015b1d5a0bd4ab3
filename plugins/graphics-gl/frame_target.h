// SPDX-License-Identifier: MIT
// Where frames are drawn: a multisampled scene, and the finished picture that it becomes.
#pragma once

#include "gl_name.h"
#include "window.h"

#include <cstdint>

namespace quillon::graphics_gl {

class FrameTarget {
public:
    // Takes fewer samples if the driver has no more. Throws std::runtime_error if it has no memory
    // for the size.
    FrameTarget(PixelSize pixels, int wanted_samples);

    PixelSize size() const { return frame_size; }

    int samples() const { return sample_count; }

    // What is drawn from now on goes to the scene, which is cleared.
    void begin_scene() const;
    // The scene becomes the finished picture, and what is drawn from now on covers that.
    void finish_scene() const;
    // Copies the finished picture to the window.
    void present(PixelSize window) const;
    // Copies it as RGBA, top row first, opaque.
    void read(std::uint8_t* pixels) const;

private:
    PixelSize frame_size;
    int sample_count;
    GlRenderbuffer scene_color;
    GlRenderbuffer scene_depth;
    GlRenderbuffer finished_color;
    GlFramebuffer scene;
    GlFramebuffer finished;
};

} // namespace quillon::graphics_gl
