#include "image_files.h"
#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <sys/stat.h>

using testing::HasSubstr;

namespace {

constexpr std::uint32_t WIDTH = 11;
constexpr std::uint32_t HEIGHT = 9;

struct PngCase {
    const char* name;
    int color_type;
    int bit_depth;
    bool transparency; // a palette with alpha, or one colour that is see-through
};

const PngCase PNG_CASES[] = {
    {"Grey1", PNG_COLOR_TYPE_GRAY, 1, false},
    {"Grey4WithClearColour", PNG_COLOR_TYPE_GRAY, 4, true},
    {"Grey8WithClearColour", PNG_COLOR_TYPE_GRAY, 8, true},
    {"Grey16", PNG_COLOR_TYPE_GRAY, 16, false},
    {"GreyAlpha16", PNG_COLOR_TYPE_GRAY_ALPHA, 16, false},
    {"Palette1", PNG_COLOR_TYPE_PALETTE, 1, false},
    {"Palette4WithAlpha", PNG_COLOR_TYPE_PALETTE, 4, true},
    {"Palette8WithAlpha", PNG_COLOR_TYPE_PALETTE, 8, true},
    {"Rgb8WithClearColour", PNG_COLOR_TYPE_RGB, 8, true},
    {"Rgb16WithClearColour", PNG_COLOR_TYPE_RGB, 16, true},
    {"Rgba8", PNG_COLOR_TYPE_RGB_ALPHA, 8, false},
};

std::size_t channel_count(int color_type) {
    if (color_type == PNG_COLOR_TYPE_PALETTE)
        return 1;
    return ((color_type & PNG_COLOR_MASK_COLOR) != 0 ? 3 : 1) +
           ((color_type & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
}

unsigned sample_at(const PngCase& kind, std::size_t pixel, std::size_t channel) {
    const auto mixed =
        static_cast<unsigned>((pixel * 7919 + channel * 104729 + 12345) * 2654435761U);
    return (mixed >> 13) & ((1U << kind.bit_depth) - 1);
}

std::uint8_t to_byte(const PngCase& kind, unsigned sample) {
    return static_cast<std::uint8_t>(std::lround(sample * 255.0 / ((1U << kind.bit_depth) - 1)));
}

std::array<std::uint8_t, 4> palette_entry(const PngCase& kind, unsigned index) {
    // Only the first entries have an alpha; the others are opaque.
    const bool has_alpha = kind.transparency && index < 5;
    return {static_cast<std::uint8_t>(index * 3), static_cast<std::uint8_t>(255 - index),
            static_cast<std::uint8_t>(index * 37),
            has_alpha ? static_cast<std::uint8_t>(index * 50) : std::uint8_t{255}};
}

// The pixel as the format defines it, worked out without the library that reads it.
std::array<std::uint8_t, 4> expected_pixel(const PngCase& kind, std::size_t pixel) {
    std::array<unsigned, 4> samples{};
    for (std::size_t channel = 0; channel < channel_count(kind.color_type); ++channel)
        samples[channel] = sample_at(kind, pixel, channel);
    if (kind.color_type == PNG_COLOR_TYPE_PALETTE)
        return palette_entry(kind, samples[0]);

    const bool grey = (kind.color_type & PNG_COLOR_MASK_COLOR) == 0;
    bool clear = kind.transparency;
    for (std::size_t channel = 0; channel < (grey ? 1 : 3); ++channel)
        clear = clear && samples[channel] == sample_at(kind, 0, channel);
    const bool has_alpha = (kind.color_type & PNG_COLOR_MASK_ALPHA) != 0;
    const std::uint8_t opacity = clear ? 0 : 255;
    return {to_byte(kind, samples[0]), to_byte(kind, samples[grey ? 0 : 1]),
            to_byte(kind, samples[grey ? 0 : 2]),
            has_alpha ? to_byte(kind, samples[grey ? 1 : 3]) : opacity};
}

void add_palette(const PngCase& kind, png_structp png, png_infop info) {
    const unsigned count = 1U << kind.bit_depth;
    std::vector<png_color> colors;
    Bytes alphas;
    for (unsigned i = 0; i < count; ++i) {
        const auto [red, green, blue, alpha] = palette_entry(kind, i);
        colors.push_back({red, green, blue});
        alphas.push_back(alpha);
    }
    png_set_PLTE(png, info, colors.data(), static_cast<int>(count));
    if (kind.transparency)
        png_set_tRNS(png, info, alphas.data(), 5, nullptr);
}

void add_clear_color(const PngCase& kind, png_structp png, png_infop info) {
    png_color_16 color{};
    color.gray = static_cast<png_uint_16>(sample_at(kind, 0, 0));
    color.red = color.gray;
    color.green = static_cast<png_uint_16>(sample_at(kind, 0, 1));
    color.blue = static_cast<png_uint_16>(sample_at(kind, 0, 2));
    png_set_tRNS(png, info, nullptr, 0, &color);
}

Bytes file_of(const PngCase& kind, bool interlaced) {
    Bytes rows;
    for (std::size_t pixel = 0; pixel < WIDTH * HEIGHT; ++pixel)
        for (std::size_t channel = 0; channel < channel_count(kind.color_type); ++channel) {
            const unsigned sample = sample_at(kind, pixel, channel);
            if (kind.bit_depth == 16)
                rows.push_back(static_cast<std::uint8_t>(sample >> 8));
            rows.push_back(static_cast<std::uint8_t>(sample));
        }
    return png_file({WIDTH, HEIGHT, kind.color_type, kind.bit_depth, interlaced}, rows,
                    [&kind](png_structp png, png_infop info) {
                        // A gamma that a reader might apply and must not.
                        png_set_gAMA(png, info, 1.0);
                        if (kind.color_type == PNG_COLOR_TYPE_PALETTE)
                            add_palette(kind, png, info);
                        else if (kind.transparency)
                            add_clear_color(kind, png, info);
                    });
}

Bytes small_png() {
    return file_of({"", PNG_COLOR_TYPE_RGB_ALPHA, 8, false}, true);
}

Bytes small_jpeg() {
    return jpeg_file(19, 17, JCS_RGB, {90, 120, 40});
}

void expect_failure(const Loaded& loaded, const std::string& reason) {
    EXPECT_EQ(0, loaded.width);
    EXPECT_EQ(0, loaded.height);
    EXPECT_FALSE(loaded.has_buffer);
    EXPECT_THAT(loaded.error, HasSubstr(reason));
}

} // namespace

TEST(ImageLoad, EveryKindOfPngBecomesRgba) {
    const ScratchFolder folder;
    for (const PngCase& kind : PNG_CASES) {
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(std::string(kind.name) + (interlaced ? " interlaced" : ""));
            const Loaded loaded = load_image_bytes(file_of(kind, interlaced));
            ASSERT_EQ("", loaded.error);
            ASSERT_EQ(WIDTH, loaded.width);
            ASSERT_EQ(HEIGHT, loaded.height);
            Bytes expected;
            for (std::size_t pixel = 0; pixel < WIDTH * HEIGHT; ++pixel)
                for (const std::uint8_t byte : expected_pixel(kind, pixel))
                    expected.push_back(byte);
            EXPECT_EQ(expected, loaded.rgba);
        }
    }
}

TEST(ImageLoad, EveryKindOfJpegBecomesOpaqueRgba) {
    const ScratchFolder folder;

    const struct {
        const char* name;
        J_COLOR_SPACE space;
        Bytes samples;
        std::function<void(jpeg_compress_struct&)> configure;
        std::array<int, 3> expected;
    } cases[] = {
        {"Grey", JCS_GRAYSCALE, {77}, {}, {77, 77, 77}},
        {"Colour", JCS_RGB, {200, 30, 90}, {}, {200, 30, 90}},
        {"Progressive",
         JCS_RGB,
         {200, 30, 90},
         [](jpeg_compress_struct& codec) { jpeg_simple_progression(&codec); },
         {200, 30, 90}},
        {"InksUpsideDown", JCS_CMYK, {200, 100, 50, 204}, {}, {160, 80, 40}},
        {"Inks",
         JCS_CMYK,
         {55, 155, 205, 51},
         [](jpeg_compress_struct& codec) { codec.write_Adobe_marker = FALSE; },
         {160, 80, 40}},
        {"InksAsLumaAndChroma",
         JCS_CMYK,
         {200, 100, 50, 204},
         [](jpeg_compress_struct& codec) { jpeg_set_colorspace(&codec, JCS_YCCK); },
         {160, 80, 40}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Loaded loaded =
            load_image_bytes(jpeg_file(19, 17, row.space, row.samples, row.configure));
        ASSERT_EQ("", loaded.error);
        ASSERT_EQ(19u * 17 * 4, loaded.rgba.size());
        for (std::size_t i = 0; i < loaded.rgba.size(); ++i)
            ASSERT_NEAR(i % 4 == 3 ? 255 : row.expected[i % 4], loaded.rgba[i], i % 4 == 3 ? 0 : 3);
    }
}

// What the pixels of a damaged file become is the format's matter; the sanitizers watch the rest.
TEST(ImageLoad, CutShortIsRefusedAndDamagedGivesAWholePictureOrNone) {
    const ScratchFolder folder;
    for (const Bytes& whole : {small_png(), small_jpeg()}) {
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

TEST(ImageLoad, RefusalsTellTheReason) {
    const ScratchFolder folder;
    Bytes promising_jpeg = small_jpeg();
    const Bytes frame = {0xff, 0xc0, 0x00, 0x11, 0x08};
    const auto found =
        std::search(promising_jpeg.begin(), promising_jpeg.end(), frame.begin(), frame.end());
    ASSERT_NE(promising_jpeg.end(), found);
    std::fill_n(found + 5, 4, std::uint8_t{0xf0});

    Bytes promising_png = png_file({65535, 65535, PNG_COLOR_TYPE_RGB, 16, false}, {});
    for (const char letter : {'\0', '\0', '\0', '\x10', 'I', 'D', 'A', 'T'})
        promising_png.push_back(static_cast<std::uint8_t>(letter));

    // Every coefficient on its own, first without its last bit: twice 64 scans.
    std::vector<jpeg_scan_info> scans;
    for (const int refinement : {0, 1})
        for (int coefficient = 0; coefficient < 64; ++coefficient)
            scans.push_back({1, {0}, coefficient, coefficient, refinement, 1 - refinement});
    const auto many_scans = [&scans](jpeg_compress_struct& codec) {
        codec.scan_info = scans.data();
        codec.num_scans = static_cast<int>(scans.size());
    };

    const struct {
        const char* name;
        Bytes file;
        const char* reason;
    } cases[] = {
        {"Text", {'h', 'e', 'l', 'l', 'o'}, "neither a PNG nor a JPEG file"},
        {"PngThatPromisesMore", promising_png, "too short for the size that it promises"},
        {"PngWithMorePixelsThanTheLimit",
         png_file({8200, 8200, PNG_COLOR_TYPE_GRAY, 1, false}, Bytes(8200 * 8200)),
         "larger than this plug-in reads"},
        {"JpegThatPromisesMore", promising_jpeg, "too short for the size that it promises"},
        {"JpegWithTooManyScans", jpeg_file(19, 17, JCS_GRAYSCALE, {77}, many_scans),
         "too many scans"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        expect_failure(load_image_bytes(row.file), row.reason);
    }
}

TEST(ImageLoad, WhatIsNoReadableFileIsRefused) {
    const ScratchFolder folder;
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    std::ofstream("sparse").put('x');
    std::filesystem::resize_file("sparse", std::uintmax_t{1} << 40);

    const struct {
        const char* file;
        const char* reason;
    } cases[] = {{"nothing", "cannot load 'nothing': No such file"},
                 {".", "Is a directory"},
                 {"pipe", "not supported"},
                 {"sparse", "has more than 268435456 bytes"}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        expect_failure(load_image(row.file), row.reason);
    }
}
