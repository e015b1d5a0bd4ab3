// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <sndfile.h>

namespace quillon::audio_openal {

struct CloseSoundFile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

// Opens for reading and fills `info`; null, with the reason in sf_strerror, if that fails.
SoundFile open_sound_file(const std::filesystem::path& path, SF_INFO& info);

} // namespace quillon::audio_openal
