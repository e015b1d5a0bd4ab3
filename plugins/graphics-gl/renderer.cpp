// SPDX-License-Identifier: MIT
#include "renderer.h"

#include <span>
#include <stdexcept>
#include <string>
#include <utility>

namespace quillon::graphics_gl {
namespace {

constexpr int MAX_SIDE = 8192;
constexpr std::uint8_t WHITE_PIXEL[] = {255, 255, 255, 255};

const SurfaceRequest& checked(const SurfaceRequest& request) {
    if (request.width == 0 || request.height == 0 || request.width > MAX_SIDE ||
        request.height > MAX_SIDE)
        throw std::runtime_error("a surface has 1 to 8192 pixels a side");
    return request;
}

// A window may come out with another size than was asked for.
PixelSize first_size(const SurfaceRequest& request, const Window& window) {
    return window.is_shown() ? window.size() : PixelSize{request.width, request.height};
}

} // namespace

Renderer::Renderer(const SurfaceRequest& request)
    : window(checked(request)),
      wanted_samples(request.samples),
      target(first_size(request, window), wanted_samples),
      white(WHITE_PIXEL, 1, 1, {.smooth = false}) {
    if (epoxy_gl_version() < 33)
        throw std::runtime_error("the driver has no OpenGL 3.3");
}

void Renderer::fit_target(PixelSize size) {
    if (size.width == target.size().width && size.height == target.size().height)
        return;
    target = FrameTarget(size, wanted_samples);
    has_finished_frame = false;
}

void Renderer::resize(std::uint16_t width, std::uint16_t height) {
    if (is_in_frame)
        throw std::runtime_error("a surface is not resized within a frame");
    checked({.width = width, .height = height});
    if (window.is_shown())
        window.resize({width, height});
    fit_target({width, height});
}

void Renderer::set_fullscreen(bool fullscreen) {
    if (!window.is_shown())
        throw std::runtime_error("an offscreen surface has no full screen");
    window.set_fullscreen(fullscreen);
}

void Renderer::get_surface(Surface& surface) {
    surface = {.width = static_cast<std::uint16_t>(target.size().width),
               .height = static_cast<std::uint16_t>(target.size().height),
               .samples = static_cast<std::uint8_t>(target.samples()),
               .has_window = window.is_shown(),
               .is_fullscreen = window.is_fullscreen(),
               .close_requested = window.close_requested(),
               .renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER))};
}

void Renderer::begin_frame(const Camera& camera) {
    if (is_in_frame)
        throw std::runtime_error("the frame before has not ended");
    window.pump();
    if (window.is_shown())
        fit_target(window.size());
    const PixelSize size = target.size();
    const View view(camera, static_cast<double>(size.width) / size.height);
    target.begin_scene();
    scene.begin(view, atmosphere);
    is_in_frame = true;
}

void Renderer::end_frame() {
    require_frame();
    is_in_frame = false;
    target.finish_scene();
    finished_figures = scene.figures();
    finished_figures.triangles += overlay.triangle_count();
    finished_figures.draw_calls += overlay.batch_count();
    overlay.draw(target.size());
    has_finished_frame = true;
    released_pictures.clear();
    released_fonts.clear();
    if (font)
        font->make_space();
    if (!window.is_shown())
        return;
    target.present(window.size());
    window.swap();
}

void Renderer::read_frame(std::uint8_t* pixels, std::uint16_t width, std::uint16_t height) {
    if (!has_finished_frame)
        throw std::runtime_error("there is no finished frame of this size");
    if (width != target.size().width || height != target.size().height)
        throw std::runtime_error("the surface is " + std::to_string(target.size().width) + " x " +
                                 std::to_string(target.size().height) + " pixels, not " +
                                 std::to_string(width) + " x " + std::to_string(height));
    target.read(pixels);
}

void Renderer::set_atmosphere(const Atmosphere& new_atmosphere) {
    atmosphere = new_atmosphere;
}

void Renderer::set_lights(const cLight* lights, std::uint32_t count) {
    if (count > MAX_LIGHTS)
        throw std::runtime_error("there are more than " + std::to_string(MAX_LIGHTS) + " lights");
    scene.set_lights({lights, count});
}

MeshHandle Renderer::upload_mesh(const cRenderCache* cache) {
    meshes.emplace(last_handle + 1, Mesh(*cache));
    return ++last_handle;
}

void Renderer::update_mesh(MeshHandle mesh, const cRenderCache* cache) {
    mesh_of(mesh);
    meshes.at(mesh).replace(*cache);
}

void Renderer::release_mesh(MeshHandle mesh) {
    meshes.erase(mesh);
}

PictureHandle Renderer::upload_picture(const std::uint8_t* pixels, std::uint16_t width,
                                       std::uint16_t height, const PictureOptions& options) {
    pictures.emplace(last_handle + 1, PictureTexture(pixels, width, height, options));
    return ++last_handle;
}

void Renderer::update_picture(PictureHandle picture, const std::uint8_t* pixels,
                              std::uint16_t width, std::uint16_t height) {
    if (pictures.count(picture) == 0)
        throw std::runtime_error("there is no picture " + std::to_string(picture));
    pictures.at(picture).replace(pixels, width, height);
}

void Renderer::release_picture(PictureHandle picture) {
    const auto found = pictures.find(picture);
    if (found == pictures.end())
        return;
    if (is_in_frame)
        released_pictures.push_back(std::move(found->second));
    pictures.erase(found);
}

void Renderer::require_frame() const {
    if (!is_in_frame)
        throw std::runtime_error("there is no frame: call begin_frame first");
}

const Mesh& Renderer::mesh_of(MeshHandle handle) const {
    const auto found = meshes.find(handle);
    if (found == meshes.end())
        throw std::runtime_error("there is no mesh " + std::to_string(handle));
    return found->second;
}

GLuint Renderer::texture_of(PictureHandle handle) const {
    if (handle == 0)
        return white.get();
    const auto found = pictures.find(handle);
    if (found == pictures.end())
        throw std::runtime_error("there is no picture " + std::to_string(handle));
    return found->second.get();
}

void Renderer::draw_mesh(const MeshDrawing& drawing) {
    require_frame();
    scene.draw(drawing, mesh_of(drawing.mesh),
               {texture_of(drawing.texture), texture_of(drawing.normal_map)});
}

void Renderer::draw_lines(const cVector3D* points, std::uint32_t count, const cColor& color) {
    require_frame();
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, white.get());
    scene.draw_lines({points, count}, color);
}

void Renderer::draw_sprite(const SpriteDrawing& drawing) {
    require_frame();
    scene.draw(drawing, texture_of(drawing.picture));
}

void Renderer::draw_overlay(const OverlayDrawing& drawing) {
    require_frame();
    overlay.add(texture_of(drawing.picture),
                {drawing.x, drawing.y, drawing.x + drawing.width, drawing.y + drawing.height},
                {drawing.left, drawing.top, drawing.right, drawing.bottom}, drawing.color);
}

void Renderer::draw_text(const TextDrawing& drawing) {
    require_frame();
    overlay.add_text(usable_font(), drawing);
}

void Renderer::measure_text(const TextDrawing& drawing, float& width, float& height) {
    const TextSize size = Overlay::measure(usable_font(), drawing);
    width = size.width;
    height = size.height;
}

Font& Renderer::usable_font() {
    if (!font)
        font = std::make_unique<Font>(Font::default_file());
    return *font;
}

void Renderer::set_font(const char* file) {
    auto next = std::make_unique<Font>(file);
    if (font && is_in_frame)
        released_fonts.push_back(std::move(font));
    font = std::move(next);
}

} // namespace quillon::graphics_gl
