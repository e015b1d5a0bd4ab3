// SPDX-License-Identifier: MIT
#include "quillon/platform/exit.h"

#include "quillon/platform/loader.h"

#include <cstdlib>

namespace quillon::platform {

// Each library has its own list of handlers here, which its unload runs.
void call_at_unload_or_exit(void (*function)()) {
    static_cast<void>(std::atexit(function));
}

// Libraries that were loaded later detach earlier: the plug-ins ahead of this one.
void call_before_end_of(void* library, void (*function)()) {
    if (void* const entry = find_function(library, "call_before_end_of_plugin"))
        reinterpret_cast<void (*)(void (*)())>(entry)(function);
}

} // namespace quillon::platform
