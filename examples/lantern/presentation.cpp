#include "presentation.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace lantern {

namespace {

using quillon::cColor;
using quillon::cLight;
using quillon::cMaterial;
using quillon::cVector3D;

// Dusk: what is left of the sunset is warm and low, all else is cool, and the lanterns are warmest.
constexpr cColor ZENITH(0.06F, 0.09F, 0.21F, 1.0F);
constexpr cColor HORIZON(0.42F, 0.40F, 0.53F, 1.0F);
constexpr cColor NADIR(0.07F, 0.11F, 0.19F, 1.0F);
constexpr cColor MOONLIGHT(0.55F, 0.62F, 0.86F, 1.0F);
constexpr cColor AFTERGLOW(0.78F, 0.42F, 0.28F, 1.0F);
constexpr cColor SHADE(0.30F, 0.32F, 0.46F, 1.0F);
constexpr cColor LAMP(1.0F, 0.62F, 0.24F, 1.0F);

constexpr cVector3D MOON(-0.62, 0.42, 0.66); // the direction to it

constexpr cMaterial LAND(quillon::WHITE, quillon::WHITE, {0.05F, 0.05F, 0.06F, 1.0F},
                         quillon::BLACK, 12.0F);
constexpr cMaterial WATER({0.10F, 0.19F, 0.30F, 1.0F}, {0.10F, 0.19F, 0.30F, 1.0F},
                          {0.75F, 0.72F, 0.80F, 1.0F}, quillon::BLACK, 48.0F);
constexpr cMaterial BURNING({0.9F, 0.5F, 0.2F, 1.0F}, {0.9F, 0.5F, 0.2F, 1.0F}, quillon::BLACK,
                            {0.98F, 0.60F, 0.22F, 1.0F}, 1.0F);

constexpr Ring PILLAR[] = {{0.0, 0.70},  {0.45, 0.69}, {0.5, 0.62},
                           {0.86, 0.60}, {1.0, 0.45},  {1.0, 0.01}};
constexpr Ring PAPER[] = {{-1.1, 0.5}, {-0.75, 0.9}, {0.0, 1.15}, {0.75, 0.9}, {1.1, 0.5}};
constexpr Ring FRAME[] = {{-1.35, 0.05}, {-1.3, 0.45}, {-1.1, 0.55},
                          {1.1, 0.55},   {1.3, 0.6},   {1.65, 0.08}};

constexpr double LANTERN_SIZE = 1.5;
constexpr std::uint32_t BURST_STEPS = 45;
constexpr std::size_t LAMPS = 4; // lanterns that light the ground, the nearest

cColor faded(const cColor& color, double part) {
    return {color.r, color.g, color.b, static_cast<float>(part)};
}

struct Picture {
    explicit Picture(const std::string& file) {
        std::uint8_t* loaded = nullptr;
        __cBitmap_load(file, &width, &height, &loaded);
        pixels.reset(loaded);
    }

    Picture(std::uint16_t columns, std::uint16_t rows) : width(columns), height(rows) {
        std::uint8_t* fresh = nullptr;
        __cBitmap_init(static_cast<std::int16_t>(columns), static_cast<std::int16_t>(rows), fresh);
        pixels.reset(fresh);
    }

    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::unique_ptr<std::uint8_t[]> pixels;
};

// Three brushes over each other: bright in the middle, wide and faint at the rim.
Picture glow_picture() {
    constexpr std::int32_t side = 128;
    Picture picture(side, side);

    struct Stroke {
        float strength;
        float deviation;
    };

    for (const auto& [strength, deviation] : {Stroke{0.55F, 7.0F}, {0.30F, 15.0F}, {0.14F, 30.0F}})
        __cBitmap_gauss_brush({strength, strength, strength, 0.0F}, picture.pixels.get(), side / 2,
                              side / 2, side, side, 2.0F, deviation);
    return picture;
}

// Once around in two minutes, low over the shore and high over the sea in turn.
quillon::cSpline3D camera_path() {
    quillon::cSpline3D path(true);
    for (int i = 0; i < 8; ++i) {
        const double radius = i % 2 == 0 ? 300.0 : 225.0;
        __cSpline3d_add_control_point(path,
                                      {radius * sinTD(45.0 * i + 20.0), i % 2 == 0 ? 85.0 : 40.0,
                                       radius * cosTD(45.0 * i + 20.0)});
    }
    return path;
}

} // namespace

