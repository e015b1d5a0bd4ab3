// SPDX-License-Identifier: MIT
#include "presentation.h"

#include "shapes.h"

#include <quillon/comfort.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace lantern {

namespace {

using quillon::cColor;
using quillon::cMaterial;
using quillon::cVector3D;

enum MeshName { GROUND, SEA, PILLAR, PAPER, FRAME, GLIDERS };

enum PictureName { GRAIN, BUMPS, RIPPLES, GLOW, HEALTH, ENERGY };

// Dusk: what is left of the sunset is warm and low, all else is cool, and the lanterns are warmest.
constexpr cColor ZENITH(0.05F, 0.08F, 0.20F, 1.0F);
constexpr cColor HORIZON(0.47F, 0.43F, 0.55F, 1.0F);
constexpr cColor NADIR(0.33F, 0.33F, 0.46F, 1.0F);
constexpr cColor MOONLIGHT(0.52F, 0.60F, 0.86F, 1.0F);
constexpr cColor AFTERGLOW(0.74F, 0.42F, 0.30F, 1.0F);
constexpr cColor SHADE(0.37F, 0.39F, 0.54F, 1.0F);
constexpr cColor LAMP(1.0F, 0.60F, 0.22F, 1.0F);

constexpr cVector3D TO_MOON(-0.62, 0.20, 0.70);
constexpr cVector3D FROM_SUNSET(-0.85, -0.30, -0.43);

constexpr cMaterial LAND(quillon::WHITE, quillon::WHITE, quillon::BLACK, quillon::BLACK, 1.0F);
constexpr cMaterial WATER({0.34F, 0.40F, 0.52F, 1.0F}, {0.22F, 0.27F, 0.38F, 1.0F},
                          {0.50F, 0.50F, 0.56F, 1.0F}, quillon::BLACK, 40.0F);
constexpr cMaterial GLASS(quillon::WHITE, quillon::WHITE, quillon::WHITE,
                          {0.20F, 0.20F, 0.24F, 1.0F}, 20.0F);
constexpr cMaterial FLAME({0.9F, 0.5F, 0.2F, 1.0F}, {0.9F, 0.5F, 0.2F, 1.0F}, quillon::BLACK,
                          {0.93F, 0.52F, 0.17F, 1.0F}, 1.0F);

// Heights and radii; the pillar fills a unit box.
constexpr Ring WATER_LEVEL[] = {{0.0, 1700.0}, {0.0, 1.0}};
constexpr Ring STONE[] = {{0.0, 0.70},  {0.4, 0.70}, {0.55, 0.63},
                          {0.85, 0.58}, {1.0, 0.42}, {0.98, 0.01}};
constexpr Ring BELLY[] = {{-1.1, 0.5}, {-0.75, 0.9}, {0.0, 1.15}, {0.75, 0.9}, {1.1, 0.5}};
constexpr Ring METAL[] = {{-1.35, 0.05}, {-1.3, 0.45}, {-1.05, 0.6},
                          {1.05, 0.6},   {1.3, 0.6},   {1.65, 0.08}};

constexpr double SKY = 1800.0; // the distance of moon and stars
constexpr std::uint32_t BURST_STEPS = 45;
constexpr std::size_t LAMPS = 4; // the nearest lanterns, which light what is around them

cColor faded(const cColor& color, double alpha) {
    return {color.r, color.g, color.b, static_cast<float>(alpha)};
}

// A direction among many that are spread evenly, by the golden angle.
cVector3D scattered(int number, double height) {
    return cVector3D(sinTD(number * 137.5), height, cosTD(number * 137.5)).normalized();
}

struct Bitmap {
    explicit Bitmap(const std::string& file) {
        std::uint8_t* loaded = nullptr;
        __cBitmap_load(file, &width, &height, &loaded);
        pixels.reset(loaded);
    }

