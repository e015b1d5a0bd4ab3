// SPDX-License-Identifier: MIT
// The contract of a renderer: one window or offscreen surface, frames of lit meshes, lines, sprites
// and overlays, and the frame read back.
//
// World: x to the right, y up, z forward, in units of the host's choice. An orientation is a
// rotation whose columns are right, up and forward, as __cMatrix3d_from_forward_and_up builds it;
// `cMatrix3D(quaternion)` makes one of a quaternion.
// Overlay: pixels of the surface from its top left corner, x to the right, y down.
// Angles are radians, save cLight::spot_cutoff. Colours are as shown on the screen (sRGB); light is
// summed in linear light.
// Handles are small integers; 0 is none. They are valid from the upload until the release or
// `close`.
// An operation that fails returns false or 0, draws nothing, and leaves the reason in last_error.
// Arguments are read during the call; nothing is kept but what an upload copies.
#pragma once

#include "contract.h"
#include "pictures.h"

#include "quillon/appearance/color.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/light.h"
#include "quillon/appearance/material.h"
#include "quillon/math/matrix.h"
#include "quillon/math/vector.h"
#include "quillon/rendercache/render_cache.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

// Numbers of what was uploaded; 0 is none.
using MeshHandle = std::uint32_t;
using PictureHandle = std::uint32_t;

// As many lights as set_lights takes.
inline constexpr std::uint32_t MAX_LIGHTS = 16;

// What `open` is asked for.
struct SurfaceRequest {
    const char* title = "";       // of the window, UTF-8
    std::uint16_t width = 1280;   // pixels, 1 to 8192
    std::uint16_t height = 720;   // likewise
    std::uint8_t samples = 4;     // a pixel, for smooth edges; 0 or 1 for none; fewer if need be
    bool offscreen = false;       // draw without a window, on machines without a display too
    bool fullscreen = false;      // the window fills the display
    bool wait_for_display = true; // end_frame waits for the display's next refresh
};

// What there is.
struct Surface {
    std::uint16_t width = 0;      // pixels; follows the window if the user resizes it
    std::uint16_t height = 0;     // likewise
    std::uint8_t samples = 0;     // a pixel
    bool has_window = false;      // false offscreen
    bool is_fullscreen = false;   // the window fills the display
    bool close_requested = false; // the user asked to close the window; it stays open until `close`
    const char* renderer = "";    // the driver's own words
};

// Where a frame is seen from.
struct Camera {
    cVector3D position;                  // in the world
    cMatrix3D orientation;               // columns right, up, forward
    double vertical_field_of_view = 1.0; // radians, above 0 and below PI
    double near_plane = 0.1;             // distances along forward, 0 < near_plane < far_plane
    double far_plane = 1000.0;           // what is farther is cut off
};

// The sky behind a frame, and the fog in which what is far fades into that sky.
struct Atmosphere {
    cColor zenith = {0.0F, 0.0F, 0.0F, 1.0F};  // straight up
    cColor horizon = {0.0F, 0.0F, 0.0F, 1.0F}; // level
    cColor nadir = {0.0F, 0.0F, 0.0F, 1.0F};   // straight down
    double fog_start = 0.0;                    // distance from the camera at which fog begins
    double fog_end = 0.0; // and at which nothing else is seen; no fog unless above fog_start
};

// The values of cLight::light_flag; any other is as LIGHT_OFF.
//
// A light reaches a surface with diffuse, specular and ambient times its intensity. That of a point
// falls off with the distance d by 1 / (constant + linear d + quadratic d^2), less 1 / 256 so that
// it ends: what is beyond costs nothing, a mesh of small parts less than one. With a spot_cutoff
// below 90 degrees it fills the cone of that half angle about its direction only, and fades from
// the axis by the cosine to the power of spot_exponent.
enum LightFlag : std::uint8_t {
    LIGHT_OFF = 0,
    LIGHT_POINT = 1,      // shines from its position
    LIGHT_DIRECTIONAL = 2 // shines along its direction from far away, without falling off
};

