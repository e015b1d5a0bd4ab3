// SPDX-License-Identifier: MIT
#include "sound.h"

#include <cmath>
#include <vector>

namespace lantern {

namespace {

constexpr std::uint32_t RATE = 22050; // frames per second
constexpr double TURN = 6.283185307179586;

// The samples of `seconds` of a wave, a function of the time in seconds with values in -1 to 1.
template <typename Wave>
std::vector<std::int16_t> sampled(double seconds, Wave wave) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < seconds * RATE; ++i)
        samples.push_back(static_cast<std::int16_t>(32000.0 * wave(double(i) / RATE)));
    return samples;
}

// A small bell: partials that are no multiples of each other, the higher ones fading sooner.
double chime(double t) {
    double sum = 0.0;
    for (const double partial : {1.0, 2.76, 5.4})
        sum +=
            std::sin(TURN * 880.0 * partial * t) * std::exp(-t * 2.5 * partial) / (1.0 + partial);
    return 0.8 * sum;
}

double blow(double t) {
    return 0.9 * std::sin(TURN * 90.0 * t * (1.0 - t)) * std::exp(-t * 9.0);
}

// Noise through a low pass, and faded over its ends so that it loops without a click.
class Wind {
public:
    double operator()(double t) {
        seed = seed * 1664525U + 1013904223U;
        const double noise = seed / 2147483648.0 - 1.0;
        level += (noise - level) * 0.06;
        return 2.2 * level * std::min(1.0, 8.0 * std::min(t, 3.0 - t));
    }

private:
    std::uint32_t seed = 1;
    double level = 0.0;
};

enum SoundName { CHIME, BLOW, WIND };

} // namespace

Sound::Sound(const quillon::Audio& mixer, Simulation& game, const Island& home)
    : audio(mixer), simulation(game), island(home) {
    const std::vector<std::int16_t> samples[] = {sampled(1.6, chime), sampled(0.5, blow),
                                                 sampled(3.0, Wind())};
    for (std::size_t i = 0; i < sounds.size(); ++i)
        sounds[i] = audio.create_sound(samples[i].data(),
                                       static_cast<std::uint32_t>(samples[i].size()), 1, RATE);
    wind = audio.play(sounds[WIND], {.gain = 0.2F, .loop = true});
    for (const EventType type : {GATHERED, STRUCK})
        simulation.events().register_for_message(this, type);
}

Sound::~Sound() {
    simulation.events().unregister_all(this);
    for (const quillon::SoundHandle sound : sounds)
        audio.release_sound(sound);
}

void Sound::update(std::uint32_t player) {
    const Ship& ship = simulation.state().ships[player];
    const auto speed = static_cast<float>(ship.velocity.length());
    audio.set_listener(ship.position, ship.velocity, ship.orientation());
    audio.change(wind, {.gain = 0.006F * speed, .pitch = 0.5F + 0.018F * speed, .loop = true});
}

void Sound::receive_message(quillon::cMessage* message) {
    const Event& event = *static_cast<Event*>(message);
    const Ship& ship = simulation.state().ships[event.which];
    quillon::Playing playing{.placed = true, .position = ship.position, .reference_distance = 12.0};
    if (event.messageType == GATHERED) {
        playing.position = island.lanterns[event.lantern];
        playing.pitch =
            1.0F + 0.12F * static_cast<float>(ship.chain); // up the scale with the chain
    } else {
        playing.gain = std::min(1.0F, event.force * 0.05F);
    }
    audio.play(sounds[event.messageType == GATHERED ? CHIME : BLOW], playing);
}

} // namespace lantern
