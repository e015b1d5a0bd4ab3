// SPDX-License-Identifier: MIT
// The operations of the contract `Graphics` on an open surface. Each throws std::runtime_error with
// the reason if it fails, and has then drawn nothing.
#pragma once

#include "font.h"
#include "frame_target.h"
#include "overlay.h"
#include "scene.h"
#include "window.h"

#include "plugins/contracts/graphics.h"

#include <memory>
#include <unordered_map>
#include <vector>

namespace quillon::graphics_gl {

class Renderer {
public:
    explicit Renderer(const SurfaceRequest& request);

    void resize(std::uint16_t width, std::uint16_t height);
    void set_fullscreen(bool fullscreen);
    void get_surface(Surface& surface);

    void begin_frame(const Camera& camera);
    void end_frame();
    void read_frame(std::uint8_t* pixels, std::uint16_t width, std::uint16_t height);

    void set_atmosphere(const Atmosphere& new_atmosphere);
    void set_lights(const cLight* lights, std::uint32_t count);

    MeshHandle upload_mesh(const cRenderCache* cache);
    void update_mesh(MeshHandle mesh, const cRenderCache* cache);
    void release_mesh(MeshHandle mesh);

    PictureHandle upload_picture(const std::uint8_t* pixels, std::uint16_t width,
                                 std::uint16_t height, const PictureOptions& options);
    void update_picture(PictureHandle picture, const std::uint8_t* pixels, std::uint16_t width,
                        std::uint16_t height);
    void release_picture(PictureHandle picture);

    void draw_mesh(const MeshDrawing& drawing);
    void draw_lines(const cVector3D* points, std::uint32_t count, const cColor& color);
    void draw_sprite(const SpriteDrawing& drawing);
    void draw_overlay(const OverlayDrawing& drawing);
    void draw_text(const TextDrawing& drawing);
    void measure_text(const TextDrawing& drawing, float& width, float& height);
    void set_font(const char* file);

    const FrameFigures& figures() const { return finished_figures; }

private:
    void require_frame() const;
    const Mesh& mesh_of(MeshHandle handle) const;
    // White for no handle. Throws for one that was never given out or is released.
    GLuint texture_of(PictureHandle handle) const;
    Font& usable_font();
    void fit_target(PixelSize size);

    Window window;
    int wanted_samples;
    FrameTarget target;
    PictureTexture white;
    Scene scene;
    Overlay overlay;
    std::unique_ptr<Font> font;
    Atmosphere atmosphere;
    FrameFigures finished_figures;
    bool is_in_frame = false;
    bool has_finished_frame = false;

    std::unordered_map<MeshHandle, Mesh> meshes;
    std::unordered_map<PictureHandle, PictureTexture> pictures;
    std::uint32_t last_handle = 0;
    // What the overlay of this frame may still show.
    std::vector<PictureTexture> released_pictures;
    std::vector<std::unique_ptr<Font>> released_fonts;
};

} // namespace quillon::graphics_gl
