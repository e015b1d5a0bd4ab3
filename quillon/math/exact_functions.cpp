// SPDX-License-Identifier: MIT
#include "quillon/math/exact_functions.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace quillon::trig::exact {

namespace {

// The unevaluated sum of two doubles: 106 bits. `low` is at most half a unit of `high`'s last
// place, so `high` alone is the sum rounded to nearest.
struct Wide {
    double high;
    double low;
};

// a + b without error, where |a| >= |b| (Dekker 1971).
constexpr Wide ordered_sum(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

// a + b without error (Knuth, The Art of Computer Programming 2, 4.2.2).
constexpr Wide exact_sum(double a, double b) {
    const double sum = a + b;
    const double part_of_b = sum - a;
    return {sum, (a - (sum - part_of_b)) + (b - part_of_b)};
}

// The upper 26 bits of a double, and the rest (Veltkamp 1968).
constexpr Wide halves(double value) {
    const double scaled = value * 134217729.0; // 2^27 + 1
    const double upper = scaled - (scaled - value);
    return {upper, value - upper};
}

// a * b without error (Dekker 1971). Not by fma: some runtimes round it twice.
constexpr Wide exact_product(double a, double b) {
    const double product = a * b;
    const Wide x = halves(a);
    const Wide y = halves(b);
    const double error =
        ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low;
    return {product, error};
}

constexpr Wide operator-(Wide a) {
    return {-a.high, -a.low};
}

constexpr Wide operator+(Wide a, Wide b) {
    const Wide upper = exact_sum(a.high, b.high);
    const Wide lower = exact_sum(a.low, b.low);
    const Wide sum = ordered_sum(upper.high, upper.low + lower.high);
    return ordered_sum(sum.high, sum.low + lower.low);
}

constexpr Wide operator*(Wide a, Wide b) {
    const Wide product = exact_product(a.high, b.high);
    return ordered_sum(product.high, product.low + (a.high * b.low + a.low * b.high));
}

// Long division: a digit of 53 bits, then what it left over.
constexpr Wide operator/(Wide a, Wide b) {
    const double digit = a.high / b.high;
    const Wide rest = a + -(Wide{digit, 0.0} * b);
    return ordered_sum(digit, rest.high / b.high);
}

// 1 / n! for n up to 27: at a quarter of pi the next term of either series is below 2^-104.
constexpr std::size_t TERMS = 28;
constexpr auto RECIPROCAL_FACTORIALS = [] {
    std::array<Wide, TERMS> table{};
    table[0] = {1.0, 0.0};
    for (std::size_t n = 1; n < TERMS; ++n)
        table[n] = table[n - 1] / Wide{static_cast<double>(n), 0.0};
    return table;
}();

// The terms first, first + 2, ... of the exponential series with changing signs, without the factor
// angle^first: the cosine for 0, the sine over the angle for 1.
Wide series(Wide angle, std::size_t first) {
    const Wide square = -(angle * angle);
    Wide sum = RECIPROCAL_FACTORIALS[TERMS - 2 + first];
    for (std::size_t n = TERMS - 2 + first; n > first; n -= 2)
        sum = RECIPROCAL_FACTORIALS[n - 2] + square * sum;
    return sum;
}

struct Direction {
    Wide cosine;
    Wide sine;
};

// What is left of an angle after whole quarter turns, at most a quarter of pi each way. Half of pi
// is a sum of three doubles, since angles near its multiples lose the leading bits.
Wide without_quarters(double radians, double quarters) {
    const Wide left = Wide{radians, 0.0} + -exact_product(quarters, 0x1.921fb54442d18p+0);
    return left + -exact_product(quarters, 0x1.1a62633145c07p-54) +
           Wide{quarters * 0x1.f1976b7ed8fbcp-110, 0.0};
}

Direction direction_at(double radians) {
    const double quarters = std::floor(radians / 0x1.921fb54442d18p+0 + 0.5);
    const Wide angle = without_quarters(radians, quarters);
    const Wide cosine = series(angle, 0);
    const Wide sine = angle * series(angle, 1);
    switch (static_cast<int>(quarters) & 3) {
    case 0:
        return {cosine, sine};
    case 1:
        return {-sine, cosine};
    case 2:
        return {-cosine, -sine};
    default:
        return {sine, -cosine};
    }
}

} // namespace

double sin(double radians) {
    return direction_at(radians).sine.high;
}

double cos(double radians) {
    return direction_at(radians).cosine.high;
}

double tan(double radians) {
    const Direction direction = direction_at(radians);
    return (direction.sine / direction.cosine).high;
}

// Both inverses take the runtime's angle and add what it lacks, by one step of Newton's method: an
// error of e becomes one of about e squared, so runtimes that differ in the last place agree here.

double asin(double x) {
    const double near = std::asin(x);
    const Direction direction = direction_at(near);
    const Wide lack = (Wide{x, 0.0} + -direction.sine) / direction.cosine;
    return (Wide{near, 0.0} + lack).high;
}

// By the addition theorem the tangent of the lack is (x cos - sin) / (cos + x sin).
double atan(double x) {
    const double near = std::atan(x);
    const auto [cosine, sine] = direction_at(near);
    const Wide wide_x{x, 0.0};
    const Wide lack = (wide_x * cosine + -sine) / (cosine + wide_x * sine);
    return (Wide{near, 0.0} + lack).high;
}

} // namespace quillon::trig::exact
