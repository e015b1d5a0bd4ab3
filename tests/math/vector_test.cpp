#include "quillon/math/vector.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

using quillon::cVector2D;
using quillon::cVector3D;

namespace {

void expect_components(const cVector3D& v, double x, double y, double z) {
    EXPECT_EQ(x, v.x);
    EXPECT_EQ(y, v.y);
    EXPECT_EQ(z, v.z);
}

} // namespace

TEST(Vector3D, TextFormIsReadFieldByField) {
    const struct {
        const char* name;
        const char* text;
        double x, y, z;
    } cases[] = {
        {"three fields", "1.5#2#3#", 1.5, 2, 3},
        {"open last field", "1.5#2#3", 1.5, 2, -9},
        {"empty text", "", -7, -8, -9},
        {"surplus field", "1#2#3#4#", 1, 2, 3},
        {"not a number", "a##3#", 0, 0, 3},
        {"longest field", "1.0000000000000000000005#2#3#", 1.0, 2, 3},
        {"field cut at 23 characters", "12345678901234567890123456789#2#3#",
         12345678901234567890123.0, 2, 3},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        cVector3D v(-7, -8, -9);
        __cVector3d_vector_from_string(v, row.text);
        expect_components(v, row.x, row.y, row.z);
    }
}
