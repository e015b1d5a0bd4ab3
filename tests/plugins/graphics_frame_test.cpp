// SPDX-License-Identifier: MIT
// Overlays, text, whole frames, and what happens where something is missing or wrong.
#include "graphics_plugin.h"
#include "loaded_library.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <link.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

using GraphicsFrame = GraphicsTest;

constexpr const char* FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr Rgb BLACK_PIXEL = {0, 0, 0};

// The smallest rectangle that holds all pixels but black ones: left, top, right, bottom.
std::array<int, 4> painted_part(const Frame& frame) {
    const int height = static_cast<int>(frame.pixels.size()) / 4 / frame.width;
    std::array<int, 4> part = {frame.width, height, 0, 0};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < frame.width; ++x)
            if (frame.at(x, y) != BLACK_PIXEL)
                part = {std::min(part[0], x), std::min(part[1], y), std::max(part[2], x + 1),
                        std::max(part[3], y + 1)};
    return part;
}

Frame text_frame(const TextDrawing& drawing) {
    return frame_of({},
                    [&] { EXPECT_TRUE(graphics().draw_text(drawing)) << graphics().last_error(); });
}

// A lit scene with every kind of drawing.
void draw_scene(MeshHandle ball, MeshHandle ground, PictureHandle glow) {
    cLight sun;
    sun.set_colors({0.2F, 0.2F, 0.3F, 1.0F}, {0.8F, 0.75F, 0.7F, 1.0F}, WHITE, 1.0F);
    sun.set_direction({1, -2, 1});
    sun.light_flag = LIGHT_DIRECTIONAL;
    graphics().set_lights(&sun, 1);
    const cVector3D path[] = {PLACE + cVector3D(-2, -1, 1), PLACE + cVector3D(0, 1, 1),
                              PLACE + cVector3D(2, 0, 1)};
    cMatrix3D flat;
    __cMatrix3d_from_forward_and_up(flat, {0, -1, 0}, {0, 0, 1});
    EXPECT_TRUE(graphics().draw_mesh({.mesh = ground,
                                      .position = PLACE + cVector3D(0, -1, 2),
                                      .rotation = flat,
                                      .scale = {4, 4, 4}}));
    EXPECT_TRUE(graphics().draw_mesh({.mesh = ball,
                                      .position = PLACE + cVector3D(-0.8, 0, 0),
                                      .scale = {0.6, 0.8, 0.6},
                                      .material = __nsMaterial_material_table("GOLD")}));
    EXPECT_TRUE(graphics().draw_lines(path, 3, CYAN));
    EXPECT_TRUE(graphics().draw_sprite(
        {.position = PLACE + cVector3D(0.9, 0.3, 0), .picture = glow, .color = ORANGE}));
    EXPECT_TRUE(graphics().draw_overlay({.x = 4, .y = 80, .width = 60, .height = 6, .color = RED}));
    EXPECT_TRUE(graphics().draw_text({.text = "Lanterns 3", .x = 4, .y = 2}));
}

Frame scene_frame() {
    std::vector<std::uint8_t> soft;
    for (int alpha = 0; alpha < 16; ++alpha)
        soft.insert(soft.end(), {255, 255, 255, static_cast<std::uint8_t>(alpha * 17)});
    const MeshHandle ball = graphics().upload_mesh(sphere().get());
    const MeshHandle ground = graphics().upload_mesh(square().get());
    const PictureHandle glow = upload(soft, 4, 4);
    graphics().set_atmosphere({.zenith = {0.1F, 0.15F, 0.4F, 1.0F},
                               .horizon = {0.7F, 0.5F, 0.4F, 1.0F},
                               .nadir = {0.1F, 0.1F, 0.2F, 1.0F},
                               .fog_start = 3.0,
                               .fog_end = 9.0});
    Frame frame = frame_of(camera_before_place(), [&] { draw_scene(ball, ground, glow); });
    graphics().set_atmosphere({});
    return frame;
}

Frame stored_frame(const char* file) {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t* pixels = nullptr;
    graphics().load_bitmap(file, &width, &height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    return {width, {pixels, pixels + std::size_t{4} * width * height}};
}

// How many bytes differ by more than a driver may round differently; all if the sizes differ.
std::size_t differences(const Frame& a, const Frame& b) {
    if (a.pixels.size() != b.pixels.size())
        return a.pixels.size();
    std::size_t count = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        count += std::abs(a.pixels[i] - b.pixels[i]) > 6 ? 1 : 0;
    return count;
}

} // namespace

