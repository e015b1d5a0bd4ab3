// SPDX-License-Identifier: MIT
// The plug-in graphics-gl, loaded once, and small things for it to draw.
#pragma once

#include "plugins/contracts/graphics.h"
#include "quillon/comfort.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

const quillon::Graphics& graphics();

using Rgb = std::array<int, 3>;

// RGBA, top row first.
struct Frame {
    int width;
    std::vector<std::uint8_t> pixels;

    Rgb at(int x, int y) const {
        const std::uint8_t* pixel = pixels.data() + 4 * (y * width + x);
        return {pixel[0], pixel[1], pixel[2]};
    }
};

// Opens a surface without a window, and closes it.
class GraphicsTest : public testing::Test {
protected:
    static constexpr std::uint16_t WIDTH = 160;
    static constexpr std::uint16_t HEIGHT = 90;

    void SetUp() override;

    void TearDown() override { graphics().close(); }
};

// What `draw` draws, seen by the camera.
Frame frame_of(const quillon::Camera& camera, const std::function<void()>& draw);

// Where the tests draw, far from the origin on every axis.
inline const quillon::cVector3D PLACE(1000.0, -2000.0, 3000.0);

// Three units before PLACE, and looking at it.
quillon::Camera camera_before_place();

using Cache = quillon::RenderCache;

// A square of side 2 that faces the camera, with texture coordinates and tangents.
// Mirrored: its picture is upside down.
Cache square(bool is_mirrored = false);
// With normals and texture coordinates.
Cache sphere();

quillon::PictureHandle upload(const std::vector<std::uint8_t>& pixels, std::uint16_t width,
                              std::uint16_t height);
