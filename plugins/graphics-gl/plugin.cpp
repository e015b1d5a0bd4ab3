// SPDX-License-Identifier: MIT
// The plug-in "graphics-gl": the contract `Graphics`, answered by one Renderer while a surface is
// open.
#include "renderer.h"

#include "plugins/codecs/picture_files.h"
#include "quillon/core/plugin.h"

#include <memory>
#include <type_traits>

namespace quillon::graphics_gl {
namespace {

constinit LastError last_error;
constinit std::unique_ptr<Renderer> renderer;

// Runs an operation of the open renderer; its result, or 0 or false if it throws.
template <auto operation>
struct Entry;

template <typename Result, typename... Arguments, Result (Renderer::*operation)(Arguments...)>
struct Entry<operation> {
    using Answer = std::conditional_t<std::is_void_v<Result>, bool, Result>;

    static Answer call(Arguments... arguments) {
        Answer answer{};
        last_error.guard([&] {
            if (renderer == nullptr)
                throw std::runtime_error("there is no surface: call open first");
            if constexpr (std::is_void_v<Result>) {
                (renderer.get()->*operation)(arguments...);
                answer = true;
            } else {
                answer = (renderer.get()->*operation)(arguments...);
            }
        });
        return answer;
    }
};

// For entries that report nothing.
template <auto operation>
struct SilentEntry;

template <typename... Arguments, void (Renderer::*operation)(Arguments...)>
struct SilentEntry<operation> {
    static void call(Arguments... arguments) { Entry<operation>::call(arguments...); }
};

void close() {
    renderer.reset();
}

struct ClosesTheSurface {
    ClosesTheSurface() = default;
    ClosesTheSurface(const ClosesTheSurface&) = delete;
    ClosesTheSurface& operator=(const ClosesTheSurface&) = delete;

    ~ClosesTheSurface() { close(); }
};

// The driver has exit handlers of its own, and a surface must be closed before they run. Handlers
// run backwards, so this one is registered once the driver is up. It is a destructor: what
// std::atexit receives, the runtime of ThreadSanitizer keeps until exit, where the plug-in may be
// gone.
void close_before_the_driver_at_exit() {
    static const ClosesTheSurface at_exit;
}

bool open(const SurfaceRequest& request) {
    return last_error.guard([&request] {
        if (renderer != nullptr)
            throw std::runtime_error("the surface is open already");
        renderer = std::make_unique<Renderer>(request);
        close_before_the_driver_at_exit();
    });
}

bool get_surface(Surface& surface) {
    surface = {};
    return Entry<&Renderer::get_surface>::call(surface);
}

void get_figures(FrameFigures& figures) {
    figures = renderer == nullptr ? FrameFigures{} : renderer->figures();
}

void load_bitmap(const char* name, void* width, void* height, void* pixels) {
    codecs::load_bitmap(last_error, name, width, height, pixels);
}

bool save_bitmap(const char* name, std::uint16_t width, std::uint16_t height,
                 std::uint8_t* pixels) {
    return codecs::save_bitmap(last_error, name, width, height, pixels);
}

constexpr Graphics FUNCTIONS = {
    .last_error = [] { return last_error.text(); },
    .open = open,
    .close = close,
    .resize = Entry<&Renderer::resize>::call,
    .set_fullscreen = Entry<&Renderer::set_fullscreen>::call,
    .get_surface = get_surface,
    .begin_frame = Entry<&Renderer::begin_frame>::call,
    .end_frame = Entry<&Renderer::end_frame>::call,
    .read_frame = Entry<&Renderer::read_frame>::call,
    .set_atmosphere = SilentEntry<&Renderer::set_atmosphere>::call,
    .set_lights = Entry<&Renderer::set_lights>::call,
    .upload_mesh = Entry<&Renderer::upload_mesh>::call,
    .update_mesh = Entry<&Renderer::update_mesh>::call,
    .release_mesh = SilentEntry<&Renderer::release_mesh>::call,
    .load_bitmap = load_bitmap,
    .save_bitmap = save_bitmap,
    .upload_picture = Entry<&Renderer::upload_picture>::call,
    .update_picture = Entry<&Renderer::update_picture>::call,
    .release_picture = SilentEntry<&Renderer::release_picture>::call,
    .draw_mesh = Entry<&Renderer::draw_mesh>::call,
    .draw_lines = Entry<&Renderer::draw_lines>::call,
    .draw_sprite = Entry<&Renderer::draw_sprite>::call,
    .draw_overlay = Entry<&Renderer::draw_overlay>::call,
    .draw_text = Entry<&Renderer::draw_text>::call,
    .measure_text = Entry<&Renderer::measure_text>::call,
    .set_font = Entry<&Renderer::set_font>::call,
    .get_figures = get_figures,
};

} // namespace
} // namespace quillon::graphics_gl

QUILLON_PLUGIN_SERVES("graphics-gl", "GRAPHICS")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>* parameters) {
    using namespace quillon::graphics_gl;
    return quillon::is_wanted(parameters, "GRAPHICS", "graphics-gl") &&
           last_error.guard(quillon::codecs::prepare) && open_video();
}

void shutdown() {
    quillon::graphics_gl::close();
    quillon::graphics_gl::close_video();
}

void connect_graphics_interface(void** table) {
    quillon::serve(table, quillon::graphics_gl::FUNCTIONS);
}
