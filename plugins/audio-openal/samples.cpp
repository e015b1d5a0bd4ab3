// SPDX-License-Identifier: MIT
#include "samples.h"

#include "failure.h"
#include "sound_file.h"

#include "plugins/utf8_path.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>
#include <string>

namespace fs = std::filesystem;

namespace quillon::audio_openal {

namespace {

constexpr std::size_t MAX_VALUES = (256U << 20) / sizeof(std::int16_t);
constexpr std::size_t BLOCK_VALUES = 1U << 16;

[[noreturn]] void refuse(const std::string& file, const std::string& reason) {
    throw Failure("cannot read '" + file + "': " + reason);
}

// Opening a pipe would wait for a writer that never comes.
void expect_regular_file(const fs::path& path, const char* name) {
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        refuse(name, error ? error.message() : "not a file");
}

// Exact for 16-bit files; louder samples than full scale are clipped.
std::int16_t to_sample(float value) {
    return static_cast<std::int16_t>(std::clamp(value * 32768.0F, -32768.0F, 32767.0F));
}

// Grows with the samples that are there, whatever number the file's header promises. NaN is silent.
void read_all(SNDFILE* file, const char* name, std::vector<std::int16_t>& values) {
    std::vector<float> block(BLOCK_VALUES);
    while (const auto count = sf_read_float(file, block.data(), BLOCK_VALUES)) {
        if (values.size() + block.size() > MAX_VALUES)
            refuse(name, "more than 256 MiB of samples; use a shorter sound");
        for (const float value : std::span(block).first(static_cast<std::size_t>(count)))
            values.push_back(std::isnan(value) ? std::int16_t{0} : to_sample(value));
    }
}

} // namespace

Samples read_sound(const char* name) {
    const fs::path path = utf8_path(name);
    expect_regular_file(path, name);
    SF_INFO info{};
    const SoundFile file = open_sound_file(path, info);
    if (file == nullptr)
        refuse(name, sf_strerror(nullptr));
    if (info.channels > 2)
        refuse(name, std::to_string(info.channels) + " channels; 1 or 2 can be played");

    Samples samples{
        {}, static_cast<std::uint32_t>(info.channels), static_cast<std::uint32_t>(info.samplerate)};
    read_all(file.get(), name, samples.values);
    if (samples.values.empty())
        refuse(name, "it has no samples");
    return samples;
}

} // namespace quillon::audio_openal
