// SPDX-License-Identifier: MIT
#include "mixer.h"

#include "failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace quillon::audio_openal {

namespace {

constexpr std::uint32_t MAX_FRAMES_PER_SECOND = 384'000;

using Vector = std::array<ALfloat, 3>;

// The contract's z points forward, OpenAL's backward.
Vector to_openal(const cVector3D& vector) {
    return {static_cast<float>(vector.x), static_cast<float>(vector.y),
            -static_cast<float>(vector.z)};
}

cVector3D column(const cMatrix3D& matrix, int index) {
    return {matrix.m[0][index], matrix.m[1][index], matrix.m[2][index]};
}

bool is_finite(const Vector& vector) {
    return std::isfinite(vector[0]) && std::isfinite(vector[1]) && std::isfinite(vector[2]);
}

void expect(bool condition, const char* requirement) {
    if (!condition)
        throw Failure(requirement);
}

void expect_valid(const Playing& playing) {
    const auto reference = static_cast<float>(playing.reference_distance);
    expect(std::isfinite(playing.gain) && playing.gain >= 0, "a gain must be 0 or above");
    expect(std::isfinite(playing.pitch) && playing.pitch > 0, "a pitch must be above 0");
    expect(std::isfinite(reference) && reference > 0, "a reference distance must be above 0");
    expect(is_finite(to_openal(playing.position)) && is_finite(to_openal(playing.velocity)),
           "a position and a velocity must be finite");
}

void expect_no_error(const char* operation) {
    const ALenum error = alGetError();
    if (error != AL_NO_ERROR)
        throw Failure(std::string(operation) + ": " + alGetString(error));
}

// A plain voice is where the listener is, and so as loud on both sides.
void apply(ALuint source, const Playing& playing, bool is_placed) {
    const Vector position = to_openal(is_placed ? playing.position : cVector3D());
    const Vector velocity = to_openal(is_placed ? playing.velocity : cVector3D());
    alSourcef(source, AL_GAIN, playing.gain);
    alSourcef(source, AL_PITCH, playing.pitch);
    alSourcei(source, AL_SOURCE_RELATIVE, is_placed ? AL_FALSE : AL_TRUE);
    alSourcefv(source, AL_POSITION, position.data());
    alSourcefv(source, AL_VELOCITY, velocity.data());
    alSourcef(source, AL_REFERENCE_DISTANCE, static_cast<float>(playing.reference_distance));
}

ALint state_of(ALuint source) {
    ALint state = AL_STOPPED;
    alGetSourcei(source, AL_SOURCE_STATE, &state);
    return state;
}

} // namespace

Mixer::Mixer(const char* device_name) : output(device_name) {
    const Output::Use use(output);
    alDistanceModel(AL_INVERSE_DISTANCE_CLAMPED);
}

Mixer::~Mixer() {
    const Output::Use use(output);
    voices.remove_if([](const Voice&) { return true; });
    sounds.remove_if([](const Sound&) { return true; });
}

SoundHandle Mixer::add_sound(std::span<const std::int16_t> samples, std::uint32_t channels,
                             std::uint32_t frames_per_second) {
    expect(channels == 1 || channels == 2, "a sound must have 1 or 2 channels");
    expect(frames_per_second >= 1 && frames_per_second <= MAX_FRAMES_PER_SECOND,
           "a sound must have 1 to 384,000 frames per second");
    expect(samples.data() != nullptr && !samples.empty() && samples.size_bytes() <= INT32_MAX,
           "a sound must have 1 frame or more, and less than 2 GiB");
    const Output::Use use(output);
    Sound sound{channels == 1};
    alBufferData(sound.buffer.name(), sound.is_mono ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16,
                 samples.data(), static_cast<ALsizei>(samples.size_bytes()),
                 static_cast<ALsizei>(frames_per_second));
    expect_no_error("OpenAL does not take the sound");
    const SoundHandle handle = sounds.add(std::move(sound));
    expect(handle != 0, "1,024 sounds are loaded already; release one");
    return handle;
}

void Mixer::release_sound(SoundHandle handle) {
    const Output::Use use(output);
    voices.remove_if([handle](const Voice& voice) { return voice.sound == handle; });
    sounds.remove(handle);
}

// Lets the time pass in silence, and frees the places of voices that have ended.
void Mixer::update() {
    output.catch_up();
    voices.remove_if(
        [](const Voice& voice) { return state_of(voice.source.name()) == AL_STOPPED; });
}

VoiceHandle Mixer::play(SoundHandle handle, const Playing& playing) {
    const Sound* const sound = sounds.find(handle);
    expect(sound != nullptr, "no such sound");
    expect_valid(playing);
    const Output::Use use(output);
    update();
    Voice voice{handle, playing.placed && sound->is_mono};
    const ALuint source = voice.source.name();
    alSourcei(source, AL_BUFFER, static_cast<ALint>(sound->buffer.name()));
    alSourcei(source, AL_LOOPING, playing.loop ? AL_TRUE : AL_FALSE);
    apply(source, playing, voice.is_placed);
    expect_no_error("OpenAL does not play the sound");
    const VoiceHandle added = voices.add(std::move(voice));
    expect(added != 0, "64 voices are playing already");
    if (!paused)
        alSourcePlay(source);
    return added;
}

void Mixer::change(VoiceHandle handle, const Playing& playing) {
    expect_valid(playing);
    const Output::Use use(output);
    update();
    const Voice* const voice = voices.find(handle);
    expect(voice != nullptr, "the voice has ended");
    apply(voice->source.name(), playing, voice->is_placed);
    expect_no_error("OpenAL does not change the voice");
}

bool Mixer::is_playing(VoiceHandle handle) {
    const Output::Use use(output);
    update();
    return voices.find(handle) != nullptr;
}

void Mixer::stop(VoiceHandle handle) {
    const Output::Use use(output);
    voices.remove(handle);
}

void Mixer::set_listener(const cVector3D& position, const cVector3D& velocity,
                         const cMatrix3D& orientation) {
    const Vector forward = to_openal(column(orientation, 2));
    const Vector up = to_openal(column(orientation, 1));
    const std::array<ALfloat, 6> axes = {forward[0], forward[1], forward[2], up[0], up[1], up[2]};
    const Output::Use use(output);
    output.catch_up();
    alListenerfv(AL_POSITION, to_openal(position).data());
    alListenerfv(AL_VELOCITY, to_openal(velocity).data());
    alListenerfv(AL_ORIENTATION, axes.data());
    alGetError(); // OpenAL keeps the listener's last place where a value is not finite
}

void Mixer::set_master_gain(float gain) {
    const Output::Use use(output);
    if (std::isfinite(gain))
        alListenerf(AL_GAIN, std::max(gain, 0.0F));
}

void Mixer::set_paused(bool pause) {
    const Output::Use use(output);
    output.catch_up();
    paused = pause;
    voices.for_each([this](const Voice& voice) {
        const ALint state = state_of(voice.source.name());
        if (paused && state == AL_PLAYING)
            alSourcePause(voice.source.name());
        else if (!paused && (state == AL_PAUSED || state == AL_INITIAL))
            alSourcePlay(voice.source.name());
    });
}

void Mixer::render(std::int16_t* stereo, std::uint32_t frames) {
    output.render(stereo, frames);
}

} // namespace quillon::audio_openal
