// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "plugins/contracts/graphics.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace tool {
namespace {

using quillon::cColor;
using quillon::Graphics;

constexpr const char* SUBJECT = "GRAPHICS";
constexpr std::uint16_t WIDTH = 72;
constexpr std::uint16_t HEIGHT = 40;

constexpr cColor SKY(0.25F, 0.5F, 0.75F, 1);
constexpr std::array<int, 4> SKY_BYTES = {64, 128, 191, 255};
constexpr std::array<int, 4> WHITE_BYTES = {255, 255, 255, 255};

// A finished frame, read back.
class Frame {
public:
    Frame(const Graphics& graphics, std::uint16_t frame_width, std::uint16_t height)
        : width(frame_width), pixels(std::size_t{frame_width} * height * 4) {
        expect_success(graphics, graphics.read_frame(pixels.data(), width, height), "read_frame");
    }

    // Two steps of a byte are the rounding of drivers.
    void expect_at(std::size_t x, std::size_t y, const std::array<int, 4>& color,
                   const std::string& what) const {
        const std::uint8_t* const pixel = &pixels[(y * width + x) * 4];
        for (std::size_t channel = 0; channel < color.size(); ++channel)
            expect(std::abs(pixel[channel] - color[channel]) <= 2,
                   what + " has the wrong colour at (" + std::to_string(x) + ", " +
                       std::to_string(y) + "): channel " + std::to_string(channel) + " is " +
                       std::to_string(pixel[channel]) + ", not " + std::to_string(color[channel]));
    }

private:
    std::uint16_t width;
    std::vector<std::uint8_t> pixels;
};

void begin(const Graphics& graphics) {
    expect_success(graphics, graphics.begin_frame({}), "begin_frame");
}

void end(const Graphics& graphics) {
    expect_success(graphics, graphics.end_frame(), "end_frame");
}

void check_closed(const Graphics& graphics) {
    check(SUBJECT, "refuses to draw without a surface", [&] {
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
    check(SUBJECT, "opens one surface without a window", [&] {
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
    check(SUBJECT, "clears a frame to the sky, and reads it back", [&] {
        graphics.set_atmosphere({.zenith = SKY, .horizon = SKY, .nadir = SKY});
        begin(graphics);
        end(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        for (const std::size_t x : {0, 31, WIDTH - 1})
            frame.expect_at(x, x == 31 ? 17 : HEIGHT - 1U, SKY_BYTES, "the sky");
        std::uint8_t pixel[4] = {};
        expect_failure(graphics, !graphics.read_frame(pixel, 1, 1), "read_frame of another size");
    });
    check(SUBJECT, "keeps the order of begin_frame and end_frame", [&] {
        expect_failure(graphics, !graphics.end_frame(), "end_frame without begin_frame");
        expect_failure(graphics, !graphics.draw_overlay({.width = 3, .height = 2}),
                       "draw_overlay outside a frame");
        begin(graphics);
        expect_failure(graphics, !graphics.begin_frame({}), "a second begin_frame");
        end(graphics);
    });
    check(SUBJECT, "draws an overlay pixel on pixel", [&] {
        begin(graphics);
        expect_success(graphics, graphics.draw_overlay({.x = 9, .y = 4, .width = 16, .height = 10}),
                       "draw_overlay");
        end(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        frame.expect_at(9, 4, WHITE_BYTES, "the overlay's first corner");
        frame.expect_at(24, 13, WHITE_BYTES, "the overlay's last corner");
        frame.expect_at(8, 4, SKY_BYTES, "what is left of the overlay");
        frame.expect_at(24, 14, SKY_BYTES, "what is below the overlay");
    });
    check(SUBJECT, "draws a sprite in front of the camera", [&] {
        begin(graphics);
        expect_success(
            graphics,
            graphics.draw_sprite(
                {.position = {0, 0, 5}, .blend = quillon::Blend::Opaque, .has_fog = false}),
            "draw_sprite");
        end(graphics);
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
    check(SUBJECT, "draws an uploaded picture until it is released", [&] {
        const std::uint8_t pixels[] = {200, 10, 20, 255, 30, 210, 40, 255};
        const auto picture = graphics.upload_picture(pixels, 2, 1, {.smooth = false});
        expect_success(graphics, picture != 0, "upload_picture");
        begin(graphics);
        expect_success(
            graphics,
            graphics.draw_overlay({.picture = picture, .x = 6, .y = 8, .width = 2, .height = 1}),
            "draw_overlay of it");
        end(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        frame.expect_at(6, 8, {200, 10, 20, 255}, "the picture's first pixel");
        frame.expect_at(7, 8, {30, 210, 40, 255}, "the picture's second pixel");
        graphics.release_picture(picture);
        begin(graphics);
        const bool is_refused =
            !graphics.draw_overlay({.picture = picture, .width = 2, .height = 1});
        expect_failure(graphics, is_refused, "draw_overlay of a released picture");
        end(graphics);
    });
    check(SUBJECT, "refuses what is too much, and releases nothing", [&] {
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
    check(SUBJECT, "changes its size", [&] {
        expect_success(graphics, graphics.resize(33, 21), "resize");
        begin(graphics);
        end(graphics);
        const Frame frame(graphics, 33, 21);
        frame.expect_at(32, 20, SKY_BYTES, "the last pixel");
    });
    check(SUBJECT, "closes, twice too", [&] {
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
    check_resources(graphics);
    check_size(graphics);
}

} // namespace tool
