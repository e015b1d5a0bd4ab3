// SPDX-License-Identifier: MIT
#include "quillon/appearance/bitmap.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/filters.h"
#include "tests/appearance/guarded_bitmap.h"
#include "tests/reference/filters.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>

using quillon::cColor;
using std::int32_t;
using std::uint8_t;
using testing::ElementsAre;
using Bytes = std::vector<uint8_t>;

namespace {

constexpr int32_t FIRST = std::numeric_limits<int32_t>::min();
constexpr int32_t LAST = std::numeric_limits<int32_t>::max();

Bytes random_bytes(std::size_t size) {
    static std::mt19937 generator(20);
    Bytes bytes(size);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(generator());
    return bytes;
}

// 256 pixels that hold every byte in every channel, in other company each.
Bytes every_byte() {
    Bytes bytes;
    for (int i = 0; i < 256; ++i)
        for (const int byte : {i, 255 - i, i ^ 0x55, i ^ 0xC3})
            bytes.push_back(static_cast<uint8_t>(byte));
    return bytes;
}

using Filter = std::function<void(uint8_t*, int32_t width, int32_t height)>;

struct Case {
    std::string name;
    Filter library;
    Filter plain;
};

// A filter over counted pixels.
template <typename Library, typename Plain, typename Argument>
Case counted(const char* name, Library library, Plain plain, Argument argument) {
    return {name, [=](uint8_t* p, int32_t w, int32_t h) { library(argument, p, w * h); },
            [=](uint8_t* p, int32_t w, int32_t h) { plain(argument, p, w * h); }};
}

Case brush(const char* name, const cColor& color, int32_t x, int32_t y, float radius,
           float deviation) {
    return {name,
            [=](uint8_t* p, int32_t w, int32_t h) {
                __cBitmap_gauss_brush(color, p, x, y, w, h, radius, deviation);
            },
            [=](uint8_t* p, int32_t w, int32_t h) {
                plain::gauss_brush(color, p, x, y, w, h, radius, deviation);
            }};
}

// Against pixels that are set one by one.
Case fill(const cColor& color) {
    const auto set_each = [](const cColor& with, uint8_t* p, int32_t count) {
        for (int32_t i = 0; i < count; ++i)
            __cBitmap_set_pixel(with, p, i);
    };
    return counted("fill", __cBitmap_set_to_color, set_each, color);
}

Case normals(const char* name, float scale) {
    return {
        name,
        [=](uint8_t* p, int32_t w, int32_t h) { __cBitmap_bump_map_to_normal_map(p, w, h, scale); },
        [=](uint8_t* p, int32_t w, int32_t h) { plain::normal_map(p, w, h, scale); }};
}

std::vector<Case> all_filters() {
    const cColor glow(0.3F, -0.2F, 1.5F, 0.01F);
    const cColor wild(NAN, INFINITY, -INFINITY, 3e38F);
    return {
        fill({0.5F, 1, 0, 2}),
        counted("key", __cBitmap_color_key_mask, plain::color_key_mask, quillon::BLACK),
        counted("red", __cBitmap_monochrome_saturate_by_channel, plain::channel_mask, uint8_t{0}),
        counted("green", __cBitmap_monochrome_saturate_by_channel, plain::channel_mask, uint8_t{1}),
        counted("blue", __cBitmap_monochrome_saturate_by_channel, plain::channel_mask, uint8_t{2}),
        {"alpha", [](uint8_t* p, int32_t w, int32_t h) { __cBitmap_alpha_mask(p, w * h); },
         [](uint8_t* p, int32_t w, int32_t h) { plain::channel_mask(3, p, w * h); }},
        counted("multiply", __cBitmap_multiply, plain::multiply, 1.37F),
        counted("darken", __cBitmap_darken, plain::darken, uint8_t{77}),
        counted("brighten", __cBitmap_brighten, plain::brighten, uint8_t{77}),
        brush("soft brush", glow, 9, 3, 4.5F, 6),
        brush("hard brush", glow, 3, 1, 2, 0),
        brush("soft point", glow, 40, 0, 0, 20),
        brush("negative radius and deviation", glow, 9, 3, -4.5F, -6),
        brush("brush without reach", glow, 9, 3, 0.5F, NAN),
        brush("brush of no radius", glow, 9, 3, NAN, 5),
        brush("endless disc", glow, 9, 3, INFINITY, 1),
        brush("endless ring", glow, 9, 3, 1, INFINITY),
        brush("wild colour", wild, 9, 3, 3, 4),
        brush("far to the left", glow, FIRST, 1, 2147483648.0F, 3e4F),
        brush("far below", glow, 1, LAST, 2147483648.0F, 3e4F),
        brush("beside", glow, -5, -5, 4, 3),
        normals("slight normals", 0.01F),
        normals("normals", 2),
        normals("steep normals", -400),
        normals("huge scale", 3e38F),
        normals("endless scale", INFINITY),
        normals("no scale", NAN),
    };
}

void expect_plain(const Case& filter, const Bytes& source, int32_t width, int32_t height = 1,
                  GuardedBitmap::Place place = GuardedBitmap::Place::AtTheBack) {
    GuardedBitmap bitmap(source.size(), place);
    Bytes expected = source;
    bitmap.set(source);
    filter.library(bitmap.pixels(), width, height);
    filter.plain(expected.data(), width, height);
    EXPECT_TRUE(expected == bitmap.bytes()) << filter.name << " at " << width << " x " << height;
    EXPECT_TRUE(bitmap.is_margin_clean());
}

} // namespace

