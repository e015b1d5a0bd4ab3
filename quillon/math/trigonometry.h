// SPDX-License-Identifier: MIT
// Trigonometry by table look-up, and the binding of angles to one turn.
//
// Results are quantised: a forward function returns the sine, cosine or tangent of a multiple of
// its step, an inverse function the angle of a multiple of its own. An infinity, a NaN or an
// argument beyond 9e18 steps reads the entry of angle 0, or an end of an inverse table. All
// functions return 0 before __init_trig_tables.
//
// The tables hold what the C library computes, which differs between systems in the last place;
// built with QUILLON_EXACT_TABLES, they hold correctly rounded values, which are equal everywhere.
//
// The tables may be read from any thread while no thread fills or clears them.
#pragma once

#include "quillon/export.h"
#include "quillon/math/constants.h"

extern "C" {

// Fills the tables; a second call changes nothing.
// Takes 9.3 MB, 8 MB of them on the heap. If the allocator throws, atanT has no table.
QUILLON_API void __init_trig_tables();

// Releases the table of atanT, which returns 0 from then on; the others stay.
// Harmless without a table. The library's unload and the end of the process do it too.
QUILLON_API void __clear_trig_tables();

// Cosine and sine in steps of 0.005 degree: the entry nearest to the angle, halves upward, or for a
// negative angle one entry nearer to zero. The number of turns hardly changes the time.
//
// Error within one turn: at most 4.4e-5, and 1.32e-4 for negative angles.
// In radians it grows by 4.1e-8 for each radian.
QUILLON_API double cosTD(const double& degrees);
QUILLON_API double sinTD(const double& degrees);
QUILLON_API double cosTR(const double& radians);
QUILLON_API double sinTR(const double& radians);

// Tangent in steps of 0.1 degree, by the same rule; finite everywhere, about -2.3e7 at 90 degrees.
//
// Within one turn it is the tangent of an angle at most 8.8e-4 radians off, or 2.63e-3 for negative
// angles; the radian form adds 4.1e-8 for each radian.
QUILLON_API double tanTD(const double& degrees);
QUILLON_API double tanTR(const double& radians);

// Arc cosine and arc sine in steps of 0.0001 of `x`, downward; `x` is clamped to -1 to 1.
//
// Error: at most 7.2e-4 where |x| is at most 0.99, and 0.01415 at the ends, where the slope is
// infinite.
QUILLON_API float acosT(const double& x);
QUILLON_API float asinT(const double& x);

// Arc tangent in steps of 0.00002 of `x`, toward zero; saturates at 1.520838 beyond 20.
//
// Error: at most 2.01e-5 for |x| up to 20, and 0.05 beyond.
QUILLON_API float atanT(const double& x);

// Wraps an angle into 0 to TWO_PI, both ends included, in bounded time.
//
// The result is that of adding TWO_PI while the angle is below 0, then subtracting it while the
// angle is above TWO_PI, with a rounding at each step. An angle so great that a step does not
// change it becomes its remainder by TWO_PI; an infinity NaN.
QUILLON_API void trig_bind(double& radians);
QUILLON_API void trig_bind_32(float& radians);
}
