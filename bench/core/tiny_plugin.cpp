// SPDX-License-Identifier: MIT
// The least that a plug-in can be: what loading costs beyond it is the library's.
#include "quillon/core/plugin.h"

QUILLON_PLUGIN_SERVES("Tiny", "")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>*) {
    return true;
}

void shutdown() {}
