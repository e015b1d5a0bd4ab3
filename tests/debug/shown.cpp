// SPDX-License-Identifier: MIT
// What check-shown has gdb show.
#include "quillon/appearance/color.h"
#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/math/vector.h"

using namespace quillon;

namespace {
volatile int stop = 0;
}

int main() {
    const cVector3D place(1.5, -2.0, 3.0);
    const cVector2D<long> size(640, 480);
    const cColor color(0.5F, 0.25F, 0.125F, 1.0F);
    DSParray<int> list;
    list.add(new int(7), DSP_APPEND);
    list.add(new int(9), DSP_APPEND);
    DSPhashMap<int> map;
    map.add(new int(5), 41);
    stop = 1; // shown here
    return place.x > 0.0 && size.x > 0 && color.r > 0.0F ? 0 : 1;
}
