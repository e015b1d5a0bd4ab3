// SPDX-License-Identifier: MIT
// Shows the game through the plug-in that serves GRAPHICS.
#pragma once

#include "simulation.h"

#include <quillon/plugins/graphics.h>

#include <array>
#include <string>
#include <vector>

namespace lantern {

// What is shown beside the state of the game.
struct Scene {
    std::uint32_t player = 0;
    bool from_afar = false; // the camera goes round the island
    std::string notice;     // above the middle
    std::string help;       // over all; empty for none
};

class Presentation final : quillon::cMessageObserver {
public:
    // Opens the surface and uploads what there is to see; all but `request` outlive it.
    // Throws std::runtime_error with a line for the user.
    Presentation(const quillon::Graphics& graphics, Simulation& simulation, const Island& island,
                 const quillon::SurfaceRequest& request, const std::string& data);

    Presentation(const Presentation&) = delete;
    Presentation& operator=(const Presentation&) = delete;

    ~Presentation();

    // After each step: moves the camera, and lets sparks and blows fade.
    void advance(const Scene& scene);

    void draw(const Scene& scene);

    // Keeps the latest frame as a picture; throws std::runtime_error where that fails.
    void save_frame(const std::string& file) const;

private:
    struct Burst {
        quillon::cVector3D place;
        std::uint32_t step;
    };

    void receive_message(quillon::cMessage* message) override;
    void upload(const std::string& data);
    void light() const;
    void draw_land() const;
    void draw_lanterns() const;
    void draw_ships() const;
    void draw_sky() const;
    void draw_bursts() const;
    void draw_glow(const quillon::cVector3D& place, double size, const quillon::cColor& color,
                   bool has_fog = true) const;
    void draw_status(const Scene& scene) const;
    void draw_bar(float bottom, quillon::PictureHandle ramp, float part) const;
    void draw_text(const std::string& text, float x, float y, float lines) const;

    bool burns(std::size_t lantern) const { return simulation.state().relights[lantern] == 0; }

    const quillon::Graphics& gl;
    Simulation& simulation;
    const Island& island;
    quillon::Camera camera;
    quillon::Surface surface;
    std::vector<Burst> bursts;
    float blow = 0.0F; // the red that a blow leaves on the screen
    std::array<quillon::MeshHandle, 7> meshes{};
    std::array<quillon::PictureHandle, 6> pictures{};
};

} // namespace lantern
