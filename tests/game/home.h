// SPDX-License-Identifier: MIT
// The island that the tests of the game share, with the tables filled before it is built.
#pragma once

#include "island.h"
#include "script.h"

namespace lantern {

inline const Island& home() {
    static const Island island = [] {
        __mPhysics_open();
        return Island(HEIGHT_MAP);
    }();
    return island;
}

// What both pilots do in the present state.
inline Inputs piloted(const State& state) {
    return {pilot(home(), state, 0), pilot(home(), state, 1)};
}

} // namespace lantern
