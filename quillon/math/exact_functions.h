// SPDX-License-Identifier: MIT
// Sine, cosine, tangent and two inverses, rounded correctly to 64 bits at the arguments of the
// trigonometry tables: the same bits with every compiler, on every processor and system.
//
// Forward functions: 0 to 7 radians. Inverses: arguments of the tables' ranges.
// Plain arithmetic in unevaluated sums of two doubles, with errors below 2^-90; no argument of the
// tables lies that near to the middle of two doubles, which a test against MPFR confirms.
#pragma once

namespace quillon::trig::exact {

double sin(double radians);
double cos(double radians);
double tan(double radians);
double asin(double x);
double atan(double x);

} // namespace quillon::trig::exact
