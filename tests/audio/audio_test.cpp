// SPDX-License-Identifier: MIT
// The plug-in "audio-openal", rendered into memory.
#include "plugins/contracts/audio.h"
#include "tests/plugins/loaded_plugin.h"
#include "tests/scratch_folder.h"

#include <gmock/gmock.h>

#include <sndfile.h>

#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <numbers>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

using quillon::cMatrix3D;
using quillon::cVector3D;
using quillon::Playing;
using testing::HasSubstr;

namespace {

constexpr std::uint32_t RATE = quillon::AUDIO_FRAMES_PER_SECOND;

struct Player : LoadedPlugin<quillon::Audio> {
    explicit Player(const char* device)
        : LoadedPlugin(AUDIO_FILE, "connect_sound_interface", {{quillon::AUDIO_DEVICE, device}}) {}
};

struct Energy {
    double left = 0;
    double right = 0;

    double sum() const { return left + right; }
};

std::vector<std::int16_t> sine(std::uint32_t frames, std::uint32_t channels = 1) {
    std::vector<std::int16_t> samples;
    for (std::uint32_t i = 0; i < frames; ++i)
        for (std::uint32_t channel = 0; channel < channels; ++channel)
            samples.push_back(static_cast<std::int16_t>(
                channel == 0 ? 8000 * std::sin(i * 440 * 2 * std::numbers::pi / RATE) : 0));
    return samples;
}

class Sounds : public testing::Test {
protected:
    // Of the second half, as OpenAL fades to a new gain.
    Energy render(double seconds) {
        const auto frames = static_cast<std::uint32_t>(seconds * RATE);
        std::vector<std::int16_t> stereo(std::size_t{2} * frames);
        EXPECT_TRUE(audio->render(stereo.data(), frames));
        Energy energy;
        for (std::size_t i = frames / 2; i < frames; ++i) {
            energy.left += std::pow(stereo[2 * i], 2) / frames;
            energy.right += std::pow(stereo[2 * i + 1], 2) / frames;
        }
        return energy;
    }

    Energy energy_at(const cVector3D& position, double reference_distance = 1) {
        const quillon::VoiceHandle voice =
            audio->play(tone, {.loop = true,
                               .placed = true,
                               .position = position,
                               .reference_distance = reference_distance});
        EXPECT_NE(0U, voice);
        const Energy energy = render(0.1);
        audio->stop(voice);
        return energy;
    }

    // Seconds until a voice ends, in steps of 0.01.
    double length(const Playing& playing, quillon::SoundHandle sound) {
        const quillon::VoiceHandle voice = audio->play(sound, playing);
        double seconds = 0;
        for (; audio->is_playing(voice) && seconds < 2; seconds += 0.01)
            render(0.01);
        audio->stop(voice);
        return seconds;
    }

