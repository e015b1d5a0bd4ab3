// SPDX-License-Identifier: MIT
#define ENABLE_SNDFILE_WINDOWS_PROTOTYPES 1 // for sf_wchar_open, with the types of windows.h
#include <windows.h>

#include "sound_file.h"

namespace quillon::audio_openal {

SoundFile open_sound_file(const std::filesystem::path& path, SF_INFO& info) {
    return SoundFile(sf_wchar_open(path.c_str(), SFM_READ, &info));
}

} // namespace quillon::audio_openal
