// SPDX-License-Identifier: MIT
// Table trigonometry beside the runtime's functions and beside plain versions of the same rules.
#include "quillon/math/physics.h"
#include "quillon/math/trigonometry.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

using quillon::PI;
using quillon::TWO_PI;

namespace {

constexpr int ANGLE_COUNT = 1 << 16;     // too many for a branch predictor
constexpr int DIRECTION_COUNT = 1 << 12; // few enough for the caches

enum Order { shuffled, sorted };

std::vector<double> angles_to(double limit, Order order, int count) {
    std::mt19937 generator(1);
    std::uniform_real_distribution<double> spread(0.0, limit);
    std::vector<double> angles(count);
    for (double& angle : angles)
        angle = spread(generator);
    if (order == sorted)
        std::sort(angles.begin(), angles.end());
    return angles;
}

// The tables filled by a plain loop.
struct PlainTables {
    std::vector<double> cosines = std::vector<double>(72000);
    std::vector<double> sines = std::vector<double>(72000);
    std::vector<double> tangents = std::vector<double>(3600);
    std::vector<float> arccosines = std::vector<float>(20001);
    std::vector<float> arcsines = std::vector<float>(20001);
    std::unique_ptr<float[]> arctangents;

    void fill() {
        for (int i = 0; i < 72000; ++i) {
            cosines[i] = std::cos(i * static_cast<double>(PI) / 36000.0);
            sines[i] = std::sin(i * static_cast<double>(PI) / 36000.0);
        }
        for (int i = 0; i < 3600; ++i)
            tangents[i] = std::tan(i * static_cast<double>(PI) / 1800.0);
        for (int i = 0; i <= 20000; ++i) {
            const double x = static_cast<float>(i / 10000.0 - 1.0);
            arccosines[i] = static_cast<float>(std::acos(x));
            arcsines[i] = static_cast<float>(std::asin(x));
        }
        arctangents.reset(new float[2000001]);
        for (int i = 0; i <= 2000000; ++i) {
            const double x = static_cast<float>((i - 1000000) / 50000.0);
            arctangents[i] = static_cast<float>(std::atan(x));
        }
    }
};

PlainTables& plain_tables() {
    static PlainTables tables;
    return tables;
}

// The look-up by the plain rule: an array for each function, a loop for the wrap, and the radian
// form calling the degree form.
[[gnu::noinline]] double plain_degrees(const std::vector<double>& table, double degrees) {
    const double position = degrees * 200.0 + 0.5;
    int i = static_cast<int>(position);
    while (i < 0)
        i += 72000;
    while (i >= 72000)
        i -= 72000;
    return table[i];
}

[[gnu::noinline]] double plain_radians(const std::vector<double>& table, double radians) {
    return plain_degrees(table, radians * 180.0 * quillon::INV_PI);
}

[[gnu::noinline]] void plain_direction(double angle, double& x, double& y) {
    x = plain_radians(plain_tables().cosines, angle);
    y = plain_radians(plain_tables().sines, angle);
}

template <typename Float>
[[gnu::noinline]] void plain_bind(Float& angle) {
    while (angle < 0)
        angle += TWO_PI;
    while (angle > TWO_PI)
        angle -= TWO_PI;
}

void init_plain(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state)
        plain_tables().fill();
}

void init_library(benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
        __clear_trig_tables();
        __init_trig_tables();
    }
}

double (*const runtime_cos)(double) = std::cos;
double (*const runtime_sin)(double) = std::sin;

template <typename Function>
void each_angle(benchmark::State& state, Function function, Order order) {
    __init_trig_tables();
    const std::vector<double> angles = angles_to(TWO_PI, order, ANGLE_COUNT);
    for ([[maybe_unused]] auto _ : state)
        for (const double& angle : angles)
            benchmark::DoNotOptimize(function(angle));
    state.SetItemsProcessed(state.iterations() * ANGLE_COUNT);
}

void each_direction(benchmark::State& state, void (*function)(double, double&, double&),
                    double limit) {
    __init_trig_tables();
    plain_tables().fill();
    const std::vector<double> angles = angles_to(limit, shuffled, DIRECTION_COUNT);
    double x = 0.0;
    double y = 0.0;
    for ([[maybe_unused]] auto _ : state)
        for (const double angle : angles) {
            function(angle, x, y);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    state.SetItemsProcessed(state.iterations() * DIRECTION_COUNT);
}

void one_angle(benchmark::State& state, double angle) {
    __init_trig_tables();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(angle);
        benchmark::DoNotOptimize(sinTD(angle));
    }
}

template <typename Float>
void one_bind(benchmark::State& state, void (*function)(Float&), Float angle) {
    volatile Float source = angle;
    for ([[maybe_unused]] auto _ : state) {
        Float bound = source;
        function(bound);
        benchmark::DoNotOptimize(bound);
    }
}

} // namespace

BENCHMARK(init_plain)->Unit(benchmark::kMillisecond);
BENCHMARK(init_library)->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(each_angle, cos_shuffled, runtime_cos, shuffled);
BENCHMARK_CAPTURE(each_angle, cosTR_shuffled, cosTR, shuffled);
BENCHMARK_CAPTURE(each_angle, sin_shuffled, runtime_sin, shuffled);
BENCHMARK_CAPTURE(each_angle, sinTR_shuffled, sinTR, shuffled);
BENCHMARK_CAPTURE(each_angle, cos_sorted, runtime_cos, sorted);
BENCHMARK_CAPTURE(each_angle, cosTR_sorted, cosTR, sorted);
BENCHMARK_CAPTURE(each_angle, sin_sorted, runtime_sin, sorted);
BENCHMARK_CAPTURE(each_angle, sinTR_sorted, sinTR, sorted);

BENCHMARK_CAPTURE(each_direction, plain_one_turn, plain_direction, TWO_PI);
BENCHMARK_CAPTURE(each_direction, library_one_turn, __mPhysics_direction_pos, TWO_PI);
BENCHMARK_CAPTURE(each_direction, plain_ten_turns, plain_direction, 10.0 * TWO_PI);
BENCHMARK_CAPTURE(each_direction, library_ten_turns, __mPhysics_direction_pos, 10.0 * TWO_PI);

BENCHMARK_CAPTURE(one_angle, sinTD_100, 100.0);
BENCHMARK_CAPTURE(one_angle, sinTD_1e6, 1e6);

BENCHMARK_CAPTURE(one_bind, plain_1e5, plain_bind<double>, 1e5);
BENCHMARK_CAPTURE(one_bind, trig_bind_1e5, trig_bind, 1e5);
BENCHMARK_CAPTURE(one_bind, plain_32_1e5, plain_bind<float>, 1e5F);
BENCHMARK_CAPTURE(one_bind, trig_bind_32_1e5, trig_bind_32, 1e5F);
BENCHMARK_CAPTURE(one_bind, trig_bind_7, trig_bind, 7.0);
BENCHMARK_CAPTURE(one_bind, plain_7, plain_bind<double>, 7.0);
