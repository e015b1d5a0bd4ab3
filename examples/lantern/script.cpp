#include "script.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace lantern {

namespace {

constexpr int LONGEST = 60 * 60 * 60; // steps: an hour

bool read_number(std::istream& text, int low, int high, int& number) {
    return text >> number && number >= low && number <= high;
}

bool read_input(std::istream& text, Input& input) {
    int turn = 0;
    int climb = 0;
    int buttons = 0;
    if (!read_number(text, -127, 127, turn) || !read_number(text, -127, 127, climb) ||
        !read_number(text, 0, Input::BOOST | Input::BRAKE, buttons))
        return false;
    input = {static_cast<std::int8_t>(turn), static_cast<std::int8_t>(climb),
             static_cast<std::uint8_t>(buttons)};
    return true;
}

bool read_run(const std::string& line, Script& script) {
    std::istringstream text(line);
    int steps = 0;
    Inputs inputs;
    bool whole = read_number(text, 1, LONGEST, steps);
    for (std::uint32_t player = 0; player < script.players; ++player)
        whole = whole && read_input(text, inputs[player]);
    if (!whole || !(text >> std::ws).eof() || script.steps.size() + steps > LONGEST)
        return false;
    script.steps.insert(script.steps.end(), steps, inputs);
    return true;
}

std::uint32_t read_players(const std::string& path, const std::string& header) {
    std::istringstream text(header);
    std::string kind;
    std::string word;
    std::uint32_t version = 0;
    std::uint32_t players = 0;
    if (!(text >> kind >> version) || kind != "lantern-script")
        throw std::runtime_error(path + ": not a script; --keep FILE writes one");
    if (version != SIMULATION_VERSION)
        throw std::runtime_error(path + ": a script of version " + std::to_string(version) +
                                 " of the game, which is at " + std::to_string(SIMULATION_VERSION) +
                                 "; record it again");
    if (!(text >> word >> players) || word != "players" || players < 1 || players > PLAYERS)
        throw std::runtime_error(path + ": the first line does not say \"players 1\" or 2");
    return players;
}

std::int8_t lever(double position) {
    return static_cast<std::int8_t>(std::clamp(position, -1.0, 1.0) * 127.0);
}

// The parameter of the path a little further than where the ship is beside it.
double parameter_ahead(const Island& island, const quillon::cVector3D& place) {
    const double beside = __cSpline3d_get_value_closest_to(island.path, place, 0.5, 12);
    return beside + 0.42;
}

} // namespace

Script read_script(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error(path + ": can't read this script; is there such a file?");
    std::string line;
    std::getline(file, line);
    Script script;
    script.players = read_players(path, line);
    for (int number = 2; std::getline(file, line); ++number)
        if (!read_run(line, script))
            throw std::runtime_error(path + ": line " + std::to_string(number) +
                                     " is not a number of steps and the inputs of each player");
    return script;
}

void write_script(const std::string& path, const Script& script) {
    std::ofstream file(path);
    file << "lantern-script " << SIMULATION_VERSION << " players " << script.players << '\n';
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

// In the ship's own axes the place to fly to lies to the right or left, above or below.
Input pilot(const Island& island, const State& state, std::uint32_t player) {
    const Ship& ship = state.ships[player];
    quillon::cVector3D wanted =
        island.place_on_path(parameter_ahead(island, ship.position)) - ship.position;
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
