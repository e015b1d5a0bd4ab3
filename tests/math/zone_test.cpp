#include "quillon/math/zone.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

using namespace quillon;

namespace {

using Corners = std::array<double, 6>;

Corners corners(const cZone3D& z) {
    return {z.minimum.x, z.minimum.y, z.minimum.z, z.maximum.x, z.maximum.y, z.maximum.z};
}

} // namespace

TEST(Zone3D, SignsOfHalfExtentsAreIgnored) {
    EXPECT_EQ((Corners{-1, -2, -3, 1, 2, 3}), corners(cZone3D(-1, 2, -3)));
    EXPECT_EQ((Corners{-0.5, -0.5, -0.5, 0.5, 0.5, 0.5}), corners(ZONE3D_HALF));
    EXPECT_FALSE(std::signbit(cZone3D(-0.0, 0.0, 0.0).maximum.x));
}

TEST(Zone3D, ExpandsComponentByComponent) {
    cZone3D zone = ZONE3D_ZERO;
    __cZone3d_expand_to_contain(zone, {1, -2, 3});
    __cZone3d_expand_to_contain(zone, {0.5, -1, NAN});
    EXPECT_EQ((Corners{0, -2, 0, 1, 0, 3}), corners(zone));
}

TEST(Zone3D, TextFormHasTheMinimumFirst) {
    cZone3D zone = ZONE3D_ONE;
    __cZone3d_zone_from_string(zone, "1#2#3#4#5");
    EXPECT_EQ((Corners{1, 2, 3, 4, 1, 1}), corners(zone));
    __cZone3d_zone_from_string(zone, "-1#-2#-3#6#5#4.25#99#99#");
    EXPECT_EQ((Corners{-1, -2, -3, 6, 5, 4.25}), corners(zone));
}
