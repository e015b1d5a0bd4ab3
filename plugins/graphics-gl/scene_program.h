// SPDX-License-Identifier: MIT
// What all programs of the scene share: the blocks of the frame and its lights, and the texture
// units.
#pragma once

#include "program.h"

#include <string>

namespace quillon::graphics_gl {

inline constexpr GLint PICTURE_UNIT = 0;
inline constexpr GLint NORMAL_UNIT = 1;
inline constexpr GLuint FRAME_BINDING = 0;
inline constexpr GLuint LIGHT_BINDING = 1;

// A program with the frame's block, and the sky's functions in its fragments.
Program make_scene_program(const std::string& vertex_main, const std::string& fragment_main);

} // namespace quillon::graphics_gl
