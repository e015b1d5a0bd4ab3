#include "quillon/math/physics.h"

#include "quillon/math/constants.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

using quillon::TWO_PI;
using std::numbers::pi;

namespace {

constexpr double turn = TWO_PI;

// A mover of 2 by 2 against a static box of 10 by 4 about the origin: its top is at 2, its right
// side at 5.
struct Collision {
    double x, y, speed_x, speed_y;
    double spread = 0.5;
    bool keep_position = false;
};

struct Outcome {
    double x, y, speed_x, speed_y;
    std::string struck;

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& o, std::ostream* out) {
    *out << "at (" << o.x << ", " << o.y << "), speed (" << o.speed_x << ", " << o.speed_y << "), "
         << o.struck;
}

Outcome collide(Collision c) {
    quillon::cCollisionReport report{true, true, true, true};
    const double size = 2.0;
    __mPhysics_collide_staticBox(report, c.x, c.y, c.speed_x, c.speed_y, size, size, 0.0, 0.0, 10.0,
                                 4.0, c.spread, c.keep_position);
    std::string struck;
    for (const auto& [flag, letter] : {std::pair{report.bottom, 'b'}, std::pair{report.left, 'l'},
                                       std::pair{report.top, 't'}, std::pair{report.right, 'r'}})
        if (flag)
            struck += letter;
    return {c.x, c.y, c.speed_x, c.speed_y, struck};
}

} // namespace

TEST(PhysicsAngles, FromVector) {
    const struct {
        const char* name;
        double x, y, expected;
    } cases[] = {
        {"up", 0, 2, quillon::HALF_PI},
        {"down", 0, -2, 4.71238911151886},
        {"nowhere", 0, 0, 4.71238911151886},
        {"right", 3, 0, 0.0},
        {"up to the right", 1, 1, std::atan(1.0)},
        {"left", -1, 0, quillon::PI},
        {"down to the left", -1, -1, std::atan(1.0) + quillon::PI},
        {"down to the right", 1, -1, std::atan(-1.0) + turn},
    };

    for (const auto& row : cases)
        EXPECT_DOUBLE_EQ(row.expected, __mPhysics_angle_from_vector(row.x, row.y)) << row.name;
}

TEST(PhysicsAngles, InterpolateTheShortWayRound) {
    const struct {
        const char* name;
        double current, target, step, expected;
    } cases[] = {
        {"there already", 9.0, 9.0, 0.5, 9.0},
        {"upward", 1.0, 2.0, 0.25, 1.25},
        {"downward", 2.0, 1.0, 0.25, 1.75},
        {"downward through zero", 0.1, turn - 0.1, 0.05, 0.1 - 0.05},
        {"below zero comes round", 0.1, turn - 0.5, 0.2, 0.1 - 0.2 + turn},
        {"upward past a turn comes round", turn - 0.1, 0.5, 0.2, turn - 0.1 + 0.2 - turn},
        {"within a step reaches the target", 0.1, 0.12, 0.05, 0.1 + (0.12 - 0.1)},
        {"and is not brought round", turn - 0.01, 0.02, 0.05,
         turn - 0.01 + (turn + 0.02 - (turn - 0.01))},
        {"exactly a step", 1.0, 1.5, 0.5, 1.5},
        {"half a turn keeps its direction", turn / 2.0, 0.0, 0.25, turn / 2.0 - 0.25},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, __mPhysics_interpolate_angle(row.current, row.target, row.step))
            << row.name;
}

TEST(PhysicsAngles, DistanceIsOfTheSmallerTurn) {
    EXPECT_NEAR(0.2, __mPhysics_distance_between_angles(0.1, turn - 0.1), 1e-12);
    EXPECT_NEAR(0.2, __mPhysics_distance_between_angles(turn - 0.1, 0.1), 1e-12);
    EXPECT_NEAR(pi, __mPhysics_distance_between_angles(turn * 3.5, 0.0), 1e-6);
    EXPECT_NEAR(0.5, __mPhysics_distance_between_angles(-turn * 1000.0, 0.5), 1e-9);
    EXPECT_EQ(0.0, __mPhysics_distance_between_angles(turn, 0.0));
}

TEST(PhysicsAngles, DirectionComesFromTheTables) {
    double x = 9.0;
    double y = 9.0;
    EXPECT_TRUE(__mPhysics_open());
    for (const double angle : {0.0, 1.0, -2.0, 40.0, 1e9, static_cast<double>(NAN)}) {
        __mPhysics_direction_pos(angle, x, y);
        EXPECT_EQ(cosTR(angle), x) << angle;
        EXPECT_EQ(sinTR(angle), y) << angle;
    }
    __mPhysics_close();
}

TEST(PhysicsCollision, StopsTheSideThatStruck) {
    const struct {
        const char* name;
        Collision given;
        Outcome expected;
    } cases[] = {
        {"apart", {0, 9, 1, -1}, {0, 9, 1, -1, ""}},
        {"comes down, and is lifted before the sides are tested",
         {0, 2.25, 1, -1},
         {0, 3, 1, 0, "b"}},
        {"rests exactly on top", {0, 3, 1, 0}, {0, 3, 1, 0, "b"}},
        {"leaves upward", {0, 2.75, 0, 1}, {0, 2.75, 0, 1, ""}},
        {"comes up from below", {0, -2.25, 1, 1}, {0, -3, 1, 0, "t"}},
        {"moves left into the right side", {5.75, 0, -1, -1}, {6, 0, 0, -1, "l"}},
        {"moves right into the left side", {-5.75, 0, 1, 1}, {-6, 0, 0, 1, "r"}},
        {"at rest inside, the upper points from before the lift",
         {0, 0, 0, 0},
         {0, -3, 0, 0, "bt"}},
        {"position kept", {0, 2.75, 1, -1, 0.5, true}, {0, 2.75, 1, 0, "b"}},
        {"a corner catches", {-5.9, 2.75, -1, -1, 1.0}, {-5.9, 3, -1, 0, "b"}},
        {"but not with a smaller spread", {-5.9, 2.75, -1, -1, 0.5}, {-5.9, 2.75, -1, -1, ""}},
        {"borders count, at the corners too", {0, 3, 0, 0, 1.0}, {-6, 3, 0, 0, "blr"}},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.expected, collide(row.given)) << row.name;
}
