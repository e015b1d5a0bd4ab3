// SPDX-License-Identifier: MIT
#include "scene_program.h"

#include "shaders.h"

namespace quillon::graphics_gl {

Program make_scene_program(const std::string& vertex_main, const std::string& fragment_main) {
    Program program(FRAME_BLOCK + vertex_main,
                    std::string(FRAME_BLOCK) + SKY_FUNCTIONS + fragment_main);
    program.set_block("Frame", FRAME_BINDING);
    program.set_block("Lights", LIGHT_BINDING);
    program.set_sampler("picture", PICTURE_UNIT);
    program.set_sampler("normal_picture", NORMAL_UNIT);
    return program;
}

} // namespace quillon::graphics_gl