    Bitmap(std::int16_t columns, std::int16_t rows) : width(columns), height(rows) {
        std::uint8_t* black = nullptr;
        __cBitmap_init(columns, rows, black);
        pixels.reset(black);
    }

    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::unique_ptr<std::uint8_t[]> pixels;
};

Bitmap bumps_of(const std::string& file, float scale) {
    Bitmap bumps(file);
    if (bumps.pixels != nullptr)
        __cBitmap_bump_map_to_normal_map(bumps.pixels.get(), bumps.width, bumps.height, scale);
    return bumps;
}

// Brushes over each other, ever wider and fainter, so that no rim shows.
Bitmap glow_bitmap() {
    constexpr std::int16_t side = 128;
    Bitmap glow(side, side);
    for (int i = 0; i < 12; ++i) {
        const auto deviation = static_cast<float>(4.0 + 2.2 * i);
        const float strength = 0.9F / deviation;
        __cBitmap_gauss_brush({strength, strength, strength, 0.0F}, glow.pixels.get(), side / 2,
                              side / 2, side, side, 1.0F, deviation);
    }
    return glow;
}

Bitmap ramp_bitmap(const char* gradient) {
    Bitmap ramp(64, 1);
    for (int i = 0; i < ramp.width; ++i) {
        const float part = static_cast<float>(i) / ramp.width;
        __cBitmap_set_pixel(__nsGradient_gradient_table(gradient)->function(part),
                            ramp.pixels.get(), i);
    }
    return ramp;
}

// From the shore to the sea and back, four times around.
quillon::cSpline3D path_from_afar() {
    quillon::cSpline3D path(true);
    for (int i = 0; i < 8; ++i) {
        const double radius = i % 2 == 0 ? 290.0 : 205.0;
        const double degrees = 45.0 * i + 20.0;
        append(path, {radius * sinTD(degrees), i % 2 == 0 ? 78.0 : 44.0, radius * cosTD(degrees)});
    }
    return path;
}

} // namespace

Presentation::Presentation(const quillon::Graphics& graphics, Simulation& game, const Island& home,
                           const quillon::SurfaceRequest& request, const std::string& data)
    : gl(graphics), simulation(game), island(home) {
    if (!gl.open(request))
        throw std::runtime_error(std::string("no picture: ") + gl.last_error());
    gl.set_atmosphere({ZENITH, HORIZON, NADIR, 60.0, 720.0});
    camera.position = {0.0, 0.0, -1000.0};
    camera.near_plane = 0.5;
    camera.far_plane = 2600.0;
    upload(data);
    for (const EventType type : {GATHERED, STRUCK})
        simulation.events().register_for_message(this, type);
}

Presentation::~Presentation() {
    simulation.events().unregister_all(this);
    gl.close();
}

// From afar on a closed spline around the island, otherwise behind the ship and a little above it.
void Presentation::advance(const Scene& scene) {
    static const quillon::cSpline3D path = path_from_afar();
    const Ship& ship = simulation.state().ships[scene.player];
    const cVector3D forward = ship.orientation() * quillon::VECTOR3D_UNIT_Z;
    cVector3D eye = ship.position - forward * 13.0 + quillon::VECTOR3D_UNIT_Y * 6.0;
    cVector3D target = ship.position + forward * 18.0 + quillon::VECTOR3D_UNIT_Y;
    if (scene.from_afar) {
        eye = smooth_value(path, 2.6 + simulation.state().step / 600.0);
        target = {0.0, 16.0, 0.0};
    }
    const bool is_cut = (eye - camera.position).length() > 60.0;
    camera.position += (eye - camera.position) * (is_cut ? 1.0 : 0.14);
    const double floor = island.surface(camera.position.x, camera.position.z) + 2.0;
    camera.position.y = std::max(camera.position.y, floor);
    __cMatrix3d_from_forward_and_up(camera.orientation, target - camera.position,
                                    quillon::VECTOR3D_UNIT_Y);
    blow *= 0.93F;
    std::erase_if(bursts, [this](const Burst& burst) {
        return simulation.state().step - burst.step > BURST_STEPS;
    });
}

void Presentation::draw(const Scene& scene) {
    gl.get_surface(surface);
    gl.begin_frame(camera);
    light();
    draw_land();
    draw_lanterns();
    draw_ships();
    draw_sky();
    draw_bursts();
    draw_status(scene);
    gl.end_frame();
}

void Presentation::save_frame(const std::string& file) const {
    std::vector<std::uint8_t> pixels(std::size_t{4} * surface.width * surface.height);
    if (!gl.read_frame(pixels.data(), surface.width, surface.height) ||
        !__cBitmap_save(file, surface.width, surface.height, pixels.data()))
        throw std::runtime_error(file + ": can't keep this picture: " + gl.last_error());
}

void Presentation::receive_message(quillon::cMessage* message) {
    const Event& event = *static_cast<Event*>(message);
    if (event.messageType == GATHERED)
        bursts.push_back({island.lanterns[event.lantern], simulation.state().step});
    else
        blow = std::min(0.35F, blow + event.force * 0.02F);
}

