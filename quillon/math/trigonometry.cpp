// SPDX-License-Identifier: MIT
#include "quillon/math/trigonometry.h"

#include "quillon/math/table_functions.h"
#include "quillon/math/trig_tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <type_traits>

using namespace quillon;
using namespace quillon::trig;

namespace quillon::trig {

constinit double cosTable[CIRCLE_ENTRIES] = {};
constinit double sinTable[CIRCLE_ENTRIES] = {};

namespace {

constexpr std::int32_t ARC_ENTRIES = 20001;
constexpr std::int32_t ARCTANGENT_ENTRIES = 2000001;
constexpr std::int32_t ARCTANGENT_MIDDLE = 1000000;

constinit double tanTable[TANGENT_ENTRIES] = {};
constinit float acosTable[ARC_ENTRIES] = {};
constinit float asinTable[ARC_ENTRIES] = {};
constinit float* atanTable = nullptr; // ARCTANGENT_ENTRIES elements, or none

constexpr double WIDE_PI = PI;

void fill_forward_tables() {
    for (std::int32_t i = 0; i < CIRCLE_ENTRIES; ++i) {
        const double angle = i * WIDE_PI / 36000.0;
        cosTable[i] = table_functions::cos(angle);
        sinTable[i] = table_functions::sin(angle);
    }
    for (std::int32_t i = 0; i < TANGENT_ENTRIES; ++i)
        tanTable[i] = table_functions::tan(i * WIDE_PI / 1800.0);
}

// One arc sine serves four entries: the arguments are symmetric about 0, the arc sine is odd, and
// the arc cosine is its complement to a right angle. The 64-bit error is far below the precision of
// an entry.
void fill_arc_tables() {
    constexpr double right_angle = std::numbers::pi / 2.0;
    constexpr std::int32_t middle = ARC_ENTRIES / 2;
    for (std::int32_t i = 0; i <= middle; ++i) {
        const double x = static_cast<float>(i / 10000.0 - 1.0);
        const double angle = table_functions::asin(x);
        const std::int32_t mirrored = ARC_ENTRIES - 1 - i;
        // The mirrored entry first, so that the middle one ends as a positive zero.
        asinTable[mirrored] = static_cast<float>(-angle);
        asinTable[i] = static_cast<float>(angle);
        acosTable[mirrored] = static_cast<float>(right_angle + angle);
        acosTable[i] = static_cast<float>(right_angle - angle);
    }
}

double arctangent_argument(std::int32_t steps_from_zero) {
    return static_cast<float>(steps_from_zero / 50000.0);
}

// The entries of `first` to `last` steps from zero, and their mirror images below zero.
//
// By the addition theorem atan(x) = atan(a) + atan(t) with t = (x - a) / (1 + a x). Within a block
// t is below 0.0052, where the series after three terms is below 2e-17.
void fill_arctangent_block(float* middle, std::int32_t first, std::int32_t last) {
    const double start = arctangent_argument(first);
    const double start_angle = table_functions::atan(start);
    for (std::int32_t i = first; i <= last; ++i) {
        const double x = arctangent_argument(i);
        const double t = (x - start) / (1.0 + start * x);
        const double square = t * t;
        const double angle = start_angle + t * (1.0 - square * (1.0 / 3.0 - square * (1.0 / 5.0)));
        middle[-i] = static_cast<float>(-angle);
        middle[i] = static_cast<float>(angle);
    }
}

void fill_arctangents() {
    constexpr std::int32_t block = 256;
    auto* table = new float[ARCTANGENT_ENTRIES];
    for (std::int32_t first = 0; first <= ARCTANGENT_MIDDLE; first += block)
        fill_arctangent_block(table + ARCTANGENT_MIDDLE, first,
                              std::min(first + block - 1, ARCTANGENT_MIDDLE));
    atanTable = table;
}

// `position` truncated toward zero and clamped to 0 to `last`; 0 for a NaN.
std::int32_t clamped_index(double position, std::int32_t last) {
    if (!(position > 0.0))
        return 0;
    return position < last ? static_cast<std::int32_t>(position) : last;
}

// The heap block goes when the library is unloaded or the process ends.
// Priority 101 runs after all destructors and exit handlers of the library, so a plug-in that is
// shut down there still reads the table.
[[gnu::destructor(101)]] void release_at_unload() {
    __clear_trig_tables();
}

double tangent_at_degrees(double degrees) {
    return tanTable[wrapped_index<TANGENT_ENTRIES>(degrees * 10.0 + 0.5)];
}

} // namespace
} // namespace quillon::trig

