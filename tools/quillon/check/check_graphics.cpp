// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "check/frame.h"

namespace tool {
namespace {

using quillon::Graphics;

void check_closed(const Graphics& graphics) {
    check(GRAPHICS, "refuses to draw without a surface", [&] {
        quillon::Surface surface;
        surface.width = 9;
        expect(!graphics.get_surface(surface) && surface.width == 0,
               "get_surface reports a surface");
        std::uint8_t pixel[4] = {};
        expect_failure(graphics, !graphics.begin_frame({}), "begin_frame");
        expect_failure(graphics, !graphics.end_frame(), "end_frame");
        expect_failure(graphics, !graphics.resize(WIDTH, HEIGHT), "resize");
        expect_failure(graphics, !graphics.read_frame(pixel, 1, 1), "read_frame");
        expect_failure(graphics, graphics.upload_picture(pixel, 1, 1, {}) == 0, "upload_picture");
    });
}

bool opens(const Graphics& graphics) {
    bool is_open = false;
    check(GRAPHICS, "opens one surface without a window", [&] {
        const quillon::SurfaceRequest request{
            .title = "check", .width = WIDTH, .height = HEIGHT, .samples = 0, .offscreen = true};
        is_open = graphics.open(request);
        expect_success(graphics, is_open, "open");
        expect_failure(graphics, !graphics.open(request), "a second open");
        quillon::Surface surface;
        expect(graphics.get_surface(surface), "get_surface reports none");
        expect(surface.width == WIDTH && surface.height == HEIGHT && !surface.has_window,
               "get_surface reports another one than was asked for");
    });
    return is_open;
}

void check_frames(const Graphics& graphics) {
    check(GRAPHICS, "clears a frame to the sky, and reads it back", [&] {
        graphics.set_atmosphere({.zenith = SKY, .horizon = SKY, .nadir = SKY});
        begin_frame(graphics);
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        for (const std::size_t x : {0, 31, WIDTH - 1})
            frame.expect_at(x, x == 31 ? 17 : HEIGHT - 1U, SKY_BYTES, "the sky");
        std::uint8_t pixel[4] = {};
        expect_failure(graphics, !graphics.read_frame(pixel, 1, 1), "read_frame of another size");
    });
    check(GRAPHICS, "keeps the order of begin_frame and end_frame", [&] {
        expect_failure(graphics, !graphics.end_frame(), "end_frame without begin_frame");
        expect_failure(graphics, !graphics.draw_overlay({.width = 3, .height = 2}),
                       "draw_overlay outside a frame");
        begin_frame(graphics);
        expect_failure(graphics, !graphics.begin_frame({}), "a second begin_frame");
        end_frame(graphics);
    });
}

void check_rectangles(const Graphics& graphics) {
    check(GRAPHICS, "draws an overlay pixel on pixel", [&] {
        begin_frame(graphics);
        expect_success(graphics, graphics.draw_overlay({.x = 9, .y = 4, .width = 16, .height = 10}),
                       "draw_overlay");
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        frame.expect_at(9, 4, WHITE_BYTES, "the overlay's first corner");
        frame.expect_at(24, 13, WHITE_BYTES, "the overlay's last corner");
        frame.expect_at(8, 4, SKY_BYTES, "what is left of the overlay");
        frame.expect_at(24, 14, SKY_BYTES, "what is below the overlay");
    });
    check(GRAPHICS, "draws a sprite in front of the camera", [&] {
        begin_frame(graphics);
        expect_success(
            graphics,
            graphics.draw_sprite(
                {.position = {0, 0, 5}, .blend = quillon::Blend::Opaque, .has_fog = false}),
            "draw_sprite");
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        frame.expect_at(WIDTH / 2, HEIGHT / 2, WHITE_BYTES, "the sprite");
        frame.expect_at(2, 3, SKY_BYTES, "what is beside the sprite");
        quillon::FrameFigures figures;
        graphics.get_figures(figures);
        expect(figures.triangles >= 2 && figures.draw_calls >= 1,
               "get_figures does not count the sprite");
    });
}

void check_resources(const Graphics& graphics) {
    check(GRAPHICS, "draws an uploaded picture until it is released", [&] {
        const std::uint8_t pixels[] = {200, 10, 20, 255, 30, 210, 40, 255};
        const auto picture = graphics.upload_picture(pixels, 2, 1, {.smooth = false});
        expect_success(graphics, picture != 0, "upload_picture");
        begin_frame(graphics);
        expect_success(
            graphics,
            graphics.draw_overlay({.picture = picture, .x = 6, .y = 8, .width = 2, .height = 1}),
            "draw_overlay of it");
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        frame.expect_at(6, 8, {200, 10, 20, 255}, "the picture's first pixel");
        frame.expect_at(7, 8, {30, 210, 40, 255}, "the picture's second pixel");
        graphics.release_picture(picture);
        begin_frame(graphics);
        const bool is_refused =
            !graphics.draw_overlay({.picture = picture, .width = 2, .height = 1});
        expect_failure(graphics, is_refused, "draw_overlay of a released picture");
        end_frame(graphics);
    });
    check(GRAPHICS, "refuses what is too much, and releases nothing", [&] {
        const std::uint8_t pixel[4] = {};
        expect_failure(graphics, graphics.upload_picture(pixel, 0, 1, {}) == 0,
                       "upload_picture of 0 pixels");
        const std::array<quillon::cLight, quillon::MAX_LIGHTS + 1> lights;
        expect_failure(graphics, !graphics.set_lights(lights.data(), quillon::MAX_LIGHTS + 1),
                       "set_lights of too many");
        expect_failure(graphics, !graphics.set_font("missing.ttf"), "set_font of a missing file");
        expect_failure(graphics, !graphics.resize(0, HEIGHT), "resize to 0");
        graphics.release_mesh(0);
        graphics.release_picture(12345);
    });
}

void check_size(const Graphics& graphics) {
    check(GRAPHICS, "changes its size", [&] {
        expect_success(graphics, graphics.resize(33, 21), "resize");
        begin_frame(graphics);
        end_frame(graphics);
        const Frame frame(graphics, 33, 21);
        frame.expect_at(32, 20, SKY_BYTES, "the last pixel");
    });
    check(GRAPHICS, "closes, twice too", [&] {
        graphics.close();
        graphics.close();
        quillon::Surface surface;
        expect(!graphics.get_surface(surface), "get_surface still reports a surface");
    });
}

} // namespace

void check_graphics(const Graphics& graphics) {
    check_closed(graphics);
    if (!opens(graphics))
        return;
    check_frames(graphics);
    check_rectangles(graphics);
    check_resources(graphics);
    check_drawing(graphics);
    check_size(graphics);
}

} // namespace tool