TEST_F(GraphicsFrame, TheSceneIsTheStoredOneAndTheSameEachTime) {
    const Frame first = scene_frame();
    graphics().close();
    SetUp();
    EXPECT_EQ(first.pixels, scene_frame().pixels);

    // Edges may differ a little more.
    const std::size_t different = differences(first, stored_frame(STORED_FRAMES "/scene.png"));
    EXPECT_LT(different, first.pixels.size() / 100) << "the frame is left as scene.png";
    if (HasFailure()) {
        std::vector<std::uint8_t> pixels = first.pixels;
        graphics().save_bitmap("scene.png", WIDTH, HEIGHT, pixels.data());
    }
}

TEST_F(GraphicsFrame, OverlaysCoverTheirPixelsInTheOrderOfTheCalls) {
    const PictureHandle quarters =
        upload({255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255}, 2, 2);
    const MeshHandle mesh = graphics().upload_mesh(square().get());
    const Frame frame = frame_of(camera_before_place(), [&] {
        graphics().draw_overlay({.x = 10, .y = 70, .width = 30, .height = 8, .color = BLUE});
        graphics().draw_overlay({.picture = quarters, .x = 20, .y = 72, .width = 4, .height = 4});
        // The lower half of the picture alone, drawn before a mesh in the same place.
        graphics().draw_overlay({.picture = quarters,
                                 .x = 70,
                                 .y = 40,
                                 .width = 20,
                                 .height = 10,
                                 .top = 0.5F,
                                 .color = {1.0F, 1.0F, 0.5F, 1.0F}});
        graphics().draw_mesh({.mesh = mesh, .position = PLACE, .is_lit = false});
        EXPECT_TRUE(graphics().draw_overlay({.picture = quarters, .x = 10, .width = 5}));
        graphics().release_picture(quarters);
    });

    const struct {
        int x;
        int y;
        Rgb expected;
    } probes[] = {{10, 70, {0, 0, 255}}, {39, 77, {0, 0, 255}},    {9, 70, BLACK_PIXEL},
                  {40, 77, BLACK_PIXEL}, {10, 69, BLACK_PIXEL},    {39, 78, BLACK_PIXEL},
                  {20, 72, {255, 0, 0}}, {23, 72, {0, 255, 0}},    {21, 75, {0, 0, 255}},
                  {70, 40, {0, 0, 128}}, {89, 49, {255, 255, 128}}};

    for (const auto& probe : probes)
        EXPECT_EQ(probe.expected, frame.at(probe.x, probe.y)) << probe.x << " " << probe.y;
}

TEST_F(GraphicsFrame, TextIsWhereItIsMeasuredToBe) {
    const struct {
        const char* name;
        TextDrawing drawing;
        int lines;
    } cases[] = {{"OneLine", {.text = "Hxg", .x = 7, .y = 11, .size = 20}, 1},
                 {"TwoLines", {.text = "Hxg\nlonger g", .x = 3, .y = 5, .size = 16}, 2},
                 {"BeyondAscii", {.text = "\u00c4\u03a9\u2014g", .x = 20, .y = 30, .size = 24}, 1},
                 {"BoxesForWhatTheFontLacks", {.text = "\U000f0000g", .x = 9, .size = 30}, 1}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        float width = 0;
        float height = 0;
        ASSERT_TRUE(graphics().measure_text(row.drawing, width, height));
        EXPECT_EQ(row.drawing.size * static_cast<float>(row.lines), height);
        const auto [left, top, right, bottom] = painted_part(text_frame(row.drawing));
        EXPECT_NEAR(row.drawing.x, left, 4);
        EXPECT_NEAR(row.drawing.x + width, right, 4);
        EXPECT_GE(top, row.drawing.y);
        EXPECT_LE(static_cast<float>(top), row.drawing.y + row.drawing.size / 2);
        EXPECT_LE(static_cast<float>(bottom), row.drawing.y + height + 1);
        EXPECT_GE(static_cast<float>(bottom), row.drawing.y + height - row.drawing.size / 4);
    }
    EXPECT_EQ((std::array<int, 4>{WIDTH, HEIGHT, 0, 0}), painted_part(text_frame({.text = ""})));
}

