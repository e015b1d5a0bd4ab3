// SPDX-License-Identifier: MIT
#include "quillon/core/plugin.h"

int initialize(quillon::DSPrefHashMap<void>*) {
    return 1;
}
