#include "image_plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

using testing::HasSubstr;

namespace {

using Bytes = std::vector<std::uint8_t>;

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

bool save(const std::string& file, std::uint16_t width, std::uint16_t height, Bytes pixels) {
    return image_table().save_bitmap(file.c_str(), width, height, pixels.data());
}

} // namespace

TEST(ImageSave, PngComesBackByteForByte) {
    for (const char* name : {"round.png", "no_extension", "other.tga", "picture.jpg.png"}) {
        const std::string file = scratch_file(name);
        ASSERT_TRUE(save(file, WIDTH, HEIGHT, test_picture())) << image_error();
        const Loaded loaded = load_image(file);
        EXPECT_EQ("", loaded.error);
        EXPECT_EQ(WIDTH, loaded.width);
        EXPECT_EQ(HEIGHT, loaded.height);
        EXPECT_EQ(test_picture(), loaded.rgba) << name;
    }
}

TEST(ImageSave, JpegByExtensionKeepsTheColoursAndDropsTheAlpha) {
    const Bytes pixels = test_picture();
    for (const char* name : {"a.jpg", "b.JPEG"}) {
        const std::string file = scratch_file(name);
        ASSERT_TRUE(save(file, WIDTH, HEIGHT, pixels)) << image_error();
        EXPECT_EQ(0xff, bytes_of_file(file)[0]);
        const Loaded loaded = load_image(file);
        ASSERT_EQ(pixels.size(), loaded.rgba.size()) << loaded.error;
        for (std::size_t i = 0; i < pixels.size(); ++i)
            ASSERT_NEAR(i % 4 == 3 ? 255 : pixels[i], loaded.rgba[i], i % 4 == 3 ? 0 : 8) << i;
    }
}

TEST(ImageSave, FailuresGiveFalseAndTheReasonAndLeaveNoFile) {
    const std::string wide = scratch_file("wide.jpg");
    const std::string empty = scratch_file("empty.png");
    const std::string nowhere = scratch_file("no/such/folder.png");
    EXPECT_FALSE(save(wide, 65535, 1, Bytes(65535 * 4)));
    EXPECT_THAT(image_error(), HasSubstr("65500"));
    EXPECT_FALSE(save(empty, 0, 5, {}));
    EXPECT_THAT(image_error(), HasSubstr("no pixels"));
    EXPECT_FALSE(image_table().save_bitmap(empty.c_str(), 5, 5, nullptr));
    EXPECT_FALSE(save(nowhere, WIDTH, HEIGHT, test_picture()));
    EXPECT_THAT(image_error(), HasSubstr("cannot save '" + nowhere + "': No such file"));
    for (const std::string& file : {wide, empty, nowhere})
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
}

TEST(ImageSave, FullDiskIsAFailure) {
    for (const char* extension : {".png", ".jpg"}) {
        const std::string file = scratch_file("full") + extension;
        std::filesystem::create_symlink("/dev/full", file);
        EXPECT_FALSE(save(file, WIDTH, HEIGHT, test_picture()));
        EXPECT_NE("", image_error());
        EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    }
}
