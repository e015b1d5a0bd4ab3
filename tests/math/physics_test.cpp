// SPDX-License-Identifier: MIT
#include "quillon/math/physics.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>

using namespace quillon;

namespace {

constexpr double TURN = TWO_PI;

} // namespace

TEST(PhysicsAngles, OfAVectorLieWithinOneTurn) {
    EXPECT_DOUBLE_EQ(HALF_PI, __mPhysics_angle_from_vector(0, 2)) << "up";
    EXPECT_DOUBLE_EQ(4.71238911151886, __mPhysics_angle_from_vector(0, 0)) << "nowhere";
    EXPECT_DOUBLE_EQ(PI, __mPhysics_angle_from_vector(-1, 0)) << "left";
    EXPECT_DOUBLE_EQ(std::atan(1.0) + PI, __mPhysics_angle_from_vector(-1, -1))
        << "down to the left";
    EXPECT_DOUBLE_EQ(std::atan(-1.0) + TURN, __mPhysics_angle_from_vector(1, -1))
        << "down to the right";
}

TEST(PhysicsAngles, InterpolateTheShortWayRound) {
    const double from = TURN - 0.01;

    const struct {
        const char* name;
        double current, target, step, expected;
    } cases[] = {
        {"there already", 9.0, 9.0, 0.5, 9.0},
        {"downward", 2.0, 1.0, 0.25, 1.75},
        {"downward through zero", 0.1, TURN - 0.1, 0.05, 0.1 - 0.05},
        {"below zero comes round", 0.1, TURN - 0.5, 0.2, 0.1 - 0.2 + TURN},
        {"upward past a turn comes round", from, 0.5, 0.2, from + 0.2 - TURN},
        {"within a step reaches the target", 0.1, 0.12, 0.05, 0.1 + (0.12 - 0.1)},
        {"and is not brought round", from, 0.02, 0.05, from + (TURN + 0.02 - from)},
        {"half a turn keeps its direction", TURN / 2.0, 0.0, 0.25, TURN / 2.0 - 0.25},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, __mPhysics_interpolate_angle(row.current, row.target, row.step))
            << row.name;
}

TEST(PhysicsAngles, DistanceIsOfTheSmallerTurn) {
    EXPECT_NEAR(0.2, __mPhysics_distance_between_angles(0.1, TURN - 0.1), 1e-12);
    EXPECT_NEAR(std::numbers::pi, __mPhysics_distance_between_angles(TURN * 3.5, 0.0), 1e-6);
    EXPECT_NEAR(0.5, __mPhysics_distance_between_angles(-TURN * 1000.0, 0.5), 1e-9);
    EXPECT_EQ(0.0, __mPhysics_distance_between_angles(TURN, 0.0));
}

TEST(PhysicsAngles, DirectionComesFromTheTablesThatOpenFills) {
    EXPECT_TRUE(__mPhysics_open());
    EXPECT_EQ(1.0, cosTD(0.0));
    for (const double angle : {1.0, -2.0, 40.0, 1e9, static_cast<double>(NAN)}) {
        double x = 9.0;
        double y = 9.0;
        __mPhysics_direction_pos(angle, x, y);
        EXPECT_TRUE(x == cosTR(angle) && y == sinTR(angle)) << angle;
    }
    EXPECT_NE(0.0F, atanT(1.0));
    __mPhysics_close();
    EXPECT_EQ(0.0F, atanT(1.0));
}

// A mover of 2 by 4 against a static box of 10 by 6 about (100, -50): its left side is at 95, its
// top at -47. Movers are x, y relative to that centre, and the two speeds.
TEST(PhysicsCollision, StopsTheSideThatStruck) {
    using Mover = std::array<double, 4>;

    const struct {
        const char* name;
        Mover given;
        double spread;
        bool keep_position;
        Mover expected;
        const char* struck;
    } cases[] = {
        {"comes down, lifted off the sides", {0, 4.25, 1, -1}, 0.5, false, {0, 5, 1, 0}, "b"},
        {"rests exactly on top", {0, 5, 1, 0}, 0.5, false, {0, 5, 1, 0}, "b"},
        {"leaves upward", {0, 4.75, 0, 1}, 0.25, false, {0, 4.75, 0, 1}, ""},
        {"comes up from below", {0, -4.25, 1, 1}, 0.5, false, {0, -5, 1, 0}, "t"},
        {"touches the right side", {6, 0, -1, -1}, 0.5, false, {6, 0, 0, -1}, "l"},
        {"strikes the left side", {-5.75, 0, 1, 1}, 0.5, false, {-6, 0, 0, 1}, "r"},
        {"at rest inside: lifted, then lowered", {0, 1, 0, 0}, 0.5, false, {0, -5, 0, 0}, "bt"},
        {"beside the right side", {6.5, 0, -1, -1}, 0.5, false, {6.5, 0, -1, -1}, ""},
        {"beside the left side", {-6.5, 0, 1, 1}, 0.5, false, {-6.5, 0, 1, 1}, ""},
        {"position kept", {0, 4.75, 1, -1}, 0.5, true, {0, 4.75, 1, 0}, "b"},
        {"position kept sideways", {5.75, 0, -1, 1}, 0.5, true, {5.75, 0, 0, 1}, "l"},
        {"a corner catches", {-5.9, 4.75, -1, -1}, 1.0, false, {-5.9, 5, -1, 0}, "b"},
        {"not a drawn-in one", {-5.9, 4.75, -1, -1}, 0.5, false, {-5.9, 4.75, -1, -1}, ""},
        {"borders count", {0, 5, 0, 0}, 1.0, false, {-6, 5, 0, 0}, "blr"},
    };

    constexpr double box_x = 100.0;
    constexpr double box_y = -50.0;
    for (const auto& row : cases) {
        auto [x, y, speed_x, speed_y] = row.given;
        x += box_x;
        y += box_y;
        cCollisionReport report{true, true, true, true};
        __mPhysics_collide_staticBox(report, x, y, speed_x, speed_y, 2.0, 4.0, box_x, box_y, 10.0,
                                     6.0, row.spread, row.keep_position);
        const auto& [to_x, to_y, to_speed_x, to_speed_y] = row.expected;
        EXPECT_EQ((Mover{box_x + to_x, box_y + to_y, to_speed_x, to_speed_y}),
                  (Mover{x, y, speed_x, speed_y}))
            << row.name;
        EXPECT_EQ(row.struck, std::string(report.bottom ? "b" : "") + (report.left ? "l" : "") +
                                  (report.top ? "t" : "") + (report.right ? "r" : ""))
            << row.name;
    }
}
