#include "bench/appearance/plain_filters.h"
#include "quillon/appearance/bitmap.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/filters.h"
#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"
#include "tests/appearance/expect_color.h"
#include "tests/appearance/guarded_bitmap.h"

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

TEST(Bitmap, InitGivesOpaqueBlack) {
    uint8_t* pixels = nullptr;
    __cBitmap_init(2, 2, pixels);
    const std::unique_ptr<uint8_t[]> owner(pixels);
    EXPECT_EQ((Bytes{0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255}),
              Bytes(pixels, pixels + 16));
}

TEST(Bitmap, InitOfNothingGivesAnEmptyBlock) {
    for (const int16_t size : {int16_t{0}, int16_t{-1}, std::numeric_limits<int16_t>::min()}) {
        uint8_t* pixels = nullptr;
        __cBitmap_init(size, size, pixels);
        EXPECT_NE(nullptr, pixels);
        delete[] pixels;
    }
}

TEST(Bitmap, SetPixelTruncatesAndWraps) {
    struct Row {
        float component;
        int byte;
    };

    constexpr float HUGE_COMPONENT = 3e38F;
    for (const Row& row : {Row{0.5F, 127},
                           {1, 255},
                           {0, 0},
                           {1.5F, 126},
                           {-0.5F, 129},
                           {8421504.0F, 128},
                           {8421505.0F, 0},
                           {HUGE_COMPONENT, 0},
                           {-HUGE_COMPONENT, 0},
                           {std::numeric_limits<float>::quiet_NaN(), 0}}) {
        Bytes pixels(8, 7);
        __cBitmap_set_pixel(cColor(row.component, 1, 0, row.component), pixels.data(), 1);
        EXPECT_THAT(pixels, ElementsAre(7, 7, 7, 7, row.byte, 255, 0, row.byte)) << row.component;
    }
}

TEST(Bitmap, GetPixelReadsAllFourBytes) {
    const Bytes pixels{1, 2, 3, 4, 127, 255, 0, 51};
    cColor color = quillon::WHITE;
    __cBitmap_get_pixel(color, pixels.data(), 1);
    expect_color(color, 127 / 255.0F, 1, 0, 0.2F);
}

TEST(Bitmap, SetToColorFillsTheCountedPixels) {
    for (const int32_t count : {1, 15, 16, 17, 100}) {
        GuardedBitmap bitmap(static_cast<std::size_t>(count) * 4,
                             GuardedBitmap::Place::AT_THE_BACK);
        __cBitmap_set_to_color(cColor(0.5F, 1, 0, 2), bitmap.pixels(), count);
        const Bytes bytes = bitmap.bytes();
        for (std::size_t i = 0; i < bytes.size(); i += 4)
            EXPECT_THAT(Bytes(bytes.begin() + i, bytes.begin() + i + 4),
                        ElementsAre(127, 255, 0, 254));
        EXPECT_TRUE(bitmap.is_margin_clean());
    }
    __cBitmap_set_to_color(quillon::RED, nullptr, 0);
    __cBitmap_set_to_color(quillon::RED, nullptr, -5);
}

TEST(Bitmap, AverageDropsTheRemainderOfEachRow) {
    cColor average = quillon::RED;
    __cBitmap_get_average_color(average, Bytes{0, 255, 4, 0, 1, 255, 5, 9}.data(), 2, 1);
    expect_color(average, 0, 1, 4 / 255.0F, 1);
}

TEST(Bitmap, AverageOfNothingIsBlack) {
    for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {-1, 2}, {2, -1}, {0, 0}}) {
        cColor average = quillon::RED;
        __cBitmap_get_average_color(average, nullptr, width, height);
        expect_color(average, 0, 0, 0, 1);
    }
}

