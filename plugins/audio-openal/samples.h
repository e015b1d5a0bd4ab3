// SPDX-License-Identifier: MIT
// A sound in memory, and the reading of one from a file.
#pragma once

#include <cstdint>
#include <vector>

namespace quillon::audio_openal {

struct Samples {
    std::vector<std::int16_t> values; // channels interleaved
    std::uint32_t channels = 0;
    std::uint32_t frames_per_second = 0;
};

// Reads a file whole, in any format that libsndfile knows.
//
// Throws Failure for a file that cannot be read, for one that has no samples or more than 256 MiB
// of them, and for one of more than two channels.
Samples read_sound(const char* name);

} // namespace quillon::audio_openal
