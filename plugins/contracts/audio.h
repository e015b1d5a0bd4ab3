// SPDX-License-Identifier: MIT
// The contract of a sound mixer: sounds from files or samples, voices that play them at a place or
// plain, one listener.
//
// World as in graphics.h: an orientation has the columns right, up and forward. Handles are small
// integers; 0 is none. Without a device a plug-in goes on in silence: every operation still works,
// and voices end when their sound would have ended. An operation that fails returns false or 0 and
// leaves the reason in last_error.
#pragma once

#include "contract.h"

#include "quillon/math/matrix.h"
#include "quillon/math/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

// Numbers of sounds and of voices, which play them; 0 is none.
using SoundHandle = std::uint32_t;
using VoiceHandle = std::uint32_t;

// How a voice plays its sound.
struct Playing {
    float gain = 1.0F;       // 0 and above
    float pitch = 1.0F;      // above 0; 2 is an octave higher
    bool loop = false;       // until it is stopped
    bool placed = false;     // at `position` with `velocity`; otherwise plain, as loud everywhere
    cVector3D position = {}; // in the host's world
    cVector3D velocity = {}; // units per second, for the Doppler shift
    double reference_distance = 1.0; // full gain up to here, beyond it reference / distance
};

// The init parameter that names the device as the driver does; without it, the system's own.
inline constexpr const char* AUDIO_DEVICE = "AUDIO DEVICE";
// The device name for no device on purpose: the host calls `render`.
inline constexpr const char* OFFLINE_AUDIO = "offline";

// For hosts, before __mCore_open: the sound is mixed by `render` instead of a device.
inline void render_audio_offline() {
    __mCore_add_plugin_init_parameter(AUDIO_DEVICE, const_cast<char*>(OFFLINE_AUDIO));
}

// Of an offline output.
inline constexpr std::uint32_t AUDIO_FRAMES_PER_SECOND = 44'100;

// The table of AUDIO under this contract.
struct Audio {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modAudio;
    static constexpr const char* SERVICE = "AUDIO";
    static constexpr ContractIdentity IDENTITY = {"quillon.audio", 1};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest call that can fail failed, in one line; empty if it succeeded. Before the
    // first such call, why there is no device.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    // Reads a sound file whole: WAV, OGG or FLAC. Sounds of two channels are always plain.
    SoundHandle (*load_sound)(const char* file) = nullptr;
    // Copies 16-bit samples of 1 or 2 interleaved channels: `frames` times `channels` values.
    SoundHandle (*create_sound)(const std::int16_t* samples, std::uint32_t frames,
                                std::uint32_t channels, std::uint32_t frames_per_second) = nullptr;
    // Stops the voices that play it and drops it; does nothing for a handle that is none.
    void (*release_sound)(SoundHandle sound) = nullptr;

    // Begins to play; the handle ends with the voice. 0 if all voices are taken.
    VoiceHandle (*play)(SoundHandle sound, const Playing& playing) = nullptr;
    // Changes everything but `loop` and `placed` of a voice; false once it has ended.
    bool (*change)(VoiceHandle voice, const Playing& playing) = nullptr;
    bool (*is_playing)(VoiceHandle voice) = nullptr;
    // Does nothing for a voice that has ended.
    void (*stop)(VoiceHandle voice) = nullptr;

    // Places the listener; the columns of `orientation` are right, up and forward.
    void (*set_listener)(const cVector3D& position, const cVector3D& velocity,
                         const cMatrix3D& orientation) = nullptr;
    // 0 (silence) and above; 1 at first.
    void (*set_master_gain)(float gain) = nullptr;
    // Holds all voices where they are, and lets them go on.
    void (*set_paused)(bool paused) = nullptr;

    // Mixes the next `frames` of interleaved 16-bit stereo at AUDIO_FRAMES_PER_SECOND, as fast as
    // the machine can. False unless the host chose render_audio_offline.
    bool (*render)(std::int16_t* stereo, std::uint32_t frames) = nullptr;

    void* own_13[OWN_ENTRY_COUNT<AudioTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(Audio) == sizeof(AudioTable));
static_assert(offsetof(Audio, own_13) == FIRST_OWN_ENTRY<AudioTable> * sizeof(void*));

} // namespace quillon
