// SPDX-License-Identifier: MIT
// Meshes, lines and text, 5 units in front of the camera: a unit there is 7.3 pixels, and the
// middle is between the pixels 35 and 36 across, and 19 and 20 down.
#include "check/check.h"
#include "check/frame.h"
#include "quillon/comfort.h"

namespace tool {
namespace {

using quillon::Graphics;

constexpr quillon::cColor RUST(0.75F, 0.25F, 0.125F, 1);
constexpr Bytes RUST_BYTES = {191, 64, 32, 255};
constexpr quillon::cColor MOSS(0.25F, 0.5F, 0.125F, 1);
constexpr Bytes MOSS_BYTES = {64, 128, 32, 255};
constexpr Bytes BLACK_BYTES = {0, 0, 0, 255};

constexpr quillon::cMaterial PAINTED(quillon::WHITE, RUST, quillon::BLACK, quillon::BLACK, 0);

// A square of one polygon with sides of 2 * half units about the origin, which faces the camera.
quillon::RenderCache square(double half) {
    const quillon::cVector3D corners[] = {
        {-half, half, 0}, {half, half, 0}, {half, -half, 0}, {-half, -half, 0}};
    quillon::RenderCache cache = quillon::make_render_cache(1, 4, {});
    __mGraphics_modify_render_cache_from_verts(cache.get(), corners, nullptr, nullptr, nullptr);
    return cache;
}

quillon::MeshHandle upload(const Graphics& graphics, const quillon::RenderCache& cache) {
    const auto mesh = graphics.upload_mesh(cache.get());
    expect_success(graphics, mesh != 0, "upload_mesh");
    return mesh;
}

// A frame with that drawing alone.
Frame frame_of(const Graphics& graphics, const quillon::MeshDrawing& drawing) {
    begin_frame(graphics);
    expect_success(graphics, graphics.draw_mesh(drawing), "draw_mesh");
    end_frame(graphics);
    return {graphics, WIDTH, HEIGHT};
}

void check_placed_mesh(const Graphics& graphics) {
    check(GRAPHICS, "draws a mesh at its place, scaled and then rotated", [&] {
        const auto mesh = upload(graphics, square(1));
        quillon::cMatrix3D on_its_side;
        __cMatrix3d_from_forward_and_up(on_its_side, {0, 0, 1}, {1, 0, 0});
        // About (50, 20): 18 pixels to each side, and 3 up and down.
        const Frame frame = frame_of(graphics, {.mesh = mesh,
                                                .position = {2, 0, 5},
                                                .rotation = on_its_side,
                                                .scale = {0.5, 2.5, 1},
                                                .material = &PAINTED,
                                                .is_lit = false});
        frame.expect_at(50, 20, RUST_BYTES, "the mesh's middle");
        frame.expect_at(65, 20, RUST_BYTES, "the mesh's right end");
        frame.expect_at(50, 30, SKY_BYTES, "what is below the mesh");
        frame.expect_at(22, 20, SKY_BYTES, "what is left of the mesh");
        graphics.release_mesh(mesh);
    });
}

void check_lit_mesh(const Graphics& graphics) {
    check(GRAPHICS, "lights a mesh by the lights that are set", [&] {
        const auto mesh = upload(graphics, square(1));
        const quillon::MeshDrawing drawing = {
            .mesh = mesh, .position = {0, 0, 5}, .material = &PAINTED};
        expect_success(graphics, graphics.set_lights(nullptr, 0), "set_lights of none");
        frame_of(graphics, drawing).expect_at(36, 20, BLACK_BYTES, "a mesh without lights");
        quillon::cLight light;
        light.set_direction({0, 0, 1});
        light.light_flag = quillon::LIGHT_DIRECTIONAL;
        expect_success(graphics, graphics.set_lights(&light, 1), "set_lights");
        frame_of(graphics, drawing).expect_at(36, 20, RUST_BYTES, "a mesh in white light");
        graphics.set_lights(nullptr, 0);
        graphics.release_mesh(mesh);
    });
}

void check_replaced_mesh(const Graphics& graphics) {
    check(GRAPHICS, "replaces and releases a mesh", [&] {
        const auto mesh = upload(graphics, square(2));
        expect_success(graphics, graphics.update_mesh(mesh, square(0.5).get()), "update_mesh");
        const quillon::MeshDrawing drawing = {
            .mesh = mesh, .position = {0, 0, 5}, .material = &PAINTED, .is_lit = false};
        const Frame frame = frame_of(graphics, drawing);
        frame.expect_at(36, 20, RUST_BYTES, "the new mesh");
        frame.expect_at(46, 20, SKY_BYTES, "where only the old mesh was");
        graphics.release_mesh(mesh);
        begin_frame(graphics);
        expect_failure(graphics, !graphics.draw_mesh(drawing), "draw_mesh of a released mesh");
        end_frame(graphics);
        const quillon::RenderCache edges = quillon::make_render_cache(3, 2, {});
        expect_failure(graphics, graphics.upload_mesh(edges.get()) == 0,
                       "upload_mesh of polygons with 2 corners");
    });
}

void check_lines(const Graphics& graphics) {
    check(GRAPHICS, "joins points by lines", [&] {
        // To the right at the height of row 9, then down in column 57.
        const quillon::cVector3D points[] = {{-3, 1.5, 5}, {3, 1.5, 5}, {3, -2, 5}};
        begin_frame(graphics);
        expect_success(graphics, graphics.draw_lines(points, 3, MOSS), "draw_lines");
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        expect(frame.has(MOSS_BYTES, {36, 7, 37, 11}), "the first line is not there");
        expect(frame.has(MOSS_BYTES, {56, 20, 60, 21}), "the second line is not there");
        expect(!frame.has(MOSS_BYTES, {16, 12, 54, HEIGHT}), "there is a line back to the start");
    });
}

void check_text(const Graphics& graphics) {
    check(GRAPHICS, "draws a text from its corner, as large as it measures", [&] {
        // Large enough for strokes that fill whole pixels.
        quillon::TextDrawing drawing = {.text = "H", .x = 9, .y = 5, .size = 32, .color = MOSS};
        float width = 0;
        float height = 0;
        expect_success(graphics, graphics.measure_text(drawing, width, height), "measure_text");
        expect(width > 8 && width < 40, "measure_text has no sensible width");
        begin_frame(graphics);
        expect_success(graphics, graphics.draw_text(drawing), "draw_text");
        end_frame(graphics);
        const Frame frame(graphics, WIDTH, HEIGHT);
        const auto right = static_cast<std::size_t>(9 + width);
        expect(frame.has(MOSS_BYTES, {9, 5, right, 37}), "the text is not there");
        for (const Part& part : {Part{0, 0, 9, HEIGHT}, Part{right + 2, 0, WIDTH, HEIGHT}})
            expect(!frame.has(MOSS_BYTES, part), "there is text outside of what it measures");
        drawing.text = "H\nI";
        float two_lines = 0;
        expect_success(graphics, graphics.measure_text(drawing, width, two_lines), "measure_text");
        expect(two_lines == height + drawing.size, "a second line is not as high as the size");
    });
    check(GRAPHICS, "refuses a text of no size", [&] {
        begin_frame(graphics);
        expect_failure(graphics, !graphics.draw_text({.text = "x", .size = 3}), "draw_text");
        end_frame(graphics);
    });
}

} // namespace

void check_drawing(const Graphics& graphics) {
    check_placed_mesh(graphics);
    check_lit_mesh(graphics);
    check_replaced_mesh(graphics);
    check_lines(graphics);
    check_text(graphics);
}

} // namespace tool
