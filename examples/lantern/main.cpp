// SPDX-License-Identifier: MIT
// lantern: a game that runs on quillon. `lantern --help` lists what it can do.

#include "controls.h"
#include "network.h"
#include "presentation.h"
#include "script.h"
#include "sound.h"

#include <CLI/CLI.hpp>
#include <quillon/plugins/input.h>

#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <thread>

namespace lantern {

namespace {

constexpr std::chrono::duration<double> STEP{1.0 / STEPS_PER_SECOND};
constexpr std::uint32_t STEPS_PER_FRAME = 2; // of a recording, so 30 frames a second
constexpr double LONGEST_FRAME = 0.1;        // seconds; slower machines play slower

struct Options {
    std::string data = LANTERN_DATA;
    std::string script;
    std::string keep;
    std::string record;
    std::string join;
    std::vector<std::string> bindings;
    std::uint16_t host = 0;
    std::uint16_t port = NetworkLink::PORT;
    std::uint32_t steps = 0;
    std::uint32_t frames = 0;
    std::uint16_t width = 1280;
    std::uint16_t height = 720;
    std::uint8_t samples = 4;
    bool digest = false;

    bool is_together() const { return host != 0 || !join.empty(); }
};

void warn(const std::string& line) {
    std::cerr << "lantern: " << line << std::endl;
}

class Game {
public:
    explicit Game(const Options& wanted)
        : options(wanted),
          island(options.data + "/hills.pgm"),
          script(options.script.empty() ? Script() : read_script(options.script)),
          player(options.join.empty() ? 0 : 1),
          simulation(island, options.is_together() ? 2 : script.players),
          kept{simulation.state().players, {}} {
        for (const std::string& binding : options.bindings)
            bind(binding);
    }

    int run() {
        if (options.steps == 0 || options.is_together())
            __mCore_open();
        if (options.is_together())
            connect();
        const int result = options.steps != 0 ? run_blind() : run_shown();
        if (!options.keep.empty())
            write_script(options.keep, kept);
        return result;
    }

private:
    void connect();
    int run_blind();
    int run_shown();
    void record();
    void play();
    bool step();
    void end_together();
    bool handle_keys();
    Inputs next_inputs() const;
    Scene scene() const;

