// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace quillon::audio_openal {

// Ends an operation; the text is what `last_error` returns, in one line.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace quillon::audio_openal