void Presentation::upload(const std::string& data) {
    const std::string file = data + "/hills.png";
    const Bitmap hills(file);
    if (hills.pixels == nullptr)
        throw std::runtime_error(file + ": " + gl.last_error());
    __cBitmap_multiply(0.22F, hills.pixels.get(), hills.width * hills.height);
    __cBitmap_brighten(196, hills.pixels.get(), hills.width * hills.height);
    const auto upload_picture = [this](const Bitmap& bitmap, bool repeat) {
        return gl.upload_picture(bitmap.pixels.get(), bitmap.width, bitmap.height,
                                 {.repeat = repeat});
    };
    pictures = {upload_picture(hills, true),
                upload_picture(bumps_of(file, 4.0F), true),
                upload_picture(bumps_of(file, 1.2F), true),
                upload_picture(glow_bitmap(), false),
                upload_picture(ramp_bitmap("Health"), false),
                upload_picture(ramp_bitmap("Mana"), false)};
    meshes = {gl.upload_mesh(make_ground(island).get()),
              gl.upload_mesh(make_lathed(WATER_LEVEL, 4, 1.0 / 26.0).get()),
              gl.upload_mesh(make_lathed(STONE, 4, 1.0).get()),
              gl.upload_mesh(make_lathed(BELLY, 8, 1.0).get()),
              gl.upload_mesh(make_lathed(METAL, 8, 1.0).get()),
              gl.upload_mesh(make_glider(*__nsColor_color_table("scarlet")).get()),
              gl.upload_mesh(make_glider(*__nsColor_color_table("azure")).get())};
}

void Presentation::light() const {
    std::vector<cVector3D> lamps;
    for (std::size_t i = 0; i < Island::LANTERNS; ++i)
        if (burns(i))
            lamps.push_back(island.lanterns[i]);
    std::sort(lamps.begin(), lamps.end(), [this](const cVector3D& a, const cVector3D& b) {
        return (a - camera.position).squared_length() < (b - camera.position).squared_length();
    });
    lamps.resize(std::min(LAMPS, lamps.size()));

    std::array<quillon::cLight, 2 + LAMPS> lights;
    lights[0].set_colors(SHADE, MOONLIGHT, MOONLIGHT, 1.0F);
    lights[0].set_direction(TO_MOON * -1.0);
    lights[1].set_colors(quillon::BLACK, AFTERGLOW, AFTERGLOW, 0.8F);
    lights[1].set_direction(FROM_SUNSET);
    for (quillon::cLight& light : lights)
        light.light_flag = quillon::LIGHT_DIRECTIONAL;
    for (std::size_t i = 0; i < lamps.size(); ++i) {
        quillon::cLight& light = lights[2 + i];
        light.set_colors(quillon::BLACK, LAMP, LAMP, 2.2F);
        light.set_position(lamps[i]);
        light.set_spot_and_attenuation(180.0F, 0.0F, 1.0F, 0.02F, 0.008F, quillon::LIGHT_POINT);
    }
    gl.set_lights(lights.data(), static_cast<std::uint32_t>(2 + lamps.size()));
}

void Presentation::draw_land() const {
    gl.draw_mesh({.mesh = meshes[GROUND],
                  .material = &LAND,
                  .texture = pictures[GRAIN],
                  .normal_map = pictures[BUMPS]});
    gl.draw_mesh({.mesh = meshes[SEA], .material = &WATER, .normal_map = pictures[RIPPLES]});
    for (const Rock& rock : island.rocks)
        gl.draw_mesh({.mesh = meshes[PILLAR],
                      .position = {rock.middle.x, Island::SEA_BED, rock.middle.z},
                      .scale = {rock.width, rock.top - Island::SEA_BED, rock.depth},
                      .material = __nsMaterial_material_table("PEWTER"),
                      .texture = pictures[GRAIN],
                      .normal_map = pictures[BUMPS]});
}

// Paper that glows in a frame of brass; dark and small for as long as the lantern is out.
void Presentation::draw_lanterns() const {
    const cMaterial* brass = __nsMaterial_material_table("BRASS");
    const cMaterial* bronze = __nsMaterial_material_table("BRONZE");
    for (std::size_t i = 0; i < Island::LANTERNS; ++i) {
        quillon::MeshDrawing drawing{.mesh = meshes[FRAME],
                                     .position = island.lanterns[i],
                                     .scale = quillon::VECTOR3D_ONE * (burns(i) ? 1.5 : 0.8),
                                     .material = brass};
        gl.draw_mesh(drawing);
        drawing.mesh = meshes[PAPER];
        drawing.material = burns(i) ? &FLAME : bronze;
        gl.draw_mesh(drawing);
    }
}

void Presentation::draw_ships() const {
    for (std::uint32_t player = 0; player < simulation.state().players; ++player) {
        const Ship& ship = simulation.state().ships[player];
        if (ship.is_flying())
            gl.draw_mesh({.mesh = meshes[GLIDERS + player],
                          .position = ship.position,
                          .rotation = ship.orientation(),
                          .scale = quillon::VECTOR3D_ONE * 1.4,
                          .material = &GLASS});
    }
}

