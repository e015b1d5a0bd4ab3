// SPDX-License-Identifier: MIT
#include "codecs.h"

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <png.h>
#include <stdexcept>
#include <string>

namespace quillon::codecs {
namespace {

// One reading or writing of libpng, with what its callbacks need.
struct Session {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::span<const std::uint8_t> unread;
    std::array<char, 128> reason{};
};

// libpng calls this instead of returning, and it must not return either.
[[noreturn]] void on_error(png_structp png, png_const_charp text) {
    auto& reason = static_cast<Session*>(png_get_error_ptr(png))->reason;
    std::snprintf(reason.data(), reason.size(), "PNG: %s", text);
    png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

void on_read(png_structp png, png_bytep target, std::size_t count) {
    auto& unread = static_cast<Session*>(png_get_io_ptr(png))->unread;
    if (count > unread.size())
        png_error(png, "the file is cut short");
    std::memcpy(target, unread.data(), count);
    unread = unread.subspan(count);
}

struct Reader : Session {
    explicit Reader(std::span<const std::uint8_t> file) {
        unread = file;
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, on_error, on_warning);
        info = png != nullptr ? png_create_info_struct(png) : nullptr;
    }

    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct Writer : Session {
    Writer() {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, on_error, on_warning);
        info = png != nullptr ? png_create_info_struct(png) : nullptr;
    }

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    ~Writer() { png_destroy_write_struct(&png, &info); }
};

// Runs a step that libpng may leave by a long jump, so it must hold nothing that needs destroying.
template <typename Step>
void guarded(Session& session, Step step) {
    if (session.info == nullptr)
        throw std::runtime_error("PNG: out of memory");
    if (setjmp(png_jmpbuf(session.png)) != 0)
        throw std::runtime_error(session.reason.data());
    step();
}

void read_header(Reader& reader) {
    guarded(reader, [&reader] {
        png_set_read_fn(reader.png, &reader, on_read);
        // make_picture refuses what is too large, in clearer words.
        png_set_user_limits(reader.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        // Texts, profiles and the like can be large once unpacked, and nothing here reads them.
        png_set_keep_unknown_chunks(reader.png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(reader.png, reader.info);
    });
}

// The bytes of the unpacked, untransformed samples.
std::uint64_t raw_size(const Reader& reader) {
    return std::uint64_t{png_get_rowbytes(reader.png, reader.info)} *
           png_get_image_height(reader.png, reader.info);
}

void ask_for_rgba(Reader& reader) {
    guarded(reader, [&reader] {
        png_set_expand(reader.png);
        png_set_scale_16(reader.png);
        png_set_gray_to_rgb(reader.png);
        png_set_add_alpha(reader.png, 255, PNG_FILLER_AFTER);
        png_set_interlace_handling(reader.png);
        png_read_update_info(reader.png, reader.info);
    });
}

void read_pixels(Reader& reader, const Picture& picture) {
    guarded(reader, [&reader, &picture] {
        const bool interlaced =
            png_get_interlace_type(reader.png, reader.info) != PNG_INTERLACE_NONE;
        const int passes = interlaced ? PNG_INTERLACE_ADAM7_PASSES : 1;
        const std::size_t stride = std::size_t{picture.width} * 4;
        for (int pass = 0; pass < passes; ++pass)
            for (std::size_t row = 0; row < picture.height; ++row)
                png_read_row(reader.png, picture.pixels.get() + row * stride, nullptr);
        png_read_end(reader.png, nullptr);
    });
}

} // namespace

Picture read_png(std::span<const std::uint8_t> file) {
    Reader reader(file);
    read_header(reader);
    if (raw_size(reader) / MAX_PNG_RATIO > file.size())
        throw std::runtime_error("PNG: the file is too short for the size that it promises");
    Picture picture = make_picture(png_get_image_width(reader.png, reader.info),
                                   png_get_image_height(reader.png, reader.info));
    ask_for_rgba(reader);
    read_pixels(reader, picture);
    return picture;
}

void write_png(const PictureView& picture, std::FILE* stream) {
    Writer writer;
    guarded(writer, [&writer, &picture, stream] {
        png_init_io(writer.png, stream);
        png_set_IHDR(writer.png, writer.info, picture.width, picture.height, 8,
                     PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_write_info(writer.png, writer.info);
        const std::size_t stride = std::size_t{picture.width} * 4;
        for (std::size_t row = 0; row < picture.height; ++row)
            png_write_row(writer.png, picture.pixels + row * stride);
        png_write_end(writer.png, nullptr);
    });
}

} // namespace quillon::codecs