TEST_F(GraphicsFrame, TooManyGlyphsAreRefusedInOneFrameAndDrawnInTheNext) {
    const TextDrawing large = {.text = "abcdefghijklmnopqrstuvwxyz", .size = 256};
    frame_of({}, [&] {
        bool is_full = false;
        for (float size = 256; size > 200 && !is_full; --size)
            is_full = !graphics().draw_text({.text = large.text, .size = size});
        EXPECT_THAT(graphics().last_error(), HasSubstr("too many glyphs"));
    });
    EXPECT_NE(0, painted_part(text_frame(large))[2]);
}

TEST_F(GraphicsFrame, WhatIsOutOfSightCostsNothing) {
    const MeshHandle mesh = graphics().upload_mesh(sphere().get());

    const struct {
        const char* name;
        cVector3D place;
        bool is_seen;
    } cases[] = {{"InFront", {0, 0, 0}, true},        {"Behind", {0, 0, -4.2}, false},
                 {"AtTheEdge", {3.2, 0, 0}, true},    {"Right", {4.5, 0, 0}, false},
                 {"Above", {0, 3.5, 0}, false},       {"TooFar", {0, 0, 2000}, false},
                 {"AroundTheEye", {0, 0, -3.5}, true}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        frame_of(camera_before_place(),
                 [&] { graphics().draw_mesh({.mesh = mesh, .position = PLACE + row.place}); });
        FrameFigures figures;
        graphics().get_figures(figures);
        EXPECT_EQ(row.is_seen ? 12u * 24 * 2 : 0u, figures.triangles);
        EXPECT_EQ(row.is_seen ? 1u : 0u, figures.draw_calls);
    }
}

TEST_F(GraphicsFrame, WhatCannotBeDoneIsRefusedWithTheReason) {
    const ScratchFolder folder;
    std::ofstream("text.ttf") << "no font, but long enough to be looked at";
    fs::copy(FONT, "damaged.ttf");
    std::fstream("damaged.ttf", std::ios::in | std::ios::out | std::ios::binary)
        .seekp(200000)
        .put('!');
    fs::copy(FONT, "cut.ttf");
    fs::resize_file("cut.ttf", 100000);
    const Cache whole = square();
    const Cache lines(__mGraphics_create_render_cache(3, 2, false, false, false, false));
    const Cache empty(__mGraphics_create_render_cache(1, 4, false, false, false, false));
    __mGraphics_render_cache_cleanup(empty.get());
    Camera flat;
    flat.vertical_field_of_view = 0.0;
    Camera inverted;
    inverted.far_plane = 0.05;
    const cLight lights[MAX_LIGHTS + 1];
    std::uint8_t pixel[4] = {};
    const Graphics& g = graphics();

    const struct {
        const char* reason;
        bool in_frame;
        std::function<bool()> call;
    } cases[] = {
        {"open already", false, [&] { return g.open({.offscreen = true}); }},
        {"no finished frame", false, [&] { return g.read_frame(pixel, 1, 1); }},
        {"no frame: call begin_frame", false, [&] { return g.end_frame(); }},
        {"no frame: call begin_frame", false, [&] { return g.draw_text({.text = "x"}); }},
        {"before has not ended", true, [&] { return g.begin_frame({}); }},
        {"within a frame", true, [&] { return g.resize(9, 9); }},
        {"1 to 8192 pixels", false, [&] { return g.resize(9, 9000); }},
        {"no full screen", false, [&] { return g.set_fullscreen(true); }},
        {"field of view", false, [&] { return g.begin_frame(flat); }},
        {"near plane", false, [&] { return g.begin_frame(inverted); }},
        {"more than 16 lights", false, [&] { return g.set_lights(lights, MAX_LIGHTS + 1); }},
        {"no positions", false, [&] { return g.upload_mesh(empty.get()) != 0; }},
        {"fewer than 3 corners", false, [&] { return g.upload_mesh(lines.get()) != 0; }},
        {"no mesh 77", false, [&] { return g.update_mesh(77, whole.get()); }},
        {"no mesh 0", true, [&] { return g.draw_mesh({}); }},
        {"no picture 77", true, [&] { return g.draw_overlay({.picture = 77}); }},
        {"no picture 77", false, [&] { return g.update_picture(77, pixel, 1, 1); }},
        {"no pixels", false, [&] { return g.upload_picture(pixel, 0, 5, {}) != 0; }},
        {"8192 pixels a side", false, [&] { return g.upload_picture(pixel, 9000, 1, {}) != 0; }},
        {"not between 4 and 256", true, [&] { return g.draw_text({.text = "x", .size = 3}); }},
        {"No such file", false, [&] { return g.set_font("missing.ttf"); }},
        {"not a TrueType font", false, [&] { return g.set_font("text.ttf"); }},
        {"damaged", false, [&] { return g.set_font("damaged.ttf"); }},
        {"damaged", false, [&] { return g.set_font("cut.ttf"); }},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.reason);
        if (row.in_frame)
            g.begin_frame({});
        EXPECT_FALSE(row.call());
        EXPECT_THAT(g.last_error(), HasSubstr(row.reason));
        if (!row.in_frame)
            continue;
        g.end_frame();
        // So that there is no finished frame in the next row.
        ASSERT_TRUE(g.resize(WIDTH + 1, HEIGHT) && g.resize(WIDTH, HEIGHT));
    }
    EXPECT_TRUE(g.set_font(FONT));
}

