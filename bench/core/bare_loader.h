// SPDX-License-Identifier: MIT
// What a host without the library would do.
#pragma once

#include "quillon/core/plugin_registry.h"

#include <dlfcn.h>

// Loads a plug-in and looks its entry points up.
inline void load_bare(const char* file) {
    void* const handle = dlopen(file, RTLD_NOW | RTLD_LOCAL);
    for (const char* name : quillon::ENTRY_POINTS)
        static_cast<void>(dlsym(handle, name));
}
