// SPDX-License-Identifier: MIT
// Pictures of every kind are in the folder "pictures": PNG of 10 x 9 pixels, as five times two
// pixels in each row, and flat JPEG of 19 x 17.
#include "image_plugin.h"
#include "loaded_library.h"
#include "tests/limited_memory.h" // the plug-in allocates by it too

#include <gmock/gmock.h>

#include <array>
#include <fstream>

#include <sys/stat.h>

using testing::HasSubstr;

namespace {

std::string stored(const std::string& name) {
    return STORED_PICTURES "/" + name;
}

Bytes bytes_of(const std::string& file) {
    const std::string text = text_of(file);
    return {text.begin(), text.end()};
}

void expect_failure(const Loaded& loaded, const std::string& reason) {
    EXPECT_EQ(0, loaded.width);
    EXPECT_EQ(0, loaded.height);
    EXPECT_FALSE(loaded.has_buffer);
    EXPECT_THAT(loaded.error, HasSubstr(reason));
}

} // namespace

TEST(ImageLoad, EveryKindOfPngBecomesRgba) {
    const struct {
        const char* name;
        std::array<std::uint8_t, 8> pixels;
    } cases[] = {
        {"Grey1", {255, 255, 255, 255, 0, 0, 0, 255}},
        {"Grey4Clear", {51, 51, 51, 0, 153, 153, 153, 255}},
        {"Grey8Clear", {7, 7, 7, 0, 99, 99, 99, 255}},
        {"Grey16", {19, 19, 19, 255, 9, 9, 9, 255}},
        {"GA16", {1, 1, 1, 2, 9, 9, 9, 0}},
        {"Palette1", {4, 5, 6, 255, 1, 2, 3, 255}},
        {"Palette4Alpha", {4, 5, 6, 255, 1, 2, 3, 7}},
        {"Palette8Alpha", {4, 5, 6, 255, 1, 2, 3, 7}},
        {"Rgb8Clear", {1, 2, 3, 0, 1, 2, 4, 255}},
        {"Rgb16Clear", {1, 2, 7, 0, 1, 2, 7, 255}},
        {"Rgba8", {9, 8, 7, 6, 5, 4, 3, 2}},
    };

    for (const auto& row : cases)
        // The plain one last: memory that it left could pass for rows that nobody read.
        for (const char* const ending : {"-interlaced.png", ".png"}) {
            SCOPED_TRACE(std::string(row.name) + ending);
            const Loaded loaded = load_image(stored(std::string(row.name) + ending));
            ASSERT_EQ("", loaded.error);
            ASSERT_EQ(10, loaded.width);
            ASSERT_EQ(9, loaded.height);
            for (std::size_t i = 0; i < loaded.rgba.size(); ++i)
                ASSERT_EQ(row.pixels[i % 8], loaded.rgba[i]) << i;
        }
}

TEST(ImageLoad, EveryKindOfJpegBecomesOpaqueRgba) {
    const struct {
        const char* name;
        std::array<int, 3> expected;
    } cases[] = {
        {"Grey", {77, 77, 77}},         {"Colour", {200, 30, 90}},
        {"Progressive", {200, 30, 90}}, {"InksUpsideDown", {160, 80, 40}},
        {"Inks", {160, 80, 40}},        {"InksAsLuma", {160, 80, 40}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Loaded loaded = load_image(stored(std::string(row.name) + ".jpg"));
        ASSERT_EQ("", loaded.error);
        ASSERT_EQ(19u * 17 * 4, loaded.rgba.size());
        for (std::size_t i = 0; i < loaded.rgba.size(); ++i)
            ASSERT_NEAR(i % 4 == 3 ? 255 : row.expected[i % 4], loaded.rgba[i], i % 4 == 3 ? 0 : 3);
    }
}

// What the pixels of a damaged file become is the format's matter; the sanitizers watch the rest.
TEST(ImageLoad, CutShortIsRefusedAndDamagedGivesAWholePictureOrNone) {
    const ScratchFolder folder;
    for (const char* const file : {"Rgba8-interlaced.png", "Colour.jpg"}) {
        const Bytes whole = bytes_of(stored(file));
        ASSERT_EQ("", load_image_bytes(whole).error);
        for (std::size_t position = 0; position < whole.size(); ++position) {
            SCOPED_TRACE(position);
            expect_failure(load_image_bytes({whole.begin(), whole.begin() + position}),
                           "cannot load");
            Bytes damaged = whole;
            damaged[position] ^= 0xff;
            const Loaded loaded = load_image_bytes(damaged);
            EXPECT_EQ(loaded.has_buffer, loaded.error.empty());
        }
    }
}

TEST(ImageLoad, RefusalsSayTheReason) {
    const ScratchFolder folder;
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    std::ofstream("sparse").put('x');
    std::filesystem::resize_file("sparse", std::uintmax_t{1} << 40);

    const struct {
        std::string file;
        const char* reason;
    } cases[] = {
        {stored("text.png"), "neither a PNG nor a JPEG file"},
        {stored("promising.png"), "too short for the size that it promises"},
        {stored("large.png"), "larger than this plug-in reads"},
        {stored("promising.jpg"), "too short for the size that it promises"},
        {stored("many-scans.jpg"), "too many scans"},
        {"nothing", "cannot load 'nothing': No such file"},
        {".", "Is a directory"},
        {"pipe", "not supported"},
        {"sparse", "has more than 268435456 bytes"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        expect_failure(load_image(row.file), row.reason);
    }
}

// Memory ends at every allocation of the plug-in, in a load that goes well and in ones that do not.
TEST(ImageLoad, NoLoadNorSaveThrowsWhereMemoryEnds) {
    const ScratchFolder folder;
    const std::string files[] = {stored("Rgba8.png"), stored("text.png"), "missing"};
    image();
    int refused = 0;
    for (std::size_t granted = 0; granted < 40; ++granted) {
        std::uint8_t pixel[4] = {};
        for (const std::string& file : files) {
            std::uint16_t width = 1;
            std::uint16_t height = 1;
            std::uint8_t* pixels = pixel;
            allocations_left = granted;
            image()->load_bitmap(file.c_str(), &width, &height, &pixels);
            allocations_left = SIZE_MAX;
            refused += pixels == nullptr ? 1 : 0;
            EXPECT_EQ(pixels == nullptr, width == 0 && height == 0);
            EXPECT_EQ(pixels == nullptr, *image()->last_error() != '\0');
            delete[] pixels;
        }
        allocations_left = granted;
        const bool is_saved = image()->save_bitmap("saved.png", 1, 1, pixel);
        allocations_left = SIZE_MAX;
        refused += is_saved ? 0 : 1;
        EXPECT_EQ(is_saved, std::filesystem::remove("saved.png"));
    }
    EXPECT_GT(refused, 2 * 40 + 1);
}
