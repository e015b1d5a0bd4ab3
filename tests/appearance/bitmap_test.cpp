// SPDX-License-Identifier: MIT
#include "quillon/appearance/bitmap.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/filters.h"
#include "tests/appearance/expect_color.h"
#include "tests/appearance/guarded_bitmap.h"
#include "tests/reference/filters.h"

#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <random>

using quillon::cColor;
using std::int16_t;
using std::int32_t;
using std::uint8_t;
using testing::ElementsAre;
using Bytes = std::vector<uint8_t>;
using Place = GuardedBitmap::Place;

TEST(Bitmap, InitGivesOpaqueBlackOrAnEmptyBlock) {
    constexpr int16_t least = std::numeric_limits<int16_t>::min();
    for (const auto& [width, height, count] : {std::tuple{int16_t{3}, int16_t{1}, 3},
                                               {1, 2, 2},
                                               {0, 4, 0},
                                               {5, 0, 0},
                                               {least, least, 0}}) {
        uint8_t* pixels = nullptr;
        __cBitmap_init(width, height, pixels);
        ASSERT_NE(nullptr, pixels) << width << " x " << height;
        const std::unique_ptr<uint8_t[]> owner(pixels); // its end is watched
        for (int i = 0; i < count; ++i)
            EXPECT_EQ((Bytes{0, 0, 0, 255}), Bytes(pixels + 4 * i, pixels + 4 * i + 4));
    }
}

TEST(Bitmap, PixelsAreWrittenAndReadByNumber) {
    Bytes pixels(8, 7);
    __cBitmap_set_pixel(cColor(0.5F, 1.5F, -0.5F, 3e38F), pixels.data(), 1);
    EXPECT_THAT(pixels, ElementsAre(7, 7, 7, 7, 127, 126, 129, 0));
    pixels[7] = 51;
    cColor color = quillon::WHITE;
    __cBitmap_get_pixel(color, pixels.data(), 1);
    expect_color(color, {127 / 255.0F, 126 / 255.0F, 129 / 255.0F, 0.2F});
}

TEST(Bitmap, AverageEqualsThePlainReading) {
    std::mt19937 generator(5);
    for (const auto& [width, height] :
         {std::pair{1, 1}, {1, 90}, {255, 3}, {256, 2}, {257, 5}, {1031, 7}}) {
        GuardedBitmap bitmap(static_cast<std::size_t>(width * height * 4), Place::AtTheBack);
        Bytes bytes = bitmap.bytes();
        for (const bool is_white : {true, false}) {
            for (uint8_t& byte : bytes)
                byte = is_white ? 255 : static_cast<uint8_t>(generator());
            bitmap.set(bytes);
            cColor average = quillon::RED;
            cColor expected = quillon::RED;
            __cBitmap_get_average_color(average, bitmap.pixels(), width, height);
            plain::average_color(expected, bytes.data(), width, height);
            expect_color(average, expected);
        }
    }
    for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {-1, 2}, {2, -1}}) {
        cColor average = quillon::RED;
        __cBitmap_get_average_color(average, nullptr, width, height);
        expect_color(average, {0, 0, 0, 1});
    }
}

// 4 GiB of address space, of which the tests touch the last pages.
TEST(Bitmap, TheLargestSizesDoNotOverflow) {
    if (sizeof(void*) != 8)
        GTEST_SKIP() << "more than a 32-bit address space";
    constexpr int32_t size = 32767;
    constexpr std::size_t last_index = std::size_t{size} * size - 1;
    const GuardedBitmap bitmap((last_index + 1) * 4, Place::AtTheBack);
    uint8_t* last = bitmap.pixels() + last_index * 4;

    __cBitmap_set_pixel(quillon::WHITE, bitmap.pixels(), static_cast<int32_t>(last_index));
    EXPECT_THAT(Bytes(last, last + 4), ElementsAre(255, 255, 255, 255));
    cColor color = quillon::BLACK;
    __cBitmap_get_pixel(color, bitmap.pixels(), static_cast<int32_t>(last_index));
    expect_color(color, {1, 1, 1, 1});

    std::fill_n(last, 4, uint8_t{0});
    __cBitmap_gauss_brush(quillon::WHITE, bitmap.pixels(), size - 1, size - 1, size, size, 0, 0);
    EXPECT_THAT(Bytes(last - 4, last + 4), ElementsAre(0, 0, 0, 0, 255, 255, 255, 255));
}