namespace quillon {
namespace {

// TWO_PI is a multiple of 2^-21. An angle below this limit is a multiple of that or of a finer
// unit, so subtracting TWO_PI from it is exact, and so is any number of such steps.
template <typename Float>
constexpr auto EXACT_BELOW = static_cast<Float>(std::uint64_t{1}
                                                << (std::numeric_limits<Float>::digits - 21));

template <typename Float>
Float power_of_two_below(Float positive) {
    using Bits =
        std::conditional_t<sizeof(Float) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    constexpr Bits fraction = (Bits{1} << (std::numeric_limits<Float>::digits - 1)) - 1;
    return std::bit_cast<Float>(std::bit_cast<Bits>(positive) & ~fraction);
}

// At least one of the steps `angle -= TWO_PI`, and as many as can be taken at once.
//
// Between two powers of two all angles are multiples of one unit, so every step is rounded to the
// same multiple of it, once a first step has settled a tie. That multiple times a number of steps,
// and the rest, are multiples of the unit too, hence exact. The last step above the lower power of
// two is left to the next call: before rounding it may lead below, where the unit is finer.
template <typename Float>
Float stepped_down(Float angle) {
    const Float floor = power_of_two_below(angle);
    const Float next = angle - TWO_PI;
    if (next < floor)
        return next;
    const Float step = next - (next - TWO_PI);
    const auto steps = static_cast<std::int64_t>((next - floor) / step) - 1;
    return steps > 0 ? next - static_cast<Float>(steps) * step : next;
}

// The rest of a positive angle after subtracting TWO_PI while it is greater than TWO_PI.
template <typename Float>
Float remainder_of_steps(Float angle) {
    if (angle <= TWO_PI)
        return angle;
    if (angle <= 2.0F * TWO_PI)
        return angle - TWO_PI;
    while (angle >= EXACT_BELOW<Float> && angle - TWO_PI != angle)
        angle = stepped_down(angle);
    const Float remainder = std::fmod(angle, static_cast<Float>(TWO_PI));
    return remainder == Float{0} ? TWO_PI : remainder;
}

// From below zero the steps mirror those from above, except the last one, which crosses zero.
template <typename Float>
Float bound(Float angle) {
    return angle < Float{0} ? TWO_PI - remainder_of_steps(-angle) : remainder_of_steps(angle);
}

} // namespace
} // namespace quillon

void __init_trig_tables() {
    if (atanTable != nullptr)
        return;
    fill_forward_tables();
    fill_arc_tables();
    fill_arctangents();
}

void __clear_trig_tables() {
    delete[] atanTable;
    atanTable = nullptr;
}

double cosTD(const double& degrees) {
    return cosTable[circle_index(degrees)];
}

double sinTD(const double& degrees) {
    return sinTable[circle_index(degrees)];
}

double tanTD(const double& degrees) {
    return tangent_at_degrees(degrees);
}

double cosTR(const double& radians) {
    return cosTable[circle_index(to_degrees(radians))];
}

double sinTR(const double& radians) {
    return sinTable[circle_index(to_degrees(radians))];
}

double tanTR(const double& radians) {
    return tangent_at_degrees(to_degrees(radians));
}

float acosT(const double& x) {
    return acosTable[clamped_index((x + 1.0) * 10000.0, ARC_ENTRIES - 1)];
}

float asinT(const double& x) {
    return asinTable[clamped_index((x + 1.0) * 10000.0, ARC_ENTRIES - 1)];
}

float atanT(const double& x) {
    if (atanTable == nullptr)
        return 0.0F;
    // Truncated before the middle is added, so toward zero and not downward.
    const double steps = std::trunc(x * 50000.0);
    return atanTable[clamped_index(steps + ARCTANGENT_MIDDLE, ARCTANGENT_ENTRIES - 1)];
}

void trig_bind(double& radians) {
    radians = bound(radians);
}

void trig_bind_32(float& radians) {
    radians = bound(radians);
}
