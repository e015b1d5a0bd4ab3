// SPDX-License-Identifier: MIT
#define AL_ALEXT_PROTOTYPES

#include "output.h"

#include "failure.h"
#include "quiet_errors.h"

#include "plugins/contracts/audio.h"

#include <AL/alext.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace quillon::audio_openal {

namespace {

// OpenAL's loopback device mixes into memory, on the caller's thread.
constexpr ALCint LOOPBACK_ATTRIBUTES[] = {ALC_FORMAT_CHANNELS_SOFT,
                                          ALC_STEREO_SOFT,
                                          ALC_FORMAT_TYPE_SOFT,
                                          ALC_SHORT_SOFT,
                                          ALC_FREQUENCY,
                                          AUDIO_FRAMES_PER_SECOND,
                                          ALC_HRTF_SOFT,
                                          ALC_FALSE,
                                          0};

// In silence, time beyond a minute between two calls is skipped.
constexpr std::uint64_t MAX_GAP_FRAMES = std::uint64_t{60} * AUDIO_FRAMES_PER_SECOND;

constexpr std::uint32_t BLOCK_FRAMES = 4096;

} // namespace

Output::Output(const char* device_name) {
    if (device_name != nullptr && device_name == std::string_view(OFFLINE_AUDIO)) {
        kind = Kind::Offline;
        open_loopback();
        return;
    }
    {
        const QuietErrors quiet; // of the drivers that OpenAL tries in turn
        device.reset(alcOpenDevice(device_name));
        if (device != nullptr)
            context.reset(alcCreateContext(device.get(), nullptr));
    }
    if (context != nullptr)
        return;
    kind = Kind::Silence;
    const std::string name = device_name == nullptr ? "" : " '" + std::string(device_name) + "'";
    why_silent = "there is no sound device" + name + "; going on in silence";
    open_loopback();
}

void Output::open_loopback() {
    device.reset(alcLoopbackOpenDeviceSOFT(nullptr));
    if (device != nullptr)
        context.reset(alcCreateContext(device.get(), LOOPBACK_ATTRIBUTES));
    if (context == nullptr)
        throw Failure("OpenAL opens neither a sound device nor a loopback device");
}

void Output::render(std::int16_t* stereo, std::uint32_t frames) {
    if (kind != Kind::Offline)
        throw Failure("only an offline output can be rendered; see render_audio_offline");
    while (frames > 0) {
        const std::uint32_t count = std::min(frames, BLOCK_FRAMES);
        alcRenderSamplesSOFT(device.get(), stereo, static_cast<ALCsizei>(count));
        stereo += std::size_t{2} * count;
        frames -= count;
    }
}

void Output::catch_up() {
    if (kind != Kind::Silence)
        return;
    const std::chrono::duration<double> passed = Clock::now() - opened;
    const auto due = static_cast<std::uint64_t>(passed.count() * AUDIO_FRAMES_PER_SECOND);
    frames_mixed = std::max(frames_mixed, due - std::min(due, MAX_GAP_FRAMES));
    std::array<std::int16_t, std::size_t{2} * BLOCK_FRAMES> unheard;
    while (frames_mixed < due) {
        const auto count = std::min<std::uint64_t>(due - frames_mixed, BLOCK_FRAMES);
        alcRenderSamplesSOFT(device.get(), unheard.data(), static_cast<ALCsizei>(count));
        frames_mixed += count;
    }
}

Output::Use::Use(const Output& output) : before(alcGetThreadContext()) {
    alcSetThreadContext(output.context.get());
}

Output::Use::~Use() {
    alcSetThreadContext(before);
}

} // namespace quillon::audio_openal