TEST(Bitmap, AverageEqualsThePlainReading) {
    std::mt19937 generator(5);
    for (const auto& [width, height] :
         {std::pair{1, 1}, {1, 90}, {255, 3}, {256, 2}, {257, 5}, {1031, 7}}) {
        GuardedBitmap bitmap(static_cast<std::size_t>(width * height * 4),
                             GuardedBitmap::Place::AT_THE_BACK);
        Bytes bytes = bitmap.bytes();
        for (const bool is_white : {true, false}) {
            for (uint8_t& byte : bytes)
                byte = is_white ? 255 : static_cast<uint8_t>(generator());
            bitmap.set(bytes);
            cColor average = quillon::RED;
            cColor expected = quillon::RED;
            __cBitmap_get_average_color(average, bitmap.pixels(), width, height);
            plain::average_color(expected, bytes.data(), width, height);
            expect_color(average, expected.r, expected.g, expected.b, expected.a);
        }
    }
}

// 4 GiB of address space, of which the tests touch the last pages.
TEST(Bitmap, TheLargestSizesDoNotOverflow) {
    constexpr int32_t SIZE = 32767;
    constexpr std::size_t LAST = std::size_t{SIZE} * SIZE - 1;
    const GuardedBitmap bitmap((LAST + 1) * 4, GuardedBitmap::Place::AT_THE_BACK);
    uint8_t* last = bitmap.pixels() + LAST * 4;

    __cBitmap_set_pixel(quillon::WHITE, bitmap.pixels(), static_cast<int32_t>(LAST));
    EXPECT_THAT(Bytes(last, last + 4), ElementsAre(255, 255, 255, 255));
    cColor color = quillon::BLACK;
    __cBitmap_get_pixel(color, bitmap.pixels(), static_cast<int32_t>(LAST));
    expect_color(color, 1, 1, 1, 1);

    std::fill_n(last, 4, uint8_t{0});
    __cBitmap_gauss_brush(quillon::WHITE, bitmap.pixels(), SIZE - 1, SIZE - 1, SIZE, SIZE, 0, 0);
    EXPECT_THAT(Bytes(last - 4, last + 4), ElementsAre(0, 0, 0, 0, 255, 255, 255, 255));
}

namespace {

struct Call {
    std::string name;
    std::vector<void*> arguments;
    unsigned width = 0;
    unsigned height = 0;
};

Call last_call;

void record_load(const char* name, void* width, void* height, void* pixels) {
    last_call = {name, {width, height, pixels}};
}

bool record_save(const char* name, std::uint16_t width, std::uint16_t height, uint8_t* pixels) {
    last_call = {name, {pixels}, width, height};
    return true;
}

// Connects a table of two entries for as long as it lives.
class ConnectedGraphics {
public:
    ConnectedGraphics() {
        table_.load_bitmap = record_load;
        table_.save_bitmap = record_save;
        __mGraphics_instance()->interface = reinterpret_cast<void**>(&table_);
    }

    ConnectedGraphics(const ConnectedGraphics&) = delete;
    ConnectedGraphics& operator=(const ConnectedGraphics&) = delete;

    ~ConnectedGraphics() { __mGraphics_instance()->interface = nullptr; }

private:
    quillon::GraphicsTable table_{};
};

} // namespace

TEST(Bitmap, LoadAndSaveHandTheirArgumentsOn) {
    const ConnectedGraphics graphics;
    int32_t width = 1;
    int32_t height = 2;
    uint8_t pixel[4] = {};
    __cBitmap_load("in.png", &width, &height, pixel);
    EXPECT_EQ("in.png", last_call.name);
    EXPECT_THAT(last_call.arguments, ElementsAre(&width, &height, pixel));

    EXPECT_TRUE(__cBitmap_save("out.png", 65535, 40000, pixel));
    EXPECT_EQ("out.png", last_call.name);
    EXPECT_THAT(last_call.arguments, ElementsAre(pixel));
    EXPECT_EQ(65535U, last_call.width);
    EXPECT_EQ(40000U, last_call.height);
}

TEST(Bitmap, LoadAndSaveWithoutAPluginDoNothing) {
    int32_t width = 1;
    __cBitmap_load("in.png", &width, nullptr, nullptr);
    EXPECT_EQ(1, width);
    EXPECT_FALSE(__cBitmap_save("out.png", 1, 1, nullptr));
}