TEST(Filters, EqualThePlainReadingInPlaceAndTouchNothingElse) {
    using Place = GuardedBitmap::Place;
    const std::pair<int32_t, int32_t> sizes[] = {{1, 1},  {1, 9},  {2, 2},   {5, 3},
                                                 {15, 1}, {16, 2}, {17, 3},  {31, 7},
                                                 {1, 67}, {67, 1}, {257, 3}, {130, 20}};
    for (const auto& [width, height] : sizes)
        for (const auto place : {Place::AtTheFront, Place::AtTheBack, Place::AtAnOddAddress}) {
            const Bytes source = random_bytes(static_cast<std::size_t>(width) * height * 4);
            for (const Case& filter : all_filters())
                expect_plain(filter, source, width, height, place);
        }
}

TEST(Filters, LeaveEmptyBitmapsAlone) {
    for (const Case& filter : all_filters())
        for (const int32_t none : {0, -1, FIRST}) {
            filter.library(nullptr, none, 1);
            filter.library(nullptr, 1, none);
        }
}

TEST(Filters, AreExactForAllPairsOfBytes) {
    const Bytes bytes = every_byte();
    for (int i = 0; i < 256; ++i) {
        SCOPED_TRACE(i);
        const auto value = static_cast<uint8_t>(i);
        const float component = quillon::component_from_byte(value);
        const std::array cases{
            counted("darken", __cBitmap_darken, plain::darken, value),
            counted("brighten", __cBitmap_brighten, plain::brighten, value),
            counted("factor", __cBitmap_multiply, plain::multiply, component),
            counted("larger factor", __cBitmap_multiply, plain::multiply, static_cast<float>(i)),
            counted("key red", __cBitmap_color_key_mask, plain::color_key_mask,
                    cColor(component, 0, 0, 0)),
        };
        for (const Case& filter : cases)
            expect_plain(filter, bytes, 256);
    }
}

// A key that differs in one channel must not match, whatever the two alphas are.
TEST(ColorKeyMask, BlackensExactMatchesOnly) {
    Bytes pixels{127, 0, 255, 9, 128, 0, 255, 9, 127, 1, 255, 9, 127, 0, 254, 9, 127, 0, 255, 255};
    __cBitmap_color_key_mask(cColor(0.5F, 0, 1, 0.7F), pixels.data(), 5);
    EXPECT_THAT(pixels, ElementsAre(0, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255,
                                    255, 255, 0, 0, 0, 255));
}

TEST(SaturateByChannel, LeavesTheBitmapAloneWithoutSuchAChannel) {
    Bytes pixels{1, 2, 3, 4};
    for (const int channel : {4, 255})
        __cBitmap_monochrome_saturate_by_channel(static_cast<uint8_t>(channel), pixels.data(), 1);
    EXPECT_THAT(pixels, ElementsAre(1, 2, 3, 4));
}

// Where byte * factor crosses a whole number the fixed-point factor has the least slack.
TEST(Multiply, IsExactAroundEveryQuotientOfBytes) {
    const Bytes bytes = every_byte();
    const auto expect_exact = [&](float factor) {
        SCOPED_TRACE(factor);
        expect_plain(counted("multiply", __cBitmap_multiply, plain::multiply, factor), bytes, 256);
    };
    for (int divisor = 1; divisor < 256; ++divisor)
        for (int dividend = divisor % 7; dividend < 256; dividend += 7) {
            if (std::gcd(dividend, divisor) > 1)
                continue;
            const float quotient = static_cast<float>(dividend) / static_cast<float>(divisor);
            expect_exact(std::nextafter(quotient, -1.0F));
            expect_exact(quotient);
            expect_exact(std::nextafter(quotient, 999.0F));
        }
    std::mt19937 generator(7);
    for (int i = 0; i < 2000; ++i)
        expect_exact(std::bit_cast<float>(static_cast<std::uint32_t>(generator())));
    for (const float factor : {-0.0F, -2.0F, 254.9999F, 1e-45F, 3e38F, INFINITY, NAN})
        expect_exact(factor);
}

// Levels that fall on whole numbers, as ramps and repeated heights make them, are what a shorter
// way of computing them would get wrong first.
TEST(NormalMap, IsExactOnSmoothMaps) {
    constexpr int32_t size = 70;
    for (int variant = 0; variant < 4; ++variant) {
        Bytes map;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                const std::array heights{x * 3, y * 2 + x, (x - 35) * (y - 35) / 8,
                                         (x / 9 + y / 7) * 40};
                for (const int byte :
                     {heights[variant], heights[variant] + variant, heights[variant], 255})
                    map.push_back(static_cast<uint8_t>(byte));
            }
        for (const float scale : {0.0F, 1e-4F, 0.5F, 1.0F, 8.0F, 64.0F, 1e6F})
            expect_plain(normals("smooth", scale), map, size, size);
    }
}

TEST(GaussBrush, EqualsThePlainReadingAnywhere) {
    std::mt19937 generator(3);
    const auto pick = [&](int low, int high) {
        return std::uniform_int_distribution(low, high)(generator);
    };
    for (int i = 0; i < 400; ++i) {
        const int32_t width = pick(1, 70);
        const int32_t height = pick(1, 70);
        const auto fraction = [&] { return static_cast<float>(pick(-500, 1500)) / 1000.0F; };
        const Case filter =
            brush("", cColor(fraction(), fraction(), fraction(), fraction()), pick(-30, 100),
                  pick(-30, 100), static_cast<float>(pick(0, 80)) / 4.0F,
                  static_cast<float>(pick(0, 40)) / 4.0F);
        expect_plain(filter, random_bytes(static_cast<std::size_t>(width) * height * 4), width,
                     height);
    }
}
