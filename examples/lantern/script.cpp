// SPDX-License-Identifier: MIT
#include "script.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace lantern {

namespace {

constexpr int LONGEST = 60 * 60 * 60; // steps: an hour

std::int8_t lever(double position) {
    return static_cast<std::int8_t>(std::clamp(position, -1.0, 1.0) * 127.0);
}

bool read_input(std::istream& text, Input& input) {
    int turn = 0;
    int climb = 0;
    int buttons = 0;
    text >> turn >> climb >> buttons;
    input = {static_cast<std::int8_t>(turn), static_cast<std::int8_t>(climb),
             static_cast<std::uint8_t>(buttons)};
    return text && turn == input.turn && climb == input.climb && buttons == input.buttons;
}

bool read_run(std::istream& text, Script& script) {
    int steps = 0;
    Inputs inputs;
    text >> steps;
    for (std::uint32_t player = 0; player < script.players; ++player)
        if (!read_input(text, inputs[player]))
            return false;
    if (steps < 1 || steps > LONGEST || script.steps.size() + steps > LONGEST)
        return false;
    script.steps.insert(script.steps.end(), steps, inputs);
    return true;
}

} // namespace

Script read_script(const std::string& path) {
    std::ifstream file(path);
    std::string kind;
    std::uint32_t version = 0;
    Script script;
    if (!file)
        throw std::runtime_error(path + ": can't read this script; is there such a file?");
    if (!(file >> kind >> version >> script.players) || kind != "lantern-script")
        throw std::runtime_error(path + ": no script; --keep FILE writes one");
    if (version != SIMULATION_VERSION)
        throw std::runtime_error(path + ": a script of version " + std::to_string(version) +
                                 " of the game, which is at " + std::to_string(SIMULATION_VERSION) +
                                 "; record it again");
    if (script.players < 1 || script.players > PLAYERS)
        throw std::runtime_error(path + ": a script for other than 1 or 2 players");
    for (int run = 1; !(file >> std::ws).eof(); ++run)
        if (!read_run(file, script))
            throw std::runtime_error(path + ": run " + std::to_string(run) +
                                     " is not a number of steps and each player's three inputs");
    return script;
}

void write_script(const std::string& path, const Script& script) {
    std::ofstream file(path);
    file << "lantern-script " << SIMULATION_VERSION << ' ' << script.players << '\n';
    for (auto run = script.steps.begin(); run != script.steps.end();) {
        const Inputs inputs = *run;
        const auto end = std::find_if(run, script.steps.end(),
                                      [&inputs](const Inputs& other) { return other != inputs; });
        file << end - run;
        for (std::uint32_t player = 0; player < script.players; ++player)
            file << "  " << int{inputs[player].turn} << ' ' << int{inputs[player].climb} << ' '
                 << int{inputs[player].buttons};
        file << '\n';
        run = end;
    }
    file.close();
    if (!file)
        throw std::runtime_error(path + ": can't write this script; is there such a folder?");
}

// To a place on the path a little further than where the ship is beside it: in the ship's own axes
// that place to fly to lies to the right or left, above or below.
Input pilot(const Island& island, const State& state, std::uint32_t player) {
    const Ship& ship = state.ships[player];
    const double beside = __cSpline3d_get_value_closest_to(island.path, ship.position, 0.5, 12);
    quillon::cVector3D wanted = island.place_on_path(beside + 0.42) - ship.position;
    const double rise = wanted.y;
    __cVector3d_rotate_backwards_by_matrix(wanted, ship.orientation());
    const double distance = std::max(wanted.length(), 1.0);
    const double sideways = wanted.z > 0.0 ? wanted.x / distance : std::copysign(1.0, wanted.x);
    Input input{lever(2.6 * sideways), lever(3.0 * rise / distance), 0};
    if (ship.energy > 0.9F && std::abs(sideways) < 0.1)
        input.buttons = Input::BOOST;
    return input;
}

} // namespace lantern
