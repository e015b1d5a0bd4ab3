// SPDX-License-Identifier: MIT
// Where the sound goes: a device, the host's memory, or nowhere.
#pragma once

#include <AL/alc.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace quillon::audio_openal {

class Output {
public:
    // The device of that name, the system's own for null, or none for OFFLINE_AUDIO.
    //
    // Without a device the sound goes nowhere, at the pace of the clock. Throws Failure if OpenAL
    // can't even do that.
    explicit Output(const char* device_name);

    // Why there is no device; empty if there is one, and offline.
    const std::string& fault() const { return why_silent; }

    // Mixes the next frames into the host's memory; throws Failure unless the output is offline.
    void render(std::int16_t* stereo, std::uint32_t frames);

    // In silence, mixes the time that has passed since the last call.
    void catch_up();

    // OpenAL's calls of this thread go to the output for as long as the object lives. A host that
    // uses OpenAL itself keeps its own context.
    class Use {
    public:
        explicit Use(const Output& output);
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use();

    private:
        ALCcontext* before;
    };

private:
    using Clock = std::chrono::steady_clock;

    struct CloseDevice {
        void operator()(ALCdevice* unused) const { alcCloseDevice(unused); }
    };

    struct DestroyContext {
        void operator()(ALCcontext* made) const { alcDestroyContext(made); }
    };

    enum class Kind { Device, Offline, Silence };

    void open_loopback();

    Kind kind = Kind::Device;
    std::string why_silent;
    std::unique_ptr<ALCdevice, CloseDevice> device;
    std::unique_ptr<ALCcontext, DestroyContext> context;
    Clock::time_point opened = Clock::now();
    std::uint64_t frames_mixed = 0; // in silence
};

} // namespace quillon::audio_openal
