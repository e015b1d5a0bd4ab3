// SPDX-License-Identifier: MIT
#include "quillon/platform/random.h"

#include <cstdlib>
#include <random>
#include <stdexcept>

namespace quillon::platform {

int runtime_rand() {
    return std::rand() / (RAND_MAX / 32768 + 1);
}

std::uint32_t random_seed() {
    try {
        return std::random_device{}();
    } catch (const std::runtime_error&) {
        // No device: the address of the stack, which the system draws anew for each process.
        const int on_stack = 0;
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&on_stack) >> 4);
    }
}

} // namespace quillon::platform
