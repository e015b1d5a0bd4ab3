// SPDX-License-Identifier: MIT
// The plug-in "audio-openal": the contract of audio, answered by one Mixer.
#include "mixer.h"

#include "plugins/contracts/audio.h"
#include "quillon/core/plugin.h"

#include <cstring>
#include <exception>
#include <optional>

namespace {

using namespace quillon;
using audio_openal::Mixer;

const char* device_name = nullptr;
std::optional<Mixer> opened;
char error[256] = "";

void set_error(const char* reason) {
    std::strncpy(error, reason, sizeof error - 1);
}

// Opens the device at the first call, so that a host which plays nothing does not touch one.
Mixer& mixer() {
    if (!opened)
        set_error(opened.emplace(device_name).fault().c_str());
    return *opened;
}

// The result of an operation that can fail; false or 0, with the reason in `error`, if it does.
template <typename Operation>
auto attempt(Operation operation) -> decltype(operation()) {
    try {
        auto result = operation();
        set_error("");
        return result;
    } catch (const std::exception& failure) {
        set_error(failure.what());
        return {};
    }
}

// Runs an operation that reports nothing, and keeps the error of the last one that does.
template <typename Operation>
void perform(Operation operation) {
    try {
        operation(mixer());
    } catch (const std::exception& failure) {
        set_error(failure.what());
    }
}

const char* last_error() {
    perform([](Mixer&) {});
    return error;
}

SoundHandle load_sound(const char* file) {
    return attempt([=] {
        Mixer& target = mixer(); // now, as its reason would replace that of the file
        const audio_openal::Samples sound = audio_openal::read_sound(file);
        return target.add_sound(sound.values, sound.channels, sound.frames_per_second);
    });
}

SoundHandle create_sound(const std::int16_t* samples, std::uint32_t frames, std::uint32_t channels,
                         std::uint32_t frames_per_second) {
    return attempt([=] {
        return mixer().add_sound({samples, std::size_t{frames} * channels}, channels,
                                 frames_per_second);
    });
}

void release_sound(SoundHandle sound) {
    perform([=](Mixer& mixer) { mixer.release_sound(sound); });
}

VoiceHandle play(SoundHandle sound, const Playing& playing) {
    return attempt([&] { return mixer().play(sound, playing); });
}

bool change(VoiceHandle voice, const Playing& playing) {
    return attempt([&] {
        mixer().change(voice, playing);
        return true;
    });
}

bool is_playing(VoiceHandle voice) {
    bool result = false;
    perform([&](Mixer& mixer) { result = mixer.is_playing(voice); });
    return result;
}

void stop(VoiceHandle voice) {
    perform([=](Mixer& mixer) { mixer.stop(voice); });
}

void set_listener(const cVector3D& position, const cVector3D& velocity,
                  const cMatrix3D& orientation) {
    perform([&](Mixer& mixer) { mixer.set_listener(position, velocity, orientation); });
}

void set_master_gain(float gain) {
    perform([=](Mixer& mixer) { mixer.set_master_gain(gain); });
}

void set_paused(bool paused) {
    perform([=](Mixer& mixer) { mixer.set_paused(paused); });
}

bool render(std::int16_t* stereo, std::uint32_t frames) {
    return attempt([=] {
        mixer().render(stereo, frames);
        return true;
    });
}

} // namespace

bool initialize(DSPrefHashMap<void>* parameters) {
    device_name = static_cast<const char*>(parameters->find(name_hash(AUDIO_DEVICE)));
    return is_wanted(parameters, Audio::SERVICE, "audio-openal");
}

void shutdown() {
    opened.reset();
}

QUILLON_PLUGIN_SERVES("audio-openal", "AUDIO")
QUILLON_PLUGIN_NEEDS_NOTHING()

void connect_sound_interface(void** table) {
    serve<Audio>(table, {.last_error = last_error,
                         .load_sound = load_sound,
                         .create_sound = create_sound,
                         .release_sound = release_sound,
                         .play = play,
                         .change = change,
                         .is_playing = is_playing,
                         .stop = stop,
                         .set_listener = set_listener,
                         .set_master_gain = set_master_gain,
                         .set_paused = set_paused,
                         .render = render});
}