// Stars, the moon and its halo, then the halos of the lanterns.
void Presentation::draw_sky() const {
    for (int i = 0; i < 110; ++i)
        draw_glow(camera.position + scattered(i, 0.16 + i * 29 % 83 / 70.0) * SKY,
                  9.0 + i % 3 * 6.0, faded(quillon::ALICEBLUE, 0.5 + i % 4 * 0.15), false);
    const cVector3D moon = camera.position + TO_MOON.normalized() * SKY;
    draw_glow(moon, 900.0, faded(MOONLIGHT, 0.35), false);
    draw_glow(moon, 260.0, quillon::ALICEBLUE, false);
    for (std::size_t i = 0; i < Island::LANTERNS; ++i)
        if (burns(i))
            draw_glow(island.lanterns[i],
                      15.0 + sinTD(simulation.state().step * 4.0 + 77.0 * static_cast<double>(i)),
                      faded(LAMP, 0.8));
}

void Presentation::draw_bursts() const {
    const quillon::cGradient* flame = __nsGradient_gradient_table("Flame");
    for (const Burst& burst : bursts) {
        const double age = double(simulation.state().step - burst.step) / BURST_STEPS;
        for (int i = 0; i < 24; ++i)
            draw_glow(burst.place + scattered(i, 1.0 - i / 12.0) * (9.0 * age * (2.0 - age)),
                      1.6 * (1.0 - age), flame->function(static_cast<float>(1.0 - age)));
    }
}

void Presentation::draw_glow(const cVector3D& place, double size, const cColor& color,
                             bool has_fog) const {
    gl.draw_sprite({.position = place,
                    .width = size,
                    .height = size,
                    .picture = pictures[GLOW],
                    .color = color,
                    .has_fog = has_fog});
}

// Measured in lines of text, of which there are 36 on the screen.
void Presentation::draw_status(const Scene& scene) const {
    const Ship& ship = simulation.state().ships[scene.player];
    const auto width = static_cast<float>(surface.width);
    const auto height = static_cast<float>(surface.height);
    if (blow > 0.01F)
        gl.draw_overlay({.width = width, .height = height, .color = faded(quillon::CRIMSON, blow)});
    if (!scene.from_afar) {
        const std::string chain = ship.chain > 1 ? "  x" + std::to_string(ship.chain) : "";
        draw_text(std::to_string(ship.score) + chain, 1.2F, 0.8F, 2.4F);
        draw_bar(2.5F, pictures[HEALTH], ship.health);
        draw_bar(1.4F, pictures[ENERGY], ship.energy);
    }
    draw_text(scene.notice, -1.0F, 9.0F, 2.0F);
    if (scene.help.empty())
        return;
    gl.draw_overlay({.width = width, .height = height, .color = faded(quillon::BLACK, 0.6)});
    draw_text(scene.help, -1.0F, 8.0F, 1.5F);
}

void Presentation::draw_bar(float bottom, quillon::PictureHandle ramp, float part) const {
    const float line = static_cast<float>(surface.height) / 36.0F;
    const quillon::OverlayDrawing back{.x = 1.1F * line,
                                       .y = static_cast<float>(surface.height) -
                                            (bottom + 0.1F) * line,
                                       .width = 10.2F * line,
                                       .height = 0.7F * line,
                                       .color = faded(quillon::BLACK, 0.45)};
    gl.draw_overlay(back);
    gl.draw_overlay({.picture = ramp,
                     .x = back.x + 0.1F * line,
                     .y = back.y + 0.1F * line,
                     .width = 10.0F * line * part,
                     .height = 0.5F * line,
                     .right = part,
                     .color = {0.92F, 0.86F, 0.86F, 0.85F}});
}

// With a shadow; in the middle of the line where `x` is negative.
void Presentation::draw_text(const std::string& text, float x, float y, float lines) const {
    const float line = static_cast<float>(surface.height) / 36.0F;
    quillon::TextDrawing drawing{text.c_str(), x * line, y * line, lines * line, quillon::WHITE};
    float width = 0.0F;
    float height = 0.0F;
    gl.measure_text(drawing, width, height);
    if (x < 0.0F)
        drawing.x = (static_cast<float>(surface.width) - width) / 2.0F;
    quillon::TextDrawing shadow = drawing;
    shadow.x += lines * line / 16.0F;
    shadow.y += lines * line / 16.0F;
    shadow.color = faded(quillon::BLACK, 0.6);
    gl.draw_text(shadow);
    gl.draw_text(drawing);
}

} // namespace lantern
