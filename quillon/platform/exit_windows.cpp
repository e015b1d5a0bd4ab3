// SPDX-License-Identifier: MIT
#include "quillon/platform/exit.h"

#include <cstdlib>

namespace quillon::platform {

// Each library has its own list of handlers here, which its unload runs.
void call_at_unload_or_exit(void (*function)()) {
    static_cast<void>(std::atexit(function));
}

} // namespace quillon::platform
