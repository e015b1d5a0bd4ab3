// SPDX-License-Identifier: MIT
#include "graphics_plugin.h"

#include "loaded_plugin.h"

#include "quillon/rendercache/tangents.h"

#include <cmath>

using namespace quillon;

const Graphics& graphics() {
    // Never unloaded: the leak checker looks at the process's end, and follows what a driver keeps
    // only as long as the driver is there.
    static const auto* const plugin =
        new LoadedPlugin<Graphics>(GRAPHICS_FILE, "connect_graphics_interface", {});
    return *plugin->operator->();
}

void GraphicsTest::SetUp() {
    ASSERT_TRUE(graphics().open({.width = WIDTH, .height = HEIGHT, .offscreen = true}))
        << graphics().last_error();
}

Frame frame_of(const Camera& camera, const std::function<void()>& draw) {
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

Camera camera_before_place() {
    Camera camera;
    camera.position = PLACE + cVector3D(0.0, 0.0, -3.0);
    return camera;
}

Cache square(bool is_mirrored) {
    const cVector3D positions[] = {{-1, -1, 0}, {-1, 1, 0}, {1, 1, 0}, {1, -1, 0}};
    const double top = is_mirrored ? 1.0 : 0.0;
    const cVector2D<double> texcoords[] = {{0, 1 - top}, {0, top}, {1, top}, {1, 1 - top}};
    Cache cache(__mGraphics_create_render_cache(1, 4, true, false, true, false));
    __mGraphics_modify_render_cache_from_verts(cache.get(), positions, texcoords, nullptr, nullptr);
    __mGraphics_render_cache_calc_tangents(cache.get());
    return cache;
}

Cache sphere() {
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

PictureHandle upload(const std::vector<std::uint8_t>& pixels, std::uint16_t width,
                     std::uint16_t height) {
    return graphics().upload_picture(pixels.data(), width, height,
                                     {.smooth = false, .repeat = false});
}
