#include "image_plugin.h"
#include "loaded_library.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>

#include <sys/stat.h>

#include <jpeglib.h>
#include <png.h>

using testing::HasSubstr;

namespace {

// Five times the two pixels of a kind, in nine rows.
constexpr std::uint32_t WIDTH = 10;
constexpr std::uint32_t HEIGHT = 9;

constexpr png_color PALETTE[] = {{1, 2, 3}, {4, 5, 6}};
constexpr std::uint8_t PALETTE_ALPHAS[] = {7}; // the second entry is opaque

struct PngKind {
    const char* name;
    int color_type;
    int bit_depth;
    bool transparency; // a palette with alpha, or the first pixel's colour is see-through
    Bytes samples;     // of the two pixels
    Bytes rgba;
};

const PngKind PNG_KINDS[] = {
    {"Grey1", PNG_COLOR_TYPE_GRAY, 1, false, {1, 0}, {255, 255, 255, 255, 0, 0, 0, 255}},
    {"Grey4Clear", PNG_COLOR_TYPE_GRAY, 4, true, {3, 9}, {51, 51, 51, 0, 153, 153, 153, 255}},
    {"Grey8Clear", PNG_COLOR_TYPE_GRAY, 8, true, {7, 99}, {7, 7, 7, 0, 99, 99, 99, 255}},
    {"Grey16", PNG_COLOR_TYPE_GRAY, 16, false, {18, 255, 9, 0}, {19, 19, 19, 255, 9, 9, 9, 255}},
    {"GA16", PNG_COLOR_TYPE_GA, 16, false, {0, 255, 1, 255, 9, 0, 0, 0}, {1, 1, 1, 2, 9, 9, 9, 0}},
    {"Palette1", PNG_COLOR_TYPE_PALETTE, 1, false, {1, 0}, {4, 5, 6, 255, 1, 2, 3, 255}},
    {"Palette4Alpha", PNG_COLOR_TYPE_PALETTE, 4, true, {1, 0}, {4, 5, 6, 255, 1, 2, 3, 7}},
    {"Palette8Alpha", PNG_COLOR_TYPE_PALETTE, 8, true, {1, 0}, {4, 5, 6, 255, 1, 2, 3, 7}},
    {"Rgb8Clear", PNG_COLOR_TYPE_RGB, 8, true, {1, 2, 3, 1, 2, 4}, {1, 2, 3, 0, 1, 2, 4, 255}},
    {"Rgb16Clear",
     PNG_COLOR_TYPE_RGB,
     16,
     true,
     {0, 255, 1, 255, 7, 0, 0, 255, 1, 255, 7, 1},
     {1, 2, 7, 0, 1, 2, 7, 255}},
    {"Rgba8", PNG_COLOR_TYPE_RGBA, 8, false, {9, 8, 7, 6, 5, 4, 3, 2}, {9, 8, 7, 6, 5, 4, 3, 2}},
};

Bytes repeated(const Bytes& bytes, std::size_t times) {
    Bytes result;
    while (times-- > 0)
        result.insert(result.end(), bytes.begin(), bytes.end());
    return result;
}

void add_transparency(const PngKind& kind, png_structp png, png_infop info) {
    const auto sample = [&](std::size_t i) {
        const Bytes& all = kind.samples;
        return static_cast<png_uint_16>(kind.bit_depth == 16 ? all[2 * i] << 8 | all[2 * i + 1]
                                                             : all[i]);
    };
    png_color_16 clear = {0, sample(0), sample(1), 0, sample(0)};
    if (kind.color_type == PNG_COLOR_TYPE_RGB)
        clear.blue = sample(2);
    png_set_tRNS(png, info, PALETTE_ALPHAS, 1, &clear);
}

// A file that promises so many pixels a side ends behind its header.
Bytes png_file(const PngKind& kind, bool interlaced, std::uint32_t promised_side = 0) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto append = [](png_structp writer, png_bytep data, std::size_t count) {
        auto& target = *static_cast<Bytes*>(png_get_io_ptr(writer));
        target.insert(target.end(), data, data + count);
    };
    const bool whole = promised_side == 0;
    png_set_write_fn(png, &file, append, nullptr);
    png_set_IHDR(png, info, whole ? WIDTH : promised_side, whole ? HEIGHT : promised_side,
                 kind.bit_depth, kind.color_type,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // A gamma that a reader might apply and must not.
    png_set_gAMA(png, info, 1.0);
    if (kind.color_type == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, PALETTE, 2);
    if (kind.transparency)
        add_transparency(kind, png, info);
    Bytes row = repeated(kind.samples, WIDTH / 2);
    std::vector<png_bytep> rows(HEIGHT, row.data());
    png_set_rows(png, info, rows.data());
    if (whole)
        png_write_png(png, info, PNG_TRANSFORM_PACKING, nullptr);
    else
        png_write_info(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes small_png() {
    return png_file(std::end(PNG_KINDS)[-1], true);
}

constexpr std::uint32_t JPEG_WIDTH = 19;
constexpr std::uint32_t JPEG_HEIGHT = 17;

// A flat picture of one colour; `samples` has a byte per channel.
Bytes jpeg_file(J_COLOR_SPACE space, const Bytes& samples,
                const std::function<void(jpeg_compress_struct&)>& configure = {}) {
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &memory, &size);
    codec.image_width = JPEG_WIDTH;
    codec.image_height = JPEG_HEIGHT;
    codec.input_components = static_cast<int>(samples.size());
    codec.in_color_space = space;
    jpeg_set_defaults(&codec);
    if (configure)
        configure(codec);
    jpeg_start_compress(&codec, TRUE);
    Bytes pixels = repeated(samples, JPEG_WIDTH);
    JSAMPROW row = pixels.data();
    while (codec.next_scanline < JPEG_HEIGHT)
        jpeg_write_scanlines(&codec, &row, 1);
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}

Bytes followed_by(Bytes file, std::string_view ending) {
    file.insert(file.end(), ending.begin(), ending.end());
    return file;
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
    for (const PngKind& kind : PNG_KINDS) {
        // The plain one last: memory that it left could pass for rows that nobody read.
        for (const bool interlaced : {true, false}) {
            SCOPED_TRACE(std::string(kind.name) + (interlaced ? " interlaced" : ""));
            const Loaded loaded = load_image_bytes(png_file(kind, interlaced));
            ASSERT_EQ("", loaded.error);
            ASSERT_EQ(WIDTH, loaded.width);
            ASSERT_EQ(HEIGHT, loaded.height);
            EXPECT_EQ(repeated(kind.rgba, WIDTH / 2 * HEIGHT), loaded.rgba);
        }
    }
}

TEST(ImageLoad, EveryKindOfJpegBecomesOpaqueRgba) {
    const ScratchFolder folder;

    using Configure = void (*)(jpeg_compress_struct&);
    constexpr Configure as_it_is = [](jpeg_compress_struct&) {};
    constexpr Configure progressive = [](jpeg_compress_struct& codec) {
        jpeg_simple_progression(&codec);
    };
    constexpr Configure unmarked = [](jpeg_compress_struct& codec) {
        codec.write_Adobe_marker = FALSE;
    };
    constexpr Configure luma_and_chroma = [](jpeg_compress_struct& codec) {
        jpeg_set_colorspace(&codec, JCS_YCCK);
    };

    const struct {
        const char* name;
        J_COLOR_SPACE space;
        Bytes samples;
        Configure configure;
        std::array<int, 3> expected;
    } cases[] = {
        {"Grey", JCS_GRAYSCALE, {77}, as_it_is, {77, 77, 77}},
        {"Colour", JCS_RGB, {200, 30, 90}, as_it_is, {200, 30, 90}},
        {"Progressive", JCS_RGB, {200, 30, 90}, progressive, {200, 30, 90}},
        {"InksUpsideDown", JCS_CMYK, {200, 100, 50, 204}, as_it_is, {160, 80, 40}},
        {"Inks", JCS_CMYK, {55, 155, 205, 51}, unmarked, {160, 80, 40}},
        {"InksAsLuma", JCS_CMYK, {200, 100, 50, 204}, luma_and_chroma, {160, 80, 40}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Loaded loaded = load_image_bytes(jpeg_file(row.space, row.samples, row.configure));
        ASSERT_EQ("", loaded.error);
        ASSERT_EQ(JPEG_WIDTH * JPEG_HEIGHT * 4, loaded.rgba.size());
        for (std::size_t i = 0; i < loaded.rgba.size(); ++i)
            ASSERT_NEAR(i % 4 == 3 ? 255 : row.expected[i % 4], loaded.rgba[i], i % 4 == 3 ? 0 : 3);
    }
}

// What the pixels of a damaged file become is the format's matter; the sanitizers watch the rest.
TEST(ImageLoad, CutShortIsRefusedAndDamagedGivesAWholePictureOrNone) {
    const ScratchFolder folder;
    for (const Bytes& whole : {small_png(), jpeg_file(JCS_RGB, {90, 120, 40})}) {
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
    Bytes promising_jpeg = jpeg_file(JCS_RGB, {90, 120, 40});
    const Bytes frame = {0xff, 0xc0, 0x00, 0x11, 0x08};
    const auto found =
        std::search(promising_jpeg.begin(), promising_jpeg.end(), frame.begin(), frame.end());
    ASSERT_NE(promising_jpeg.end(), found);
    std::fill_n(found + 5, 4, std::uint8_t{0xf0});

    // Every coefficient on its own, first without its last bit: twice 64 scans.
    std::vector<jpeg_scan_info> scans;
    for (const int refinement : {0, 1})
        for (int coefficient = 0; coefficient < 64; ++coefficient)
            scans.push_back({1, {0}, coefficient, coefficient, refinement, 1 - refinement});
    const auto many_scans = [&scans](jpeg_compress_struct& codec) {
        codec.scan_info = scans.data();
        codec.num_scans = static_cast<int>(scans.size());
    };

    const PngKind& grey1 = PNG_KINDS[0];
    const std::string pixels_follow("\0\0\x40\0IDAT", 8);
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    std::ofstream("sparse").put('x');
    std::filesystem::resize_file("sparse", std::uintmax_t{1} << 40);

    const struct {
        const char* file;
        Bytes bytes; // of the file, unless it is there
        const char* reason;
    } cases[] = {
        {"text", {'h', 'e', 'l', 'l', 'o'}, "neither a PNG nor a JPEG file"},
        {"promising png", followed_by(png_file(grey1, false, 65535), pixels_follow),
         "too short for the size that it promises"},
        {"large png",
         followed_by(png_file(grey1, false, 8200), pixels_follow + std::string(9000, '\0')),
         "larger than this plug-in reads"},
        {"promising jpeg", promising_jpeg, "too short for the size that it promises"},
        {"jpeg of many scans", jpeg_file(JCS_GRAYSCALE, {77}, many_scans), "too many scans"},
        {"nothing", {}, "cannot load 'nothing': No such file"},
        {".", {}, "Is a directory"},
        {"pipe", {}, "not supported"},
        {"sparse", {}, "has more than 268435456 bytes"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.file);
        expect_failure(row.bytes.empty() ? load_image(row.file) : load_image_bytes(row.bytes),
                       row.reason);
    }
}
