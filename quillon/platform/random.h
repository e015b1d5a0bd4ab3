// SPDX-License-Identifier: MIT
// Platform random numbers.
#pragma once

#include <cstdint>

namespace quillon::platform {

// The next value of the runtime's rand, which the host seeds, scaled to 0 to 32767.
int runtime_rand();

// One 32-bit value that differs from run to run.
std::uint32_t random_seed();

} // namespace quillon::platform