// How what is drawn meets what is there already.
enum class Blend : std::uint8_t {
    Opaque, // hides what is behind it
    Alpha,  // covers by its alpha; drawn after everything opaque, from far to near
    Add     // adds its light, times its alpha
};

// One mesh in one place.
struct MeshDrawing {
    MeshHandle mesh = 0;                 // from upload_mesh
    cVector3D position = {};             // of the mesh's origin in the world
    cMatrix3D rotation = {};             // applied after `scale`
    cVector3D scale = {1.0, 1.0, 1.0};   // along the mesh's own axes
    const cMaterial* material = nullptr; // null: MATERIAL_DEFAULT
    PictureHandle texture = 0;           // times the diffuse colour and the alpha
    // As __cBitmap_bump_map_to_normal_map makes it: red along the first texture axis, green along
    // the second, blue along the normal. Needs tangents and texture coordinates in the mesh.
    PictureHandle normal_map = 0;
    Blend blend = Blend::Opaque;
    bool is_lit = true; // otherwise the emission and the diffuse colour show as they are
};

// A picture that always faces the camera: a glow, a spark, the moon.
struct SpriteDrawing {
    cVector3D position = {};   // of its centre in the world
    double width = 1.0;        // world units
    double height = 1.0;       // likewise
    PictureHandle picture = 0; // 0: a plain rectangle
    cColor color = WHITE;      // times the picture
    Blend blend = Blend::Add;  // as in MeshDrawing
    bool has_fog = true;       // fades with the distance
};

// How a picture is read where it does not fall pixel on pixel, and past its edges.
struct PictureOptions {
    bool smooth = true; // between pixels and with smaller copies for the distance
    bool repeat = true; // past its edges; otherwise the edge goes on
};

// A picture or a plain rectangle over the frame.
struct OverlayDrawing {
    PictureHandle picture = 0; // 0: a plain rectangle
    float x = 0.0F;            // the top left corner, pixels
    float y = 0.0F;            // from the top down
    float width = 0.0F;        // pixels
    float height = 0.0F;       // likewise
    float left = 0.0F;         // the part of the picture that is shown, 0 to 1
    float top = 0.0F;          // from the top down, as `bottom`
    float right = 1.0F;        // of the part
    float bottom = 1.0F;       // of the part
    cColor color = WHITE;      // times the picture; alpha covers
};

// A text over the frame.
struct TextDrawing {
    const char* text = ""; // UTF-8; a line ends at '\n'; a character that the font lacks is a box
    float x = 0.0F;        // the top left corner of the first line, pixels
    float y = 0.0F;        // from the top down
    float size = 16.0F;    // pixels from line to line, 4 to 256
    cColor color = WHITE;  // alpha covers
};

// What the latest frame was made of.
struct FrameFigures {
    std::uint32_t triangles = 0;  // that were drawn
    std::uint32_t draw_calls = 0; // of the driver
};

// The table of GRAPHICS under this contract.
struct Graphics {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modGraphics;
    static constexpr const char* SERVICE = "GRAPHICS";
    static constexpr ContractIdentity IDENTITY = {"quillon.graphics", 1};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest call that can fail failed, in one line; empty if it succeeded.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    // Opens the one surface; false if it is open already.
    bool (*open)(const SurfaceRequest& request) = nullptr;
    // Closes the surface and drops all meshes and pictures; does nothing if it is not open.
    void (*close)() = nullptr;
    // Changes the size of surface and window, 1 to 8192 pixels a side; not between begin_frame and
    // end_frame.
    bool (*resize)(std::uint16_t width, std::uint16_t height) = nullptr;
    // Lets the window fill the display or not; false without a window.
    bool (*set_fullscreen)(bool fullscreen) = nullptr;
    // False, with a cleared record, if the surface is not open.
    bool (*get_surface)(Surface& surface) = nullptr;

