// SPDX-License-Identifier: MIT
// The plug-in graphics-gl, loaded once, and small things for it to draw.
#pragma once

#include "loaded_plugin.h"
#include "plugins/contracts/graphics.h"
#include "quillon/comfort.h"
#include "quillon/rendercache/tangents.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

using namespace quillon;

inline const Graphics& graphics() {
    // Never unloaded: the leak checker looks at the process's end, and follows what a driver keeps
    // only as long as the driver is there.
    static const auto* const plugin =
        new LoadedPlugin<Graphics>(GRAPHICS_FILE, "connect_graphics_interface", {});
    return *plugin->operator->();
}

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

    void SetUp() override {
        ASSERT_TRUE(graphics().open({.width = WIDTH, .height = HEIGHT, .offscreen = true}))
            << graphics().last_error();
    }

    void TearDown() override { graphics().close(); }
};

// What `draw` draws, seen by the camera.
inline Frame frame_of(const Camera& camera, const std::function<void()>& draw) {
    EXPECT_TRUE(graphics().begin_frame(camera)) << graphics().last_error();
    draw();
    EXPECT_TRUE(graphics().end_frame()) << graphics().last_error();
    Surface surface;
    graphics().get_surface(surface);
    Frame frame = {surface.width, {}};
    frame.pixels.resize(std::size_t{surface.width} * surface.height * 4);
    EXPECT_TRUE(graphics().read_frame(frame.pixels.data(), surface.width, surface.height))
        << graphics().last_error();
    return frame;
}

// Where the tests draw, far from the origin on every axis.
inline const cVector3D PLACE(1000.0, -2000.0, 3000.0);

// Three units before PLACE, and looking at it.
inline Camera camera_before_place() {
    Camera camera;
    camera.position = PLACE + cVector3D(0.0, 0.0, -3.0);
    return camera;
}

using Cache = RenderCache;

// A square of side 2 that faces the camera, with texture coordinates and tangents.
// Mirrored: its picture is upside down.
inline Cache square(bool is_mirrored = false) {
    const cVector3D positions[] = {{-1, -1, 0}, {-1, 1, 0}, {1, 1, 0}, {1, -1, 0}};
    const double top = is_mirrored ? 1.0 : 0.0;
    const cVector2D<double> texcoords[] = {{0, 1 - top}, {0, top}, {1, top}, {1, 1 - top}};
    Cache cache(__mGraphics_create_render_cache(1, 4, true, false, true, false));
    __mGraphics_modify_render_cache_from_verts(cache.get(), positions, texcoords, nullptr, nullptr);
    __mGraphics_render_cache_calc_tangents(cache.get());
    return cache;
}

// With normals and texture coordinates.
inline Cache sphere() {
    constexpr std::uint32_t rings = 12;
    constexpr std::uint32_t sectors = 2 * rings;
    std::vector<cVector3D> corners;
    std::vector<cVector2D<double>> texcoords;
    const auto add = [&](std::uint32_t ring, std::uint32_t sector) {
        const double latitude = M_PI * ring / rings;
        const double longitude = M_PI * sector / rings;
        corners.emplace_back(std::sin(latitude) * std::cos(longitude), std::cos(latitude),
                             std::sin(latitude) * std::sin(longitude));
        texcoords.emplace_back(static_cast<double>(sector) / sectors,
                               static_cast<double>(ring) / rings);
    };
    for (std::uint32_t ring = 0; ring < rings; ++ring)
        for (std::uint32_t sector = 0; sector < sectors; ++sector) {
            add(ring, sector);
            add(ring, sector + 1);
            add(ring + 1, sector + 1);
            add(ring + 1, sector);
        }
    Cache cache(__mGraphics_create_render_cache(rings * sectors, 4, true, true, false, false));
    __mGraphics_modify_render_cache_from_verts(cache.get(), corners.data(), texcoords.data(),
                                               corners.data(), nullptr);
    return cache;
}

inline PictureHandle upload(const std::vector<std::uint8_t>& pixels, std::uint16_t width,
                            std::uint16_t height) {
    return graphics().upload_picture(pixels.data(), width, height,
                                     {.smooth = false, .repeat = false});
}
