// SPDX-License-Identifier: MIT
// What is seen on the island, as render caches.
#pragma once

#include "island.h"

#include <quillon/comfort.h>

#include <span>

namespace lantern {

using Cache = quillon::RenderCache;

// The ground above the shallows, smooth, coloured by height and slope, with tangents.
Cache make_ground(const Island& island);

struct Ring {
    double height;
    double radius;
};

// A body of revolution with flat sides, with tangents; the texture repeats that often in each unit.
// Four sides and a radius of the root of a half make the unit square.
Cache make_lathed(std::span<const Ring> profile, int sides, double repeats);

// A paper glider that points forward, its wing tips in another colour.
Cache make_glider(const quillon::cColor& tips);

} // namespace lantern
