// SPDX-License-Identifier: MIT
#include "sound_file.h"

namespace quillon::audio_openal {

SoundFile open_sound_file(const std::filesystem::path& path, SF_INFO& info) {
    return SoundFile(sf_open(path.c_str(), SFM_READ, &info));
}

} // namespace quillon::audio_openal
