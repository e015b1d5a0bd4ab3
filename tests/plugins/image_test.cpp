// SPDX-License-Identifier: MIT
// Pictures of every kind are in the folder "pictures": PNG of 10 x 9 pixels, as five times two
// pixels in each row, and flat JPEG of 19 x 17.
#include "loaded_library.h"
#include "loaded_plugin.h"
#include "plugins/contracts/pictures.h"
#include "tests/limited_memory.h" // the plug-in allocates by it too

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Loaded {
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    Bytes rgba;
    bool has_buffer = true;
    std::string error;
};

const LoadedPlugin<quillon::Pictures>& image() {
    static const LoadedPlugin<quillon::Pictures> plugin(IMAGE_FILE, "connect_graphics_interface",
                                                        {});
    return plugin;
}

Loaded load_image(const std::string& file) {
    Loaded loaded;
    std::uint8_t untouched = 0;
    std::uint8_t* pixels = &untouched;
    image()->load_bitmap(file.c_str(), &loaded.width, &loaded.height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    loaded.has_buffer = pixels != nullptr;
    if (loaded.has_buffer)
        loaded.rgba.assign(pixels, pixels + std::size_t{loaded.width} * loaded.height * 4);
    loaded.error = image()->last_error();
    return loaded;
}

void write_file(const char* name, const Bytes& bytes) {
    // Some file systems wait for the disk when a file is truncated and written again.
    std::filesystem::remove(name);
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
}

Loaded load_image_bytes(const Bytes& bytes) {
    write_file("bytes", bytes);
    return load_image("bytes");
}

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