Presentation::Presentation(const quillon::Graphics& graphics, Simulation& game, const Island& home,
                           const quillon::SurfaceRequest& request, const std::string& data)
    : gl(graphics), simulation(game), island(home) {
    if (!gl.open(request))
        throw std::runtime_error(std::string("no picture: ") + gl.last_error());
    gl.get_surface(surface);
    gl.set_atmosphere({ZENITH, HORIZON, NADIR, 140.0, 1000.0});
    camera.vertical_field_of_view = 0.95;
    camera.near_plane = 0.5;
    camera.far_plane = 2500.0;
    camera.position = {0.0, 120.0, -400.0};
    upload(data);
    for (const EventType type : {GATHERED, STRUCK})
        simulation.events().register_for_message(this, type);
}

Presentation::~Presentation() {
    simulation.events().unregister_all(this);
    gl.close();
}

void Presentation::advance(const Scene& scene) {
    cVector3D eye;
    cVector3D target;
    aim_camera(scene, eye, target);
    const bool jumps = (eye - camera.position).length() > 60.0;
    camera.position += (eye - camera.position) * (jumps ? 1.0 : 0.14);
    const double floor = island.surface(camera.position.x, camera.position.z) + 2.0;
    camera.position.y = std::max(camera.position.y, floor);
    __cMatrix3d_from_forward_and_up(camera.orientation, target - camera.position,
                                    quillon::VECTOR3D_UNIT_Y);
    blow *= 0.93F;
    std::erase_if(bursts, [step = simulation.state().step](const Burst& burst) {
        return step - burst.step > BURST_STEPS;
    });
}

void Presentation::draw(const Scene& scene) {
    gl.get_surface(surface);
    gl.begin_frame(camera);
    light();
    draw_land();
    draw_ships();
    draw_lanterns();
    draw_sky();
    draw_bursts();
    draw_status(scene);
    gl.end_frame();
}

bool Presentation::save_frame(const std::string& file) const {
    std::vector<std::uint8_t> pixels(std::size_t{4} * surface.width * surface.height);
    if (gl.read_frame(pixels.data(), surface.width, surface.height) &&
        __cBitmap_save(file, surface.width, surface.height, pixels.data()))
        return true;
    std::cerr << "lantern: " << file << ": can't keep this picture: " << gl.last_error() << '\n';
    return false;
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
    const Picture hills(file);
    if (hills.pixels == nullptr)
        throw std::runtime_error(file + ": " + gl.last_error());
    Picture normals(file);
    __cBitmap_bump_map_to_normal_map(normals.pixels.get(), normals.width, normals.height, 9.0F);
    bumps =
        gl.upload_picture(normals.pixels.get(), normals.width, normals.height, {.is_color = false});
    __cBitmap_multiply(0.35F, hills.pixels.get(), hills.width * hills.height);
    __cBitmap_brighten(165, hills.pixels.get(), hills.width * hills.height);
    grain = gl.upload_picture(hills.pixels.get(), hills.width, hills.height, {});
    const Picture halo = glow_picture();
    glow = gl.upload_picture(halo.pixels.get(), halo.width, halo.height, {.repeat = false});
    health_ramp = upload_ramp("Health");
    energy_ramp = upload_ramp("Mana");

    ground = gl.upload_mesh(make_ground(island).get());
    sea = gl.upload_mesh(make_square(2400.0, 75.0).get());
    pillar = gl.upload_mesh(make_lathed(PILLAR, 4).get());
    paper = gl.upload_mesh(make_lathed(PAPER, 8).get());
    frame = gl.upload_mesh(make_lathed(FRAME, 8).get());
    const quillon::cGradient* hue = __nsGradient_gradient_table("Hue");
    for (std::uint32_t player = 0; player < PLAYERS; ++player)
        gliders[player] =
            gl.upload_mesh(make_glider(hue->function(player == 0 ? 0.04F : 0.5F)).get());
}

quillon::PictureHandle Presentation::upload_ramp(const char* gradient) {
    constexpr std::uint16_t width = 64;
    Picture ramp(width, 1);
    for (std::uint16_t i = 0; i < width; ++i)
        __cBitmap_set_pixel(
            __nsGradient_gradient_table(gradient)->function(static_cast<float>(i) / width),
            ramp.pixels.get(), i);
    return gl.upload_picture(ramp.pixels.get(), width, 1, {.repeat = false});
}

