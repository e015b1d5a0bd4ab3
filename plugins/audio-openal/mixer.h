// SPDX-License-Identifier: MIT
// Sounds, and the voices that play them, on one output.
#pragma once

#include "objects.h"
#include "output.h"
#include "samples.h"
#include "slots.h"

#include "plugins/contracts/audio.h"

#include <span>

namespace quillon::audio_openal {

// The operations of the contract; where one returns false or 0 there, this throws Failure.
class Mixer {
public:
    // Plays on the device of that name; see Output.
    explicit Mixer(const char* device_name);
    Mixer(const Mixer&) = delete;
    Mixer& operator=(const Mixer&) = delete;
    ~Mixer();

    // Why there is no device; empty if there is one.
    const std::string& fault() const { return output.fault(); }

    SoundHandle add_sound(std::span<const std::int16_t> samples, std::uint32_t channels,
                          std::uint32_t frames_per_second);
    void release_sound(SoundHandle handle);

    VoiceHandle play(SoundHandle handle, const Playing& playing);
    void change(VoiceHandle handle, const Playing& playing);
    bool is_playing(VoiceHandle handle);
    void stop(VoiceHandle handle);

    void set_listener(const cVector3D& position, const cVector3D& velocity,
                      const cMatrix3D& orientation);
    void set_master_gain(float gain);
    void set_paused(bool pause);

    void render(std::int16_t* stereo, std::uint32_t frames);

private:
    static constexpr std::uint32_t MAX_SOUNDS = 1024;
    static constexpr std::uint32_t MAX_VOICES = 64;

    struct Sound {
        bool is_mono;
        Buffer buffer{};
    };

    struct Voice {
        SoundHandle sound;
        bool is_placed;
        Source source{};
    };

    void update();

    Output output;
    Slots<Sound, MAX_SOUNDS> sounds;
    Slots<Voice, MAX_VOICES> voices;
    bool paused = false;
};

} // namespace quillon::audio_openal