TEST_F(GraphicsFrame, HandlesEndWithTheirReleaseAndWithTheSurface) {
    const MeshHandle mesh = graphics().upload_mesh(square().get());
    graphics().release_mesh(mesh);
    const MeshHandle second = graphics().upload_mesh(square().get());
    EXPECT_NE(mesh, second);
    graphics().close();
    EXPECT_FALSE(graphics().update_mesh(second, square().get()));
    EXPECT_THAT(graphics().last_error(), HasSubstr("no surface"));
}

TEST_F(GraphicsFrame, AMissingDisplayIsSaid) {
    if (std::getenv("DISPLAY") != nullptr)
        GTEST_SKIP() << "there is a display";
    graphics().close();
    EXPECT_FALSE(graphics().open({.title = "window"}));
    EXPECT_THAT(graphics().last_error(), HasSubstr("no display"));
}

TEST_F(GraphicsFrame, AWindowShowsTheSameFrame) {
    if (std::getenv("DISPLAY") == nullptr)
        GTEST_SKIP() << "there is no display";
    const Frame offscreen = scene_frame();
    graphics().close();
    ASSERT_TRUE(graphics().open({.title = "scene", .width = WIDTH, .height = HEIGHT}))
        << graphics().last_error();
    EXPECT_EQ(offscreen.pixels, scene_frame().pixels);
    ASSERT_TRUE(graphics().resize(200, 60));
    EXPECT_EQ(200, frame_of({}, [] {}).width);
    EXPECT_TRUE(graphics().set_fullscreen(true)) << graphics().last_error();
    Surface surface;
    EXPECT_TRUE(graphics().get_surface(surface));
    EXPECT_TRUE(surface.is_fullscreen && surface.has_window && !surface.close_requested);
}

// The C library would end the process where there is no memory for it at the first picture.
TEST(GraphicsPlugin, WhatLibjpegKeepsForTheThreadIsThereAfterInitialize) {
    graphics();
    const auto visit = [](dl_phdr_info* info, std::size_t, void* found) {
        if (std::strstr(info->dlpi_name, "libjpeg") != nullptr && info->dlpi_tls_modid != 0)
            *static_cast<bool*>(found) = info->dlpi_tls_data != nullptr;
        return 0;
    };
    bool is_touched = false;
    dl_iterate_phdr(visit, &is_touched);
    EXPECT_TRUE(is_touched);
}

TEST(GraphicsPlugin, TheLibraryUnloadsWithASurfaceOpen) {
    const ScratchFolder folder;
    fs::create_directory("plugin");
    fs::copy(GRAPHICS_FILE, "plugin");
    LoadedLibrary library;
    EXPORT_OF(library, __mCore_open)();
    {
        const auto loaded = contract<Graphics>(EXPORT_OF(library, __mGraphics_instance)());
        ASSERT_TRUE(loaded) << loaded.reason;
        EXPECT_TRUE(loaded->open({.width = 9, .height = 5, .offscreen = true}));
        EXPECT_TRUE(loaded->begin_frame({}));
    }
    library.unload();
    EXPECT_FALSE(is_mapped(fs::current_path().string()));
}
