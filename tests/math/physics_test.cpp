#include "quillon/math/physics.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>

namespace {

constexpr double turn = quillon::TWO_PI;

} // namespace

TEST(PhysicsAngles, FromVector) {
    const struct {
        const char* name;
        double x, y, expected;
    } cases[] = {
        {"up", 0, 2, quillon::HALF_PI},
        {"nowhere", 0, 0, 4.71238911151886},
        {"left", -1, 0, quillon::PI},
        {"down to the left", -1, -1, std::atan(1.0) + quillon::PI},
        {"down to the right", 1, -1, std::atan(-1.0) + turn},
    };

    for (const auto& row : cases)
        EXPECT_DOUBLE_EQ(row.expected, __mPhysics_angle_from_vector(row.x, row.y)) << row.name;
}

TEST(PhysicsAngles, InterpolateTheShortWayRound) {
    const double from = turn - 0.01;

    const struct {
        const char* name;
        double current, target, step, expected;
    } cases[] = {
        {"there already", 9.0, 9.0, 0.5, 9.0},
        {"downward", 2.0, 1.0, 0.25, 1.75},
        {"downward through zero", 0.1, turn - 0.1, 0.05, 0.1 - 0.05},
        {"below zero comes round", 0.1, turn - 0.5, 0.2, 0.1 - 0.2 + turn},
        {"upward past a turn comes round", from, 0.5, 0.2, from + 0.2 - turn},
        {"within a step reaches the target", 0.1, 0.12, 0.05, 0.1 + (0.12 - 0.1)},
        {"and is not brought round", from, 0.02, 0.05, from + (turn + 0.02 - from)},
        {"half a turn keeps its direction", turn / 2.0, 0.0, 0.25, turn / 2.0 - 0.25},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, __mPhysics_interpolate_angle(row.current, row.target, row.step))
            << row.name;
}

TEST(PhysicsAngles, DistanceIsOfTheSmallerTurn) {
    EXPECT_NEAR(0.2, __mPhysics_distance_between_angles(0.1, turn - 0.1), 1e-12);
    EXPECT_NEAR(std::numbers::pi, __mPhysics_distance_between_angles(turn * 3.5, 0.0), 1e-6);
    EXPECT_NEAR(0.5, __mPhysics_distance_between_angles(-turn * 1000.0, 0.5), 1e-9);
    EXPECT_EQ(0.0, __mPhysics_distance_between_angles(turn, 0.0));
}

TEST(PhysicsAngles, DirectionComesFromTheTables) {
    EXPECT_TRUE(__mPhysics_open());
    for (const double angle : {1.0, -2.0, 40.0, 1e9, static_cast<double>(NAN)}) {
        double x = 9.0;
        double y = 9.0;
        __mPhysics_direction_pos(angle, x, y);
        EXPECT_TRUE(x == cosTR(angle) && y == sinTR(angle)) << angle;
    }
    __mPhysics_close();
}

// A mover of 2 by 2 against a static box of 10 by 4 about the origin: its top is at 2, its right
// side at 5. Movers are x, y and the two speeds.
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
        {"comes down, lifted off the sides", {0, 2.25, 1, -1}, 0.5, false, {0, 3, 1, 0}, "b"},
        {"rests exactly on top", {0, 3, 1, 0}, 0.5, false, {0, 3, 1, 0}, "b"},
        {"leaves upward", {0, 2.75, 0, 1}, 0.5, false, {0, 2.75, 0, 1}, ""},
        {"comes up from below", {0, -2.25, 1, 1}, 0.5, false, {0, -3, 1, 0}, "t"},
        {"touches the right side", {6, 0, -1, -1}, 0.5, false, {6, 0, 0, -1}, "l"},
        {"strikes the left side", {-5.75, 0, 1, 1}, 0.5, false, {-6, 0, 0, 1}, "r"},
        {"at rest inside: lifted, then lowered", {0, 0, 0, 0}, 0.5, false, {0, -3, 0, 0}, "bt"},
        {"position kept", {0, 2.75, 1, -1}, 0.5, true, {0, 2.75, 1, 0}, "b"},
        {"a corner catches", {-5.9, 2.75, -1, -1}, 1.0, false, {-5.9, 3, -1, 0}, "b"},
        {"not a drawn-in one", {-5.9, 2.75, -1, -1}, 0.5, false, {-5.9, 2.75, -1, -1}, ""},
        {"borders count", {0, 3, 0, 0}, 1.0, false, {-6, 3, 0, 0}, "blr"},
    };

    for (const auto& row : cases) {
        auto [x, y, speed_x, speed_y] = row.given;
        quillon::cCollisionReport report{true, true, true, true};
        __mPhysics_collide_staticBox(report, x, y, speed_x, speed_y, 2.0, 2.0, 0.0, 0.0, 10.0, 4.0,
                                     row.spread, row.keep_position);
        EXPECT_EQ(row.expected, (Mover{x, y, speed_x, speed_y})) << row.name;
        EXPECT_EQ(row.struck, std::string(report.bottom ? "b" : "") + (report.left ? "l" : "") +
                                  (report.top ? "t" : "") + (report.right ? "r" : ""))
            << row.name;
    }
}
