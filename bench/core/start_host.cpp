// SPDX-License-Identifier: MIT
// A host that loads the library, opens the plug-ins of the folder "plugin" and ends at once.
//
//     start_host LIBRARY            by __mCore_open
//     start_host LIBRARY FILE...    by the loader alone
#include "bench/core/bare_loader.h"
#include "quillon/core/plugin_registry.h"

#include <cstdio>

#include <unistd.h>

int main(int count, char** arguments) {
    if (count < 2)
        return 1;
    void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    auto* const open = reinterpret_cast<decltype(__mCore_open)*>(dlsym(library, "__mCore_open"));
    if (count == 2 && !open())
        return 1;
    for (int i = 2; i < count; ++i)
        load_bare(arguments[i]);
    std::fflush(stdout);
    _exit(0);
}
