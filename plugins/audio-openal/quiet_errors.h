// SPDX-License-Identifier: MIT
#pragma once

namespace quillon::audio_openal {

// Discards what the process writes to its standard error stream, as long as the object lives.
class QuietErrors {
public:
    QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors();

private:
    int errors;
};

} // namespace quillon::audio_openal
