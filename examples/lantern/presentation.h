// Shows the game through the plug-in that serves GRAPHICS.
#pragma once

#include "shapes.h"
#include "simulation.h"

#include <quillon/plugins/graphics.h>

#include <string>
#include <vector>

namespace lantern {

// What is shown beside the state of the game.
struct Scene {
    std::uint32_t player = 0;
    bool from_afar = false; // the camera goes round the island
    std::string notice;     // in the middle
    std::string help;       // over all; empty for none
};

class Presentation final : quillon::cMessageObserver {
public:
    // Opens the surface and uploads what there is to see; `simulation` outlives it.
    // Throws std::runtime_error with a line for the user.
    Presentation(const quillon::Graphics& graphics, Simulation& simulation, const Island& island,
                 const quillon::SurfaceRequest& request, const std::string& data);

    Presentation(const Presentation&) = delete;
    Presentation& operator=(const Presentation&) = delete;

    ~Presentation();

    // After each step: moves the camera and the sparks.
    void advance(const Scene& scene);

    // Draws one frame.
    void draw(const Scene& scene);

    // Keeps the latest frame as a picture; false, with a line on standard error, if that fails.
    bool save_frame(const std::string& file) const;

private:
    struct Burst {
        quillon::cVector3D place;
        std::uint32_t step;
    };

    void receive_message(quillon::cMessage* message) override;
    void upload(const std::string& data);
    quillon::PictureHandle upload_ramp(const char* gradient);
    void aim_camera(const Scene& scene, quillon::cVector3D& eye, quillon::cVector3D& target) const;
    void light();
    void draw_land();
    void draw_ships();
    void draw_lanterns();
    void draw_sky();
    void draw_bursts();
    void draw_glow(const quillon::cVector3D& place, double size, const quillon::cColor& color);
    void draw_status(const Scene& scene);
    void draw_bar(float top, quillon::PictureHandle ramp, float part);
    void draw_text(const std::string& text, float x, float y, float size,
                   const quillon::cColor& color);
    void draw_centred(const std::string& text, float y, float size);

    const quillon::Graphics& gl;
    Simulation& simulation;
    const Island& island;
    quillon::Camera camera;
    quillon::Surface surface;
    std::vector<Burst> bursts;
    float blow = 0.0F; // the red that a blow leaves on the screen, fading
    quillon::MeshHandle ground = 0;
    quillon::MeshHandle sea = 0;
    quillon::MeshHandle pillar = 0;
    quillon::MeshHandle paper = 0;
    quillon::MeshHandle frame = 0;
    quillon::MeshHandle gliders[PLAYERS] = {};
    quillon::PictureHandle grain = 0;
    quillon::PictureHandle bumps = 0;
    quillon::PictureHandle glow = 0;
    quillon::PictureHandle health_ramp = 0;
    quillon::PictureHandle energy_ramp = 0;
};

} // namespace lantern
