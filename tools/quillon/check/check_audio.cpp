// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "platform.h"
#include "plugins/contracts/audio.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <initializer_list>

namespace tool {
namespace {

using quillon::Audio;

constexpr const char* SUBJECT = "AUDIO";
// The noise that mixers add to hide the rounding to 16 bits.
constexpr int SILENCE = 2;
constexpr std::uint32_t RATE = quillon::AUDIO_FRAMES_PER_SECOND;

// A tenth of a second.
std::vector<std::int16_t> tone() {
    std::vector<std::int16_t> samples(RATE / 10);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>(20'000 * std::sin(0.07 * static_cast<double>(i)));
    return samples;
}

// Source of the layout: the RIFF forms in Microsoft's and IBM's Multimedia Programming Interface of
// 1991.
void write_wav(const std::string& file, const std::vector<std::int16_t>& samples) {
    const auto size = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
    std::ofstream stream(platform::to_path(file), std::ios::binary);
    const auto put = [&stream](const char* name, std::initializer_list<std::uint32_t> values) {
        stream << name;
        for (const std::uint32_t value : values)
            stream.write(reinterpret_cast<const char*>(&value), sizeof value);
    };
    put("RIFF", {36 + size});
    // One channel of whole numbers; in the last word two bytes a frame, and 16 bits a sample.
    put("WAVEfmt ", {16, 1 << 16 | 1, RATE, RATE * 2, 16 << 16 | 2});
    put("data", {size});
    stream.write(reinterpret_cast<const char*>(samples.data()), size);
}

quillon::SoundHandle tone_of(const Audio& audio) {
    const std::vector<std::int16_t> samples = tone();
    const auto sound =
        audio.create_sound(samples.data(), static_cast<std::uint32_t>(samples.size()), 1, RATE);
    expect_success(audio, sound != 0, "create_sound");
    return sound;
}

// The loudest sample of the next frames.
int peak(const Audio& audio, std::uint32_t frames) {
    std::vector<std::int16_t> samples(std::size_t{frames} * 2, 7);
    expect_success(audio, audio.render(samples.data(), frames), "render");
    int loudest = 0;
    for (const std::int16_t sample : samples)
        loudest = std::max(loudest, std::abs(int{sample}));
    return loudest;
}

quillon::VoiceHandle play(const Audio& audio, quillon::SoundHandle sound, bool loop) {
    const auto voice = audio.play(sound, {.loop = loop});
    expect_success(audio, voice != 0, "play");
    return voice;
}

void check_voices(const Audio& audio) {
    check(SUBJECT, "plays a sound to its end", [&] {
        const auto sound = tone_of(audio);
        const auto voice = play(audio, sound, false);
        expect(audio.is_playing(voice), "the voice does not play");
        expect(peak(audio, RATE / 20) > 1000, "what is rendered is silent");
        peak(audio, RATE / 2);
        expect(!audio.is_playing(voice), "the voice plays on after the end of its sound");
        expect(!audio.change(voice, {}), "change does not fail for a voice that has ended");
        audio.release_sound(sound);
    });
    check(SUBJECT, "stops the voices of a sound that is released", [&] {
        const auto sound = tone_of(audio);
        const auto voice = play(audio, sound, true);
        peak(audio, RATE / 2);
        expect(audio.is_playing(voice), "a voice that loops ends");
        audio.release_sound(sound);
        peak(audio, RATE / 10);
        expect(!audio.is_playing(voice), "its voice plays on");
        expect(peak(audio, RATE / 10) <= SILENCE, "its voice is heard");
        expect_failure(audio, audio.play(sound, {}) == 0, "play of a released sound");
    });
    check(SUBJECT, "holds and silences its voices", [&] {
        const auto sound = tone_of(audio);
        const auto voice = play(audio, sound, true);
        audio.set_paused(true);
        peak(audio, RATE / 10);
        expect(peak(audio, RATE / 10) <= SILENCE, "a held voice is heard");
        expect(audio.is_playing(voice), "a held voice ends");
        audio.set_paused(false);
        expect(peak(audio, RATE / 10) > 1000, "a voice does not go on");
        audio.set_master_gain(0);
        peak(audio, RATE / 10);
        expect(peak(audio, RATE / 10) <= SILENCE, "a master gain of 0 is heard");
        audio.set_master_gain(1);
        audio.stop(voice);
        expect(!audio.is_playing(voice), "a stopped voice plays");
        audio.release_sound(sound);
    });
}

} // namespace

void check_audio(const Audio& audio) {
    check(SUBJECT, "renders silence where nothing plays",
          [&] { expect(peak(audio, 1234) <= SILENCE, "what is rendered is not silent"); });
    check(SUBJECT, "says why a sound is refused", [&] {
        expect_failure(audio, audio.load_sound("missing.wav") == 0, "load_sound of a missing file");
        std::ofstream("text.wav") << "no sound";
        expect_failure(audio, audio.load_sound("text.wav") == 0, "load_sound of a text");
        const std::int16_t samples[6] = {1, 2, 3, 4, 5, 6};
        expect_failure(audio, audio.create_sound(samples, 2, 3, RATE) == 0,
                       "create_sound of 3 channels");
        expect_failure(audio, audio.play(0, {}) == 0, "play of sound 0");
    });
    check(SUBJECT, "loads a WAV file, whose name is UTF-8", [&] {
        const std::string file = "tone \u00E4\u20AC.wav";
        write_wav(file, tone());
        const auto sound = audio.load_sound(file.c_str());
        expect_success(audio, sound != 0, "load_sound of " + file);
        const auto voice = play(audio, sound, false);
        expect(peak(audio, RATE / 20) > 1000, "what is rendered is silent");
        audio.stop(voice);
        audio.release_sound(sound);
    });
    check(SUBJECT, "passes over handles that are none", [&] {
        audio.release_sound(0);
        audio.release_sound(12345);
        audio.stop(0);
        audio.stop(12345);
        expect(!audio.is_playing(12345), "voice 12345 plays");
    });
    check_voices(audio);
}

} // namespace tool
