// SPDX-License-Identifier: MIT
// Angles in the plane, and a moving box that strikes a static one.
#pragma once

#include "quillon/export.h"

namespace quillon {

// The sides of a moving box that struck a static one, with y upward and x to the right.
struct cCollisionReport {
    // The sides that struck.
    bool bottom;
    bool left;
    bool top;
    bool right;
};

} // namespace quillon

extern "C" {

// Fills the trigonometry tables, which every rotation and slerp reads; always true.
QUILLON_API bool __mPhysics_open();

// Releases the largest of them; harmless before __mPhysics_open.
QUILLON_API void __mPhysics_close();

// The unit vector of an angle in radians: cosTR and sinTR of it, (0, 0) before __mPhysics_open.
QUILLON_API void __mPhysics_direction_pos(double angle, double& x, double& y);

// The angle of the direction (x, y), 0 to TWO_PI radians, by the runtime's atan; 3/2 PI for (0, 0).
QUILLON_API double __mPhysics_angle_from_vector(double x, double y);

// `current` turned toward `target` by at most `step`, the short way round, in radians.
//
// A turn by the whole step is wrapped into 0 to TWO_PI by at most one turn.
// A shorter one, which reaches the target, is not wrapped.
QUILLON_API double __mPhysics_interpolate_angle(double current, double target, double step);

// The size of the smaller turn between two angles, in radians, each bound by trig_bind first.
QUILLON_API double __mPhysics_distance_between_angles(double a, double b);

// Stops a moving box at a static one and reports which of its sides struck.
//
// Boxes are given by centre, full width and full height.
// Three points on each side of the mover are tested, the outer ones `spread` of the way to its
// corners. First the points below and above, then those to the left and right of the corrected
// place. A point inside the static box, borders included, sets the speed toward it to 0 and moves
// the mover out, unless `keep_position`. A static box narrower than the distance of the points can
// pass between them.
QUILLON_API void __mPhysics_collide_staticBox(quillon::cCollisionReport& report, double& x,
                                              double& y, double& speed_x, double& speed_y,
                                              const double& width, const double& height,
                                              double box_x, double box_y, double box_width,
                                              double box_height, double spread, bool keep_position);
}
