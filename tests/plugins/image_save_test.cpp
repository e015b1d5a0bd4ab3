// SPDX-License-Identifier: MIT
#include "image_plugin.h"
#include "loaded_library.h"

#include <gmock/gmock.h>

#include <fstream>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr std::uint16_t WIDTH = 37;
constexpr std::uint16_t HEIGHT = 23;

// Soft colours under every alpha there is.
Bytes test_picture() {
    Bytes pixels;
    for (unsigned y = 0; y < HEIGHT; ++y)
        for (unsigned x = 0; x < WIDTH; ++x)
            for (const unsigned value : {x * 5, 200 - y * 4, x * 3 + y * 2, x * 7 + y * 11})
                pixels.push_back(static_cast<std::uint8_t>(value));
    return pixels;
}

bool save(const char* file, std::uint16_t width, std::uint16_t height, Bytes pixels) {
    return image()->save_bitmap(file, width, height, pixels.data());
}

} // namespace

TEST(ImageSave, TheExtensionDecidesWhatComesBack) {
    const ScratchFolder folder;
    const Bytes pixels = test_picture();

    const struct {
        const char* file;
        int start;
        int color_error;
        bool keeps_alpha;
    } cases[] = {{"round.png", 0x89, 0, true},
                 {"no_extension", 0x89, 0, true},
                 {"picture.jpg.tga", 0x89, 0, true},
                 {"a.jpg", 0xff, 8, false},
                 {"b.JPEG", 0xff, 8, false}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        ASSERT_TRUE(save(row.file, WIDTH, HEIGHT, pixels)) << image()->last_error();
        EXPECT_EQ(row.start, std::ifstream(row.file).get());
        const Loaded loaded = load_image(row.file);
        EXPECT_EQ(WIDTH, loaded.width);
        ASSERT_EQ(pixels.size(), loaded.rgba.size()) << loaded.error;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            if (i % 4 == 3)
                ASSERT_EQ(row.keeps_alpha ? pixels[i] : 255, loaded.rgba[i]) << i;
            else
                ASSERT_NEAR(pixels[i], loaded.rgba[i], row.color_error) << i;
    }
}

TEST(ImageSave, FailuresGiveFalseAndTheReasonAndLeaveNoFile) {
    const ScratchFolder folder;
    fs::create_symlink("/dev/full", "full.png");
    fs::create_symlink("/dev/full", "full.jpg");
    fs::create_symlink("/proc/self/exe", "running.png");

    const struct {
        const char* file;
        std::uint16_t width;
        const char* reason;
    } cases[] = {{"wide.jpg", 65535, "65500"},
                 {"empty.png", 0, "no pixels"},
                 {"no/such/folder.png", 9, "cannot save 'no/such/folder.png': No such file"},
                 {"full.png", 9, "No space left on device"},
                 {"full.jpg", 9, "JPEG: Output file write error"},
                 {"running.png", 9, "Text file busy"}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        EXPECT_FALSE(save(row.file, row.width, 1, Bytes(std::size_t{row.width} * 4)));
        EXPECT_THAT(image()->last_error(), HasSubstr(row.reason));
        // What could not be opened for writing stays.
        EXPECT_EQ(row.file == std::string("running.png"), fs::is_regular_file(row.file));
    }
    EXPECT_TRUE(fs::exists("/dev/full"));
    EXPECT_FALSE(image()->save_bitmap("null.png", 5, 5, nullptr));
}