    Player audio{quillon::OFFLINE_AUDIO};
    quillon::SoundHandle tone = audio->create_sound(sine(RATE / 2).data(), RATE / 2, 1, RATE);
};

TEST_F(Sounds, AreLouderOnTheSideWhereTheyAre) {
    const cMatrix3D ahead;
    const cMatrix3D turned_to_x(0, 0, 1, 0, 1, 0, -1, 0, 0); // its columns: right, up, forward

    using Row = std::tuple<const char*, cMatrix3D, cVector3D, int>; // side: -1 is left
    const Row rows[] = {
        {"right", ahead, {3, 0, 0}, 1},         {"left", ahead, {-3, 0.5, 0}, -1},
        {"ahead", ahead, {0, 0, 3}, 0},         {"half right", ahead, {2, 0, 2}, 1},
        {"turned", turned_to_x, {0, 0, 3}, -1}, {"turned, ahead", turned_to_x, {3, 0, 0}, 0}};

    const cVector3D listener(5, -2, 7);
    for (const auto& [name, orientation, position, side] : rows) {
        SCOPED_TRACE(name);
        audio->set_listener(listener, {}, orientation);
        const Energy energy = energy_at(listener + position);
        const double ratio = energy.right / energy.left;
        if (side == 0)
            EXPECT_NEAR(1, ratio, 0.01);
        else
            EXPECT_GT(side > 0 ? ratio : 1 / ratio, 4);
    }
}

TEST_F(Sounds, FadeWithTheDistanceBeyondTheReference) {
    const double near = energy_at({0, 0, 2}, 2).sum();
    EXPECT_NEAR(1, energy_at({0, 0, 0.5}, 2).sum() / near, 0.01);
    EXPECT_NEAR(16, near / energy_at({0, 0, 8}, 2).sum(), 0.5);
    audio->set_master_gain(0.5F);
    EXPECT_NEAR(4, near / energy_at({0, 0, 2}, 2).sum(), 0.1);
}

TEST_F(Sounds, OfTwoChannelsAndPlainOnesAreNotPlaced) {
    audio->set_listener({90, 0, 0}, {}, {});
    const auto left_only = audio->create_sound(sine(RATE / 2, 2).data(), RATE / 2, 2, RATE);
    audio->play(left_only, {.placed = true, .position = {99, 0, 0}});
    const Energy stereo = render(0.1);
    EXPECT_GT(stereo.left, 1000);
    EXPECT_LT(stereo.right, 1);
    audio->release_sound(left_only);
    EXPECT_LT(render(0.1).sum(), 1) << "its voice has ended";
    audio->play(tone, {.position = {-9, 0, 0}});
    const Energy plain = render(0.1);
    EXPECT_NEAR(1, plain.left / plain.right, 1e-3);
}

TEST_F(Sounds, VoicesEndWithTheirSoundAndFollowChanges) {
    EXPECT_NEAR(0.5, length({}, tone), 0.03);
    EXPECT_NEAR(0.25, length({.pitch = 2}, tone), 0.03);
    EXPECT_GT(length({.loop = true}, tone), 1.9);

    const auto voice = audio->play(tone, {});
    const double loud = render(0.1).sum();
    EXPECT_TRUE(audio->change(voice, {.gain = 0.5F}));
    EXPECT_NEAR(4, loud / render(0.1).sum(), 0.1);
    audio->set_paused(true);
    const auto second = audio->play(tone, {});
    render(1);
    EXPECT_TRUE(audio->is_playing(second)) << "begins where all are held";
    audio->set_paused(false);
    EXPECT_GT(render(0.1).sum(), loud) << "both are heard, in phase";
    audio->stop(second);
    render(0.5);
    EXPECT_FALSE(audio->change(voice, {}));
    EXPECT_STREQ("the voice has ended", audio->last_error());
    EXPECT_NE(voice, audio->play(tone, {})) << "a handle is not used for another voice";
}

class SoundFiles : public Sounds, ScratchFolder {
protected:
    static std::string write(const std::string& name, int format, int channels, sf_count_t frames) {
        SF_INFO info{0, 22050, channels, format, 0, 0};
        SNDFILE* const out = sf_open(name.c_str(), SFM_WRITE, &info);
        sf_command(out, SFC_SET_SCALE_INT_FLOAT_WRITE, nullptr, SF_TRUE);
        const auto samples = sine(11025, static_cast<std::uint32_t>(channels));
        EXPECT_EQ(frames, sf_writef_short(out, samples.data(), frames));
        sf_close(out);
        return name;
    }
};

TEST_F(SoundFiles, OfAllFormatsLoadWhole) {
    const std::pair<const char*, int> rows[] = {{"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16},
                                                {"float.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT},
                                                {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                                {"a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS}};

    audio->play(audio->create_sound(sine(11025).data(), 11025, 1, 22050), {});
    const double expected = render(0.4).left;
    render(0.2);
    for (const auto& [name, format] : rows) {
        SCOPED_TRACE(name);
        const auto sound = audio->load_sound(write(name, format, 1, 11025).c_str());
        EXPECT_STREQ("", audio->last_error());
        EXPECT_NEAR(0.5, length({}, sound), 0.03);
        const auto voice = audio->play(sound, {});
        EXPECT_NEAR(1, render(0.4).left / expected, 0.02);
        audio->stop(voice);
    }
}

TEST_F(SoundFiles, ThatCannotBePlayedSayWhy) {
    std::ofstream("text.wav") << "hello";

    constexpr int wav_format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    const std::pair<std::string, const char*> rows[] = {
        {"nothing.wav", "nothing.wav': No such file or directory"},
        {"/dev/zero", "cannot read '/dev/zero': not a file"},
        {"text.wav", "text.wav': "},
        {write("three.wav", wav_format, 3, 100), "3 channels; 1 or 2"},
        {write("empty.wav", wav_format, 1, 0), "it has no samples"}};

    for (const auto& [file, error] : rows) {
        EXPECT_EQ(0U, audio->load_sound(file.c_str()));
        EXPECT_THAT(audio->last_error(), HasSubstr(error));
    }
}

TEST_F(Sounds, WrongArgumentsAreRefused) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    std::array<Playing, 7> wrong;
    wrong[0].gain = -1;
    wrong[1].gain = NAN;
    wrong[2].pitch = 0;
    wrong[3].pitch = INFINITY;
    wrong[4].position.y = infinite;
    wrong[5].velocity.x = 1e300;
    wrong[6].reference_distance = 0;
    const auto voice = audio->play(tone, {});
    for (const Playing& playing : wrong) {
        EXPECT_EQ(0U, audio->play(tone, playing));
        EXPECT_THAT(audio->last_error(), HasSubstr(" must be "));
        EXPECT_FALSE(audio->change(voice, playing));
    }
    const std::int16_t sample = 1;
    EXPECT_EQ(0U,
              audio->create_sound(nullptr, 1, 1, RATE) + audio->create_sound(&sample, 0, 1, RATE) +
                  audio->create_sound(&sample, 1, 3, RATE) + audio->create_sound(&sample, 1, 1, 0));
    EXPECT_EQ(0U, audio->play(tone + 1, {}) + audio->play(0, {}));
    audio->stop(0);
    audio->release_sound(0);
    audio->set_listener({infinite, 0, 0}, {}, {});
    audio->set_master_gain(NAN);
    EXPECT_GT(render(0.1).sum(), 1000) << "the rest goes on";

    for (int i = 1; i < 64; ++i)
        EXPECT_NE(0U, audio->play(tone, {}));
    EXPECT_EQ(0U, audio->play(tone, {}));
    EXPECT_STREQ("64 voices are playing already", audio->last_error());
}

TEST(Silence, IsReportedAndKeepsTheTime) {
    testing::internal::CaptureStderr();
    const Player audio("no such device");
    EXPECT_STREQ("there is no sound device 'no such device'; going on in silence",
                 audio->last_error());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    const auto sound = audio->create_sound(sine(RATE / 10).data(), RATE / 10, 1, RATE);
    EXPECT_STREQ("", audio->last_error());
    const auto voice = audio->play(sound, {});
    EXPECT_TRUE(audio->is_playing(voice));
    for (int i = 0; i < 1000 && audio->is_playing(voice); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(audio->is_playing(voice));
    std::int16_t stereo[2];
    EXPECT_FALSE(audio->render(stereo, 1));
    EXPECT_THAT(audio->last_error(), HasSubstr("offline"));
}

} // namespace
