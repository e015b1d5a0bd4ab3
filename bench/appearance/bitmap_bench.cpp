// SPDX-License-Identifier: MIT
// The bitmap filters on 2048 x 2048 RGBA, beside what bounds them: a pass over the same bytes, the
// plain reading of the same filter, and another library's scaling of the same picture.
#include "quillon/appearance/bitmap.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/filters.h"
#include "quillon/comfort.h"
#include "tests/reference/filters.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>
#include <vector>

#include <malloc.h>
#include <unistd.h>

#if defined(QUILLON_BENCH_OPENCV)
    #include <opencv2/core.hpp>
#endif

namespace {

using quillon::cColor;
using std::int32_t;
using std::uint8_t;

constexpr int32_t SIZE = 2048;
constexpr int32_t COUNT = SIZE * SIZE;

std::vector<uint8_t> random_picture() {
    std::mt19937 generator(1);
    std::vector<uint8_t> bytes(std::size_t{COUNT} * 4);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(generator());
    return bytes;
}

// Runs run(pixels) over one picture; the filters do the same work on whatever it has become.
template <typename Run>
void measure(benchmark::State& state, Run run) {
    std::vector<uint8_t> picture = random_picture();
    for (auto _ : state) {
        run(picture.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{COUNT} * 4);
}

void read_and_write(uint8_t* pixels) {
    for (std::size_t i = 0; i < std::size_t{COUNT} * 4; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, pixels + i, sizeof word);
        word = ~word;
        std::memcpy(pixels + i, &word, sizeof word);
    }
}

void read(const uint8_t* pixels) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < std::size_t{COUNT} * 4; i += 8) {
        std::uint64_t word;
        std::memcpy(&word, pixels + i, sizeof word);
        sum += word;
    }
    benchmark::DoNotOptimize(sum);
}

#define QUILLON_BENCH(name, statement)                                                             \
    BENCHMARK_CAPTURE(measure, name, [](uint8_t* pixels) {                                         \
        statement;                                                                                 \
    })->Unit(benchmark::kMillisecond)

QUILLON_BENCH(pass_reading_and_writing, read_and_write(pixels));
QUILLON_BENCH(set_to_color, __cBitmap_set_to_color(quillon::RED, pixels, COUNT));
QUILLON_BENCH(color_key_mask, __cBitmap_color_key_mask(quillon::RED, pixels, COUNT));
QUILLON_BENCH(alpha_mask, __cBitmap_alpha_mask(pixels, COUNT));
QUILLON_BENCH(saturate_by_channel, __cBitmap_monochrome_saturate_by_channel(1, pixels, COUNT));
QUILLON_BENCH(darken, __cBitmap_darken(3, pixels, COUNT));
QUILLON_BENCH(brighten, __cBitmap_brighten(3, pixels, COUNT));
QUILLON_BENCH(multiply, __cBitmap_multiply(1.25F, pixels, COUNT));
QUILLON_BENCH(multiply_rounding_case, __cBitmap_multiply(1.05F, pixels, COUNT));
QUILLON_BENCH(multiply_plain, plain::multiply(1.25F, pixels, COUNT));

QUILLON_BENCH(pass_reading, read(pixels));
QUILLON_BENCH(average_color, cColor out(0, 0, 0, 0);
              __cBitmap_get_average_color(out, pixels, SIZE, SIZE); benchmark::DoNotOptimize(out));

QUILLON_BENCH(normal_map, __cBitmap_bump_map_to_normal_map(pixels, SIZE, SIZE, 2));
QUILLON_BENCH(normal_map_plain, plain::normal_map(pixels, SIZE, SIZE, 2));

QUILLON_BENCH(gauss_brush, __cBitmap_gauss_brush(cColor(0.01F, 0.02F, 0.03F, 0), pixels, 1000, 1000,
                                                 SIZE, SIZE, 64, 24));
QUILLON_BENCH(gauss_brush_plain, plain::gauss_brush(cColor(0.01F, 0.02F, 0.03F, 0), pixels, 1000,
                                                    1000, SIZE, SIZE, 64, 24));

// Makes and frees a picture, whose pages are new each time.
template <typename Make>
void make_picture(benchmark::State& state, Make make) {
    // Fixed, so that the allocator always asks the system for pages and never keeps any.
    mallopt(M_MMAP_THRESHOLD, 1 << 17);
    for (auto _ : state) {
        const quillon::Pixels pixels = make();
        benchmark::DoNotOptimize(pixels.get());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{COUNT} * 4);
}

quillon::Pixels touched_pages() {
    quillon::Pixels pixels(new uint8_t[std::size_t{COUNT} * 4]);
    const auto step = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    for (std::size_t i = 0; i < std::size_t{COUNT} * 4; i += step)
        pixels[i] = 1;
    return pixels;
}

quillon::Pixels plain_picture() {
    quillon::Pixels pixels(new uint8_t[std::size_t{COUNT} * 4]);
    const uint8_t black[] = {0, 0, 0, 255};
    for (std::size_t i = 0; i < std::size_t{COUNT} * 4; i += sizeof black)
        std::memcpy(&pixels[i], black, sizeof black);
    return pixels;
}

quillon::Pixels new_picture() {
    return quillon::make_bitmap(SIZE, SIZE);
}

BENCHMARK_CAPTURE(make_picture, touch, touched_pages)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(make_picture, plain, plain_picture)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(make_picture, quillon, new_picture)->Unit(benchmark::kMillisecond);

#if defined(QUILLON_BENCH_OPENCV)

// Scales the colours and keeps alpha, as __cBitmap_multiply does.
QUILLON_BENCH(opencv_multiply, cv::setNumThreads(1); cv::Mat picture(SIZE, SIZE, CV_8UC4, pixels);
              cv::multiply(picture, cv::Scalar(1.25, 1.25, 1.25, 1), picture));
// Scales all four channels.
QUILLON_BENCH(opencv_convert_to, cv::setNumThreads(1); cv::Mat picture(SIZE, SIZE, CV_8UC4, pixels);
              picture.convertTo(picture, -1, 1.25));

#endif

} // namespace
