// SPDX-License-Identifier: MIT
// Lets the game be heard through the plug-in that serves AUDIO. All sounds are made at start.
#pragma once

#include "simulation.h"

#include <quillon/plugins/audio.h>

#include <array>

namespace lantern {

class Sound final : quillon::cMessageObserver {
public:
    // `simulation` and `island` outlive it.
    Sound(const quillon::Audio& audio, Simulation& simulation, const Island& island);

    Sound(const Sound&) = delete;
    Sound& operator=(const Sound&) = delete;

    ~Sound();

    // Once a frame: the ears are in the ship of `player`, and so is the wind.
    void update(std::uint32_t player);

private:
    void receive_message(quillon::cMessage* message) override;

    const quillon::Audio& audio;
    Simulation& simulation;
    const Island& island;
    std::array<quillon::SoundHandle, 3> sounds{};
    quillon::VoiceHandle wind = 0;
};

} // namespace lantern