    Options options;
    Island island;
    Script script;
    std::uint32_t player;
    Simulation simulation;
    Script kept;
    const quillon::Input* devices = nullptr;
    const quillon::Graphics* graphics = nullptr;
    std::optional<NetworkLink> link;
    std::optional<Lockstep> lockstep;
    std::optional<Presentation> presentation;
    std::optional<Sound> sound;
    bool attracts = true; // the pilot flies, and the camera goes round
    bool is_paused = false;
    bool shows_help = false;
    std::uint32_t photos = 0;
};

void Game::connect() {
    const auto network = quillon::contract<quillon::Network>(__mNetwork_instance());
    if (!network)
        throw std::runtime_error(network.reason + "; nobody can join");
    link.emplace(*network, options.join, options.join.empty() ? options.host : options.port);
    lockstep.emplace(*link, player, handshake_for(island));
    attracts = false;
}

// One step, if the other player's input is here. False while it is not.
bool Game::step() {
    Inputs inputs = next_inputs();
    if (lockstep) {
        const std::optional<Inputs> both = lockstep->tick(inputs[player]);
        if (!lockstep->end().empty())
            end_together();
        if (!both)
            return false;
        inputs = *both;
    }
    simulation.step(inputs);
    kept.steps.push_back(inputs);
    if (presentation)
        presentation->advance(scene());
    const std::uint32_t step = simulation.state().step;
    if (step % STEPS_PER_SECOND != 0)
        return true;
    if (options.digest)
        std::printf("step %u: %016" PRIx64 "\n", step, simulation.digest());
    if (lockstep)
        lockstep->compare(step, simulation.digest());
    return true;
}

Inputs Game::next_inputs() const {
    if (!options.script.empty())
        return script.at(simulation.state().step);
    Inputs inputs;
    const bool has_hands = devices != nullptr && !attracts;
    inputs[player] = has_hands ? steering() : pilot(island, simulation.state(), player);
    return inputs;
}

// The game goes on alone.
void Game::end_together() {
    warn(lockstep->end());
    lockstep.reset();
    link.reset();
}

// Without pictures and sound, as fast as it goes or, with another player, in time.
int Game::run_blind() {
    const bool together = lockstep.has_value();
    while (simulation.state().step < options.steps) {
        step();
        if (together && !lockstep)
            return EXIT_FAILURE;
        if (together)
            std::this_thread::sleep_for(STEP);
    }
    if (lockstep)
        lockstep->leave();
    std::printf("step %u: score %u\n", simulation.state().step,
                simulation.state().ships[player].score);
    return EXIT_SUCCESS;
}

int Game::run_shown() {
    const auto served = quillon::contract<quillon::Graphics>(__mGraphics_instance());
    if (!served)
        throw std::runtime_error(served.reason + "; --steps N plays without pictures");
    graphics = served.table;
    presentation.emplace(*graphics, simulation, island,
                         quillon::SurfaceRequest{.title = "Lantern",
                                                 .width = options.width,
                                                 .height = options.height,
                                                 .samples = options.samples,
                                                 .offscreen = !options.record.empty()},
                         options.data);
    if (!options.record.empty()) {
        record();
        return EXIT_SUCCESS;
    }
    const auto input = quillon::contract<quillon::Input>(__mInput_instance());
    devices = input.table;
    if (!input)
        warn(input.reason + "; the pilot flies");
    const auto audio = quillon::contract<quillon::Audio>(__mAudio_instance());
    if (audio)
        sound.emplace(*audio, simulation, island);
    else
        warn(audio.reason + "; the game is silent");
    play();
    return EXIT_SUCCESS;
}

void Game::record() {
    __mFileOps_create_directory(options.record.c_str());
    for (std::uint32_t frame = 0; frame < options.frames; ++frame) {
        attracts = frame < options.frames / 4;
        for (std::uint32_t i = 0; i < STEPS_PER_FRAME; ++i)
            step();
        presentation->draw(scene());
        char name[32];
        std::snprintf(name, sizeof name, "/frame-%05u.png", frame);
        presentation->save_frame(options.record + name);
    }
}

void Game::play() {
    using Clock = std::chrono::steady_clock;
    auto before = Clock::now();
    double due = 0.0;
    while (handle_keys()) {
        const auto now = Clock::now();
        due += std::min(std::chrono::duration<double>(now - before).count(), LONGEST_FRAME);
        before = now;
        for (; due >= STEP.count(); due -= STEP.count())
            if (!is_paused || lockstep)
                step();
        if (sound)
            sound->update(player);
        presentation->draw(scene());
    }
    if (lockstep)
        lockstep->leave();
}

// False once the game is to end.
bool Game::handle_keys() {
    quillon::Surface surface;
    graphics->get_surface(surface);
    if (devices == nullptr)
        return !surface.close_requested;
    devices->update();
    attracts = attracts && !is_pressed(Action::Start);
    shows_help ^= is_pressed(Action::Help);
    is_paused ^= is_pressed(Action::Pause);
    if (is_pressed(Action::Fullscreen))
        graphics->set_fullscreen(!surface.is_fullscreen);
    if (is_pressed(Action::Photo))
        presentation->save_frame("lantern-" + std::to_string(++photos) + ".png");
    return !surface.close_requested && !devices->quit_requested() && !is_pressed(Action::Quit);
}

Scene Game::scene() const {
    Scene shown;
    shown.player = player;
    shown.from_afar = attracts;
    if (attracts)
        shown.notice = devices == nullptr ? "L A N T E R N" : "Press Enter to fly";
    else if (lockstep && simulation.state().step == 0)
        shown.notice = "Waiting for the other player";
    else if (is_paused)
        shown.notice = "Paused";
    else if (!simulation.state().ships[player].is_flying())
        shown.notice = "Lost. Back in a moment";
    if (shows_help)
        shown.help = help_text();
    return shown;
}

} // namespace

} // namespace lantern

int main(int count, char** words) {
    lantern::Options options;
    CLI::App app("lantern: gather the lanterns of the island");
    app.add_option("--host", options.host, "Wait for a second player on this UDP port");
    app.add_option("--join", options.join, "Join the player who waits at this address");
    app.add_option("--port", options.port, "The port there");
    app.add_option("--script", options.script, "Play the inputs of this file");
    app.add_option("--keep", options.keep, "Keep the inputs in this file");
    app.add_flag("--digest", options.digest, "Print the state's hash every 60 steps");
    app.add_option("--steps", options.steps, "Take so many steps without pictures, then end");
    auto* record =
        app.add_option("--record", options.record, "Draw into PNGs there, without a display");
    app.add_option("--frames", options.frames, "So many")->needs(record);
    app.add_option("--width", options.width, "Of the picture")->check(CLI::Range(16, 8192));
    app.add_option("--height", options.height, "Of the picture")->check(CLI::Range(16, 8192));
    app.add_option("--samples", options.samples, "A pixel, for smooth edges")
        ->check(CLI::Range(1, 16));
    app.add_option("--bind", options.bindings, "An action to an input, such as 'boost=Left Shift'");
    app.add_option("--data", options.data, "Where hills.png and hills.pgm are");
    CLI11_PARSE(app, count, words);

    __mPhysics_open();
    try {
        return lantern::Game(options).run();
    } catch (const std::exception& error) {
        lantern::warn(error.what());
        return EXIT_FAILURE;
    }
}
