// SPDX-License-Identifier: MIT
#include "quillon/math/zone.h"

#include "quillon/math/text_fields.h"

#include <algorithm>

using namespace quillon;

namespace quillon {
namespace {

// The two corners as one row of six components.
struct Corners {
    cZone3D& zone;

    double& operator[](int index) {
        return index < 3 ? zone.minimum[index] : zone.maximum[index - 3];
    }
};

} // namespace
} // namespace quillon

void __cZone3d_expand_to_contain(cZone3D& z, const cVector3D& point) {
    for (int i = 0; i < 3; ++i)
        z.minimum[i] = std::min(z.minimum[i], point[i]);
    for (int i = 0; i < 3; ++i)
        z.maximum[i] = std::max(z.maximum[i], point[i]);
}

void __cZone3d_zone_from_string(cZone3D& z, const char* text) {
    Corners corners{z};
    read_component_fields<24>(corners, 6, text);
}
