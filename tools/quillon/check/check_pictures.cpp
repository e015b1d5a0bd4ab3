// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "platform.h"
#include "plugins/contracts/pictures.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>

namespace tool {
namespace {

constexpr const char* SUBJECT = "GRAPHICS";
constexpr std::uint16_t WIDTH = 5;
constexpr std::uint16_t HEIGHT = 3;

// Names are UTF-8 on every system.
constexpr const char* SAVED = "saved \u00E4\u20AC.png";

using Pixels = std::array<std::uint8_t, std::size_t{WIDTH} * HEIGHT * 4>;

// No two neighbours are alike, and alpha varies too.
Pixels test_pixels() {
    Pixels pixels;
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<std::uint8_t>(7 + 4 * i);
    return pixels;
}

struct Loaded {
    std::uint16_t width = 9;
    std::uint16_t height = 9;
    std::unique_ptr<std::uint8_t[]> pixels;
};

Loaded load(const quillon::Pictures& pictures, const char* file) {
    static std::uint8_t untouched = 0;
    Loaded loaded;
    std::uint8_t* pixels = &untouched;
    pictures.load_bitmap(file, &loaded.width, &loaded.height, &pixels);
    expect(pixels != &untouched,
           std::string("load_bitmap of ") + file + " leaves the buffer unset");
    loaded.pixels.reset(pixels);
    return loaded;
}

void expect_no_load(const quillon::Pictures& pictures, const char* file) {
    const Loaded loaded = load(pictures, file);
    const std::string call = std::string("load_bitmap of ") + file;
    expect_failure(pictures, loaded.pixels == nullptr, call);
    expect(loaded.width == 0 && loaded.height == 0, call + " leaves a size other than 0 x 0");
}

} // namespace

void check_pictures(const quillon::Pictures& pictures) {
    check(SUBJECT, "says why a picture does not load", [&] {
        expect_no_load(pictures, "missing.png");
        std::ofstream("text.png") << "no picture";
        expect_no_load(pictures, "text.png");
    });
    check(SUBJECT, "loads the pixels that it saved, for the caller to delete", [&] {
        Pixels pixels = test_pixels();
        expect_success(pictures, pictures.save_bitmap(SAVED, WIDTH, HEIGHT, pixels.data()),
                       std::string("save_bitmap of ") + SAVED);
        expect(std::filesystem::exists(platform::to_path(SAVED)), "the file has another name");
        const Loaded loaded = load(pictures, SAVED);
        expect_success(pictures, loaded.pixels != nullptr, std::string("load_bitmap of ") + SAVED);
        expect(loaded.width == WIDTH && loaded.height == HEIGHT, "the size is another one");
        expect(std::equal(pixels.begin(), pixels.end(), loaded.pixels.get()),
               "the pixels are others");
    });
    check(SUBJECT, "saves a JPEG under the name of one", [&] {
        Pixels pixels = test_pixels();
        expect_success(pictures, pictures.save_bitmap("saved.JPG", WIDTH, HEIGHT, pixels.data()),
                       "save_bitmap of saved.JPG");
        std::ifstream file("saved.JPG", std::ios::binary);
        expect(file.get() == 0xFF && file.get() == 0xD8, "the file does not begin as a JPEG does");
    });
    check(SUBJECT, "says why a picture is not saved, and leaves no file", [&] {
        Pixels pixels = test_pixels();
        expect_failure(pictures,
                       !pictures.save_bitmap("no/folder.png", WIDTH, HEIGHT, pixels.data()),
                       "save_bitmap into a missing folder");
        expect_failure(pictures, !pictures.save_bitmap("empty.png", 0, HEIGHT, pixels.data()),
                       "save_bitmap of 0 pixels");
        expect(!std::filesystem::exists("empty.png"), "a file of 0 pixels is left");
    });
}

} // namespace tool
