// SPDX-License-Identifier: MIT
// Inputs as a text file: what was played can be played again, to the bit, on any machine.
//
//     lantern-script 1 2
//     60  0 0 0  0 0 0
//     45  -127 20 1  0 0 0
//
// The version of the simulation and the number of players; then runs: a number of steps, and turn,
// climb and buttons of each player.
#pragma once

#include "simulation.h"

#include <string>
#include <vector>

namespace lantern {

struct Script {
    std::uint32_t players = 1;
    std::vector<Inputs> steps;

    // The inputs of a step; hands off the controls after the end.
    Inputs at(std::size_t step) const { return step < steps.size() ? steps[step] : Inputs{}; }
};

// Throw std::runtime_error with a line for the user: which file, what is wrong, what to do.
Script read_script(const std::string& path);
void write_script(const std::string& path, const Script& script);

// What a practised player would do: fly from lantern to lantern along the path.
Input pilot(const Island& island, const State& state, std::uint32_t player);

} // namespace lantern