// From afar on a closed spline around the island, otherwise behind the ship and a little above it.
void Presentation::aim_camera(const Scene& scene, cVector3D& eye, cVector3D& target) const {
    static const quillon::cSpline3D path = camera_path();
    if (scene.from_afar) {
        __cSpline3d_get_smooth_value(path, eye, 0.5 + simulation.state().step / 900.0);
        target = {0.0, 14.0, 0.0};
        return;
    }
    const Ship& ship = simulation.state().ships[scene.player];
    cVector3D forward = quillon::VECTOR3D_UNIT_Z;
    __cVector3d_rotate_by_matrix(forward, ship.orientation());
    eye = ship.position - forward * 12.0 + cVector3D(0.0, 3.4, 0.0);
    target = ship.position + forward * 16.0;
}

void Presentation::light() {
    std::vector<cLight> lights(2);
    lights[0].set_colors(SHADE, MOONLIGHT, MOONLIGHT, 1.0F);
    lights[0].set_direction(MOON * -1.0);
    lights[1].set_colors(quillon::BLACK, AFTERGLOW, AFTERGLOW, 0.8F);
    lights[1].set_direction({-0.85, -0.30, -0.4});
    for (cLight& light : lights)
        light.light_flag = quillon::LIGHT_DIRECTIONAL;

    const State& state = simulation.state();
    std::vector<cVector3D> lamps;
    for (std::size_t i = 0; i < Island::LANTERNS; ++i)
        if (state.relights[i] == 0)
            lamps.push_back(island.lanterns[i]);
    const std::size_t count = std::min(LAMPS, lamps.size());
    std::partial_sort(lamps.begin(), lamps.begin() + static_cast<std::ptrdiff_t>(count),
                      lamps.end(), [this](const cVector3D& a, const cVector3D& b) {
                          return (a - camera.position).squared_length() <
                                 (b - camera.position).squared_length();
                      });
    lamps.resize(count);
    for (const cVector3D& place : lamps) {
        cLight lamp;
        lamp.set_colors(quillon::BLACK, LAMP, LAMP, 2.4F);
        lamp.set_position(place);
        lamp.set_spot_and_attenuation(180.0F, 0.0F, 1.0F, 0.02F, 0.008F, quillon::LIGHT_POINT);
        lights.push_back(lamp);
    }
    gl.set_lights(lights.data(), static_cast<std::uint32_t>(lights.size()));
}

void Presentation::draw_land() {
    gl.draw_mesh({.mesh = ground, .material = &LAND, .texture = grain, .normal_map = bumps});
    gl.draw_mesh({.mesh = sea, .material = &WATER, .normal_map = bumps});
    for (const Rock& rock : island.rocks)
        gl.draw_mesh({.mesh = pillar,
                      .position = {rock.middle.x, Island::SEA_BED, rock.middle.z},
                      .scale = {rock.width, rock.top - Island::SEA_BED, rock.depth},
                      .material = __nsMaterial_material_table("PEWTER"),
                      .texture = grain,
                      .normal_map = bumps});
}

void Presentation::draw_ships() {
    const State& state = simulation.state();
    for (std::uint32_t player = 0; player < state.players; ++player) {
        const Ship& ship = state.ships[player];
        if (!ship.is_flying())
            continue;
        gl.draw_mesh({.mesh = gliders[player],
                      .position = ship.position,
                      .rotation = ship.orientation(),
                      .material = __nsMaterial_material_table("PEARL")});
        draw_glow(ship.position, 5.0, faded(LAMP, 0.35));
    }
}

// Paper that glows in a golden frame; dark for as long as the lantern is out.
void Presentation::draw_lanterns() {
    const State& state = simulation.state();
    for (std::size_t i = 0; i < Island::LANTERNS; ++i) {
        const bool burns = state.relights[i] == 0;
        quillon::MeshDrawing drawing{.mesh = frame,
                                     .position = island.lanterns[i],
                                     .scale = quillon::VECTOR3D_ONE * LANTERN_SIZE,
                                     .material = __nsMaterial_material_table("GOLD_POLISHED")};
        gl.draw_mesh(drawing);
        drawing.mesh = paper;
        drawing.material = burns ? &BURNING : __nsMaterial_material_table("BRONZE");
        gl.draw_mesh(drawing);
    }
}