    // Begins a frame, cleared to the sky. All drawing is between this and end_frame.
    bool (*begin_frame)(const Camera& camera) = nullptr;
    // Ends the frame and shows it.
    bool (*end_frame)() = nullptr;
    // Copies the latest finished frame as 8-bit RGBA, top row first, alpha 255; width and height
    // are those of the surface.
    bool (*read_frame)(std::uint8_t* pixels, std::uint16_t width, std::uint16_t height) = nullptr;

    // Sets the sky and the fog of all frames from the next begin_frame on; black at first.
    void (*set_atmosphere)(const Atmosphere& atmosphere) = nullptr;
    // Sets the lights of what is drawn from now on, at most MAX_LIGHTS; none at first.
    bool (*set_lights)(const cLight* lights, std::uint32_t count) = nullptr;

    // Copies a cache of polygons with 3 or more corners, convex and flat if more than 3.
    //
    // Without normals every polygon gets that of its plane, on the side from which its corners go
    // round clockwise; colours are multiplied with the material's diffuse colour.
    // Polygons are drawn from both sides.
    MeshHandle (*upload_mesh)(const cRenderCache* cache) = nullptr;
    // Replaces the contents of a mesh, of whatever shape.
    bool (*update_mesh)(MeshHandle mesh, const cRenderCache* cache) = nullptr;
    // Does nothing for a handle that is none.
    void (*release_mesh)(MeshHandle mesh) = nullptr;

    // The contract `Pictures`.
    void (*load_bitmap)(const char* name, void* width, void* height, void* pixels) = nullptr;
    bool (*save_bitmap)(const char* name, std::uint16_t width, std::uint16_t height,
                        std::uint8_t* pixels) = nullptr;

    // Copies 8-bit RGBA pixels, top row first, at most 8192 a side. Texture coordinate (0, 0) is
    // the top left corner of the picture, (1, 1) the bottom right.
    PictureHandle (*upload_picture)(const std::uint8_t* pixels, std::uint16_t width,
                                    std::uint16_t height, const PictureOptions& options) = nullptr;
    // Replaces the pixels of a picture, of the same size or another.
    bool (*update_picture)(PictureHandle picture, const std::uint8_t* pixels, std::uint16_t width,
                           std::uint16_t height) = nullptr;
    // Does nothing for a handle that is none.
    void (*release_picture)(PictureHandle picture) = nullptr;

    // Draws a mesh in one place, between begin_frame and end_frame.
    bool (*draw_mesh)(const MeshDrawing& drawing) = nullptr;
    // Joins the points in their order by lines, one pixel wide and with fog.
    bool (*draw_lines)(const cVector3D* points, std::uint32_t count, const cColor& color) = nullptr;
    bool (*draw_sprite)(const SpriteDrawing& drawing) = nullptr;
    // Overlays cover the scene, and each other in the order of the calls.
    bool (*draw_overlay)(const OverlayDrawing& drawing) = nullptr;
    bool (*draw_text)(const TextDrawing& drawing) = nullptr;
    // The size in pixels that draw_text takes for it.
    bool (*measure_text)(const TextDrawing& drawing, float& width, float& height) = nullptr;
    // Takes a TrueType font for all text from now on; the old one stays if it fails.
    bool (*set_font)(const char* file) = nullptr;
    void (*get_figures)(FrameFigures& figures) = nullptr;

    void* reserved_28_to_63[36] = {};                        // null
    void* own_64_to_96[OWN_ENTRY_COUNT<GraphicsTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(Graphics) == sizeof(GraphicsTable));
static_assert(offsetof(Graphics, identify) == offsetof(Pictures, identify));
static_assert(offsetof(Graphics, last_error) == offsetof(Pictures, last_error));
static_assert(offsetof(Graphics, load_bitmap) == offsetof(GraphicsTable, load_bitmap));
static_assert(offsetof(Graphics, save_bitmap) == offsetof(GraphicsTable, save_bitmap));
static_assert(offsetof(Graphics, own_64_to_96) == FIRST_OWN_ENTRY<GraphicsTable> * sizeof(void*));

} // namespace quillon
