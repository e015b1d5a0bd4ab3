// SPDX-License-Identifier: MIT
#include "quillon/math/physics.h"

#include "quillon/math/constants.h"
#include "quillon/math/trig_tables.h"
#include "quillon/math/trigonometry.h"
#include "quillon/math/vector.h"

#include <algorithm>
#include <cmath>

using namespace quillon;
using Point = cVector2D<double>;

namespace quillon {
namespace {

// A static box by its sides.
struct Box {
    double left;
    double right;
    double bottom;
    double top;

    bool contains(const Point& p) const {
        return left <= p.x && bottom <= p.y && right >= p.x && top >= p.y;
    }
};

// Stops the mover at one side of the static box.
void stop(double& speed, double& position, double stopped_at, bool keep_position, bool& struck) {
    speed = 0.0;
    if (!keep_position)
        position = stopped_at;
    struck = true;
}

// The smallest turn from `current` to `target`; of equal ones the direct turn.
double shortest_turn(double current, double target) {
    const double direct = target - current;
    const double upward = TWO_PI + target - current;
    const double downward = target - TWO_PI - current;
    if (std::fabs(upward) < std::fabs(direct))
        return upward;
    if (std::fabs(downward) < std::fabs(direct))
        return downward;
    return direct;
}

} // namespace
} // namespace quillon

bool __mPhysics_open() {
    __init_trig_tables();
    return true;
}

void __mPhysics_close() {
    __clear_trig_tables();
}

void __mPhysics_direction_pos(double angle, double& x, double& y) {
    const trig::Direction direction = trig::direction_at(angle);
    x = direction.cosine;
    y = direction.sine;
}

double __mPhysics_angle_from_vector(double x, double y) {
    if (x == 0.0)
        return y > 0.0 ? HALF_PI : static_cast<double>(HALF_PI) + PI;
    double angle = std::atan(y / x);
    if (x < 0.0)
        angle += PI;
    return angle < 0.0 ? angle + TWO_PI : angle;
}

double __mPhysics_interpolate_angle(double current, double target, double step) {
    if (current == target)
        return current;
    const double turn = shortest_turn(current, target);
    if (std::fabs(turn) < step)
        return current + turn;
    const double angle = turn > 0.0 ? current + step : current - step;
    if (angle < 0.0)
        return angle + TWO_PI;
    return angle > TWO_PI ? angle - TWO_PI : angle;
}

double __mPhysics_distance_between_angles(double a, double b) {
    trig_bind(a);
    trig_bind(b);
    const double turn = a - b;
    return std::min({std::fabs(turn), std::fabs(turn + TWO_PI), std::fabs(turn - TWO_PI)});
}

void __mPhysics_collide_staticBox(cCollisionReport& report, double& x, double& y, double& speed_x,
                                  double& speed_y, const double& width, const double& height,
                                  double box_x, double box_y, double box_width, double box_height,
                                  double spread, bool keep_position) {
    report = {};
    const Box box{box_x - box_width / 2.0, box_x + box_width / 2.0, box_y - box_height / 2.0,
                  box_y + box_height / 2.0};
    // A correction moves the later samples, but not the second sample of the same pair.
    for (const int i : {-1, 0, 1}) {
        const double sample = spread * width / 2.0 * i + x;
        const Point lower(sample, y - height / 2.0);
        const Point upper(sample, y + height / 2.0);
        if (box.contains(lower) && speed_y <= 0.0)
            stop(speed_y, y, box.top + height / 2.0, keep_position, report.bottom);
        if (box.contains(upper) && speed_y >= 0.0)
            stop(speed_y, y, box.bottom - height / 2.0, keep_position, report.top);
    }
    for (const int j : {-1, 0, 1}) {
        const double sample = spread * height / 2.0 * j + y;
        const Point left(x - width / 2.0, sample);
        const Point right(x + width / 2.0, sample);
        if (box.contains(left) && speed_x <= 0.0)
            stop(speed_x, x, box.right + width / 2.0, keep_position, report.left);
        if (box.contains(right) && speed_x >= 0.0)
            stop(speed_x, x, box.left - width / 2.0, keep_position, report.right);
    }
}