// Stars and the moon, then the halos, which add their light to what is there.
void Presentation::draw_sky() {
    for (int i = 0; i < 90; ++i) {
        const double height = 0.12 + i * 29 % 83 / 100.0;
        const cVector3D way(sinTD(i * 137.5), height, cosTD(i * 137.5));
        gl.draw_sprite({.position = camera.position + way.normalized() * 1800.0,
                        .width = 6.0 + i % 3 * 4.0,
                        .height = 6.0 + i % 3 * 4.0,
                        .picture = glow,
                        .color = faded(quillon::ALICEBLUE, 0.35 + i % 4 * 0.2),
                        .has_fog = false});
    }
    gl.draw_sprite({.position = camera.position + MOON.normalized() * 1800.0,
                    .width = 420.0,
                    .height = 420.0,
                    .picture = glow,
                    .color = faded(quillon::ALICEBLUE, 0.9),
                    .has_fog = false});
    const State& state = simulation.state();
    for (std::size_t i = 0; i < Island::LANTERNS; ++i)
        if (state.relights[i] == 0)
            draw_glow(island.lanterns[i], 13.0 + sinTR(state.step * 0.07 + double(i)),
                      faded(LAMP, 0.75));
}

void Presentation::draw_bursts() {
    const quillon::cGradient* flame = __nsGradient_gradient_table("Flame");
    for (const Burst& burst : bursts) {
        const double age = double(simulation.state().step - burst.step) / BURST_STEPS;
        for (int i = 0; i < 14; ++i) {
            const cVector3D way(sinTD(i * 137.5), 0.9 - i * 0.13, cosTD(i * 137.5));
            draw_glow(burst.place + way * (9.0 * age * (2.0 - age)), 2.6 * (1.0 - age),
                      flame->function(static_cast<float>(1.0 - age)));
        }
    }
}

void Presentation::draw_glow(const cVector3D& place, double size, const cColor& color) {
    gl.draw_sprite(
        {.position = place, .width = size, .height = size, .picture = glow, .color = color});
}

void Presentation::draw_status(const Scene& scene) {
    const auto width = static_cast<float>(surface.width);
    const auto height = static_cast<float>(surface.height);
    const float unit = height / 36.0F;
    const Ship& ship = simulation.state().ships[scene.player];
    if (blow > 0.01F)
        gl.draw_overlay({.width = width, .height = height, .color = faded(quillon::CRIMSON, blow)});
    if (!scene.from_afar) {
        draw_text(std::to_string(ship.score), unit, unit * 0.6F, unit * 2.2F, quillon::WHITE);
        if (ship.chain > 1)
            draw_text("chain x" + std::to_string(ship.chain), unit, unit * 2.9F, unit * 1.1F, LAMP);
        draw_bar(height - unit * 2.6F, health_ramp, ship.health);
        draw_bar(height - unit * 1.6F, energy_ramp, ship.energy);
    }
    draw_centred(scene.notice, height * 0.3F, unit * 1.8F);
    if (scene.help.empty())
        return;
    gl.draw_overlay({.width = width, .height = height, .color = faded(quillon::BLACK, 0.6)});
    draw_text(scene.help, width * 0.3F, height * 0.2F, unit * 1.35F, quillon::WHITE);
}

void Presentation::draw_bar(float top, quillon::PictureHandle ramp, float part) {
    const float unit = static_cast<float>(surface.height) / 36.0F;
    const float width = unit * 11.0F;
    gl.draw_overlay({.x = unit - 3.0F,
                     .y = top - 3.0F,
                     .width = width + 6.0F,
                     .height = unit * 0.6F + 6.0F,
                     .color = faded(quillon::BLACK, 0.45)});
    gl.draw_overlay({.picture = ramp,
                     .x = unit,
                     .y = top,
                     .width = width * part,
                     .height = unit * 0.6F,
                     .right = part});
}

void Presentation::draw_text(const std::string& text, float x, float y, float size,
                             const cColor& color) {
    const float shadow = size / 14.0F;
    gl.draw_text({text.c_str(), x + shadow, y + shadow, size, faded(quillon::BLACK, 0.6)});
    gl.draw_text({text.c_str(), x, y, size, color});
}

void Presentation::draw_centred(const std::string& text, float y, float size) {
    float width = 0.0F;
    float height = 0.0F;
    gl.measure_text({text.c_str(), 0.0F, 0.0F, size}, width, height);
    draw_text(text, (static_cast<float>(surface.width) - width) / 2.0F, y, size, quillon::WHITE);
}

} // namespace lantern
