// SPDX-License-Identifier: MIT
// Smooth values and nearest parameters of a spline beside a plain version.
#include "bench/math/peers.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

using quillon::cSpline3D;
using quillon::cVector3D;

namespace {

constexpr int POINT_COUNT = 32;

std::mt19937 generator(1);

double random_number() {
    return std::uniform_real_distribution<>(-10.0, 10.0)(generator);
}

cSpline3D random_path(bool closed) {
    cSpline3D s(closed);
    for (int i = 0; i < POINT_COUNT; ++i)
        __cSpline3d_add_control_point(s,
                                      cVector3D(random_number(), random_number(), random_number()));
    return s;
}

template <void (*value)(const cSpline3D&, cVector3D&, double)>
void smooth_value(benchmark::State& state) {
    const cSpline3D s = random_path(state.range(0) != 0);
    std::vector<double> parameters(256);
    for (double& t : parameters)
        t = (random_number() + 10.0) / 20.0 * (POINT_COUNT - 1);
    cVector3D out;
    for (auto _ : state)
        for (const double t : parameters) {
            value(s, out, t);
            benchmark::DoNotOptimize(out);
        }
    state.SetItemsProcessed(state.iterations() * 256);
}

template <double (*closest)(const cSpline3D&, const cVector3D&, double, std::uint32_t)>
void value_closest_to(benchmark::State& state) {
    const cSpline3D s = random_path(true);
    std::vector<cVector3D> targets(64);
    for (cVector3D& target : targets)
        target.set(random_number(), random_number(), random_number());
    for (auto _ : state)
        for (const cVector3D& target : targets)
            benchmark::DoNotOptimize(closest(s, target, 0.001, 10));
    state.SetItemsProcessed(state.iterations() * 64);
}

BENCHMARK_TEMPLATE(smooth_value, __cSpline3d_get_smooth_value)
    ->Name("smooth_value/quillon")
    ->ArgName("closed")
    ->DenseRange(0, 1);
BENCHMARK_TEMPLATE(smooth_value, peers::smooth_value)
    ->Name("smooth_value/plain")
    ->ArgName("closed")
    ->DenseRange(0, 1);
BENCHMARK_TEMPLATE(smooth_value, peers::catmull_rom)
    ->Name("smooth_value/catmull_rom_of_glm")
    ->ArgName("closed")
    ->Arg(0);
BENCHMARK_TEMPLATE(value_closest_to, __cSpline3d_get_value_closest_to)
    ->Name("value_closest_to/quillon");
BENCHMARK_TEMPLATE(value_closest_to, peers::value_closest_to)->Name("value_closest_to/plain");

} // namespace
