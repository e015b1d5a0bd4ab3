// SPDX-License-Identifier: MIT
#include "codecs.h"

#include <array>
#include <csetjmp>
// libjpeg's headers need these two before them.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on
#include <stdexcept>

namespace quillon::codecs {
namespace {

constexpr int QUALITY = 95;

// One reading or writing of libjpeg, with what its callbacks need.
template <typename Codec>
struct Session {
    Codec codec{};
    jpeg_error_mgr errors{};
    jpeg_progress_mgr progress{};
    std::jmp_buf on_failure{};
    std::array<char, JMSG_LENGTH_MAX + 8> reason{};
};

// libjpeg calls this instead of returning, and it must not return either.
template <typename Codec>
[[noreturn]] void fail(j_common_ptr codec, const char* text) {
    auto& session = *static_cast<Session<Codec>*>(codec->client_data);
    std::snprintf(session.reason.data(), session.reason.size(), "JPEG: %s", text);
    std::longjmp(session.on_failure, 1);
}

template <typename Codec>
[[noreturn]] void on_error(j_common_ptr codec) {
    std::array<char, JMSG_LENGTH_MAX> text{};
    codec->err->format_message(codec, text.data());
    fail<Codec>(codec, text.data());
}

// libjpeg patches up damaged data and only warns of it; a picture that is not whole is an error
// here.
template <typename Codec>
void on_message(j_common_ptr codec, int level) {
    const int code = codec->err->msg_code;
    const bool harmless =
        code == JWRN_EXTRANEOUS_DATA || code == JWRN_ADOBE_XFORM || code == JWRN_JFIF_MAJOR;
    if (level < 0 && !harmless)
        on_error<Codec>(codec);
}

void on_progress(j_common_ptr codec) {
    const auto* decompress = reinterpret_cast<j_decompress_ptr>(codec);
    if (decompress->input_scan_number > MAX_JPEG_SCANS)
        fail<jpeg_decompress_struct>(codec, "the file has too many scans");
}

template <typename Codec>
void catch_errors(Session<Codec>& session) {
    session.codec.err = jpeg_std_error(&session.errors);
    session.codec.client_data = &session;
    session.errors.error_exit = on_error<Codec>;
    session.errors.emit_message = on_message<Codec>;
}

struct Reader : Session<jpeg_decompress_struct> {
    Reader() { catch_errors(*this); }

    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    ~Reader() { jpeg_destroy_decompress(&codec); }
};

struct Writer : Session<jpeg_compress_struct> {
    Writer() { catch_errors(*this); }

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    ~Writer() { jpeg_destroy_compress(&codec); }
};

// Runs a step that libjpeg may leave by a long jump, so it must hold nothing that needs destroying.
template <typename Codec, typename Step>
void guarded(Session<Codec>& session, Step step) {
    if (setjmp(session.on_failure) != 0)
        throw std::runtime_error(session.reason.data());
    step();
}

void read_header(Reader& reader, std::span<const std::uint8_t> file) {
    guarded(reader, [&reader, file] {
        // Creating the codec clears client_data's neighbours but keeps it and err.
        jpeg_create_decompress(&reader.codec);
        reader.progress.progress_monitor = on_progress;
        reader.codec.progress = &reader.progress;
        jpeg_mem_src(&reader.codec, file.data(), static_cast<unsigned long>(file.size()));
        jpeg_read_header(&reader.codec, TRUE);
    });
}

bool is_cmyk(const Reader& reader) {
    const J_COLOR_SPACE space = reader.codec.jpeg_color_space;
    return space == JCS_CMYK || space == JCS_YCCK;
}

void read_pixels(Reader& reader, const Picture& picture) {
    guarded(reader, [&reader, &picture] {
        reader.codec.out_color_space = is_cmyk(reader) ? JCS_CMYK : JCS_EXT_RGBA;
        jpeg_start_decompress(&reader.codec);
        while (reader.codec.output_scanline < reader.codec.output_height) {
            JSAMPROW row = picture.pixels.get() +
                           std::size_t{reader.codec.output_scanline} * picture.width * 4;
            jpeg_read_scanlines(&reader.codec, &row, 1);
        }
        jpeg_finish_decompress(&reader.codec);
    });
}

// Opaque, at full resolution of colour.
void set_up(jpeg_compress_struct& codec, const PictureView& picture) {
    codec.image_width = picture.width;
    codec.image_height = picture.height;
    codec.input_components = 4;
    codec.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, QUALITY, TRUE);
    codec.comp_info[0].h_samp_factor = 1;
    codec.comp_info[0].v_samp_factor = 1;
}

// Turns the four inks of each pixel into opaque RGBA; programs that leave Adobe's mark store the
// inks upside down.
void inks_to_rgba(const Picture& picture, bool upside_down) {
    const std::size_t bytes = std::size_t{picture.width} * picture.height * 4;
    for (std::size_t pixel = 0; pixel < bytes; pixel += 4) {
        std::uint8_t* samples = picture.pixels.get() + pixel;
        const auto light = [upside_down](unsigned ink) { return upside_down ? ink : 255 - ink; };
        const unsigned black = light(samples[3]);
        for (int channel = 0; channel < 3; ++channel)
            samples[channel] =
                static_cast<std::uint8_t>((light(samples[channel]) * black + 127) / 255);
        samples[3] = 255;
    }
}

} // namespace

Picture read_jpeg(std::span<const std::uint8_t> file) {
    Reader reader;
    read_header(reader, file);
    const std::uint32_t width = reader.codec.image_width;
    const std::uint32_t height = reader.codec.image_height;
    if (std::uint64_t{width} * height / MAX_JPEG_PIXELS_PER_BYTE > file.size())
        throw std::runtime_error("JPEG: the file is too short for the size that it promises");
    Picture picture = make_picture(width, height);
    read_pixels(reader, picture);
    if (is_cmyk(reader))
        inks_to_rgba(picture, reader.codec.saw_Adobe_marker != FALSE);
    return picture;
}

void write_jpeg(const PictureView& picture, std::FILE* stream) {
    Writer writer;
    guarded(writer, [&writer, &picture, stream] {
        jpeg_compress_struct& codec = writer.codec;
        jpeg_create_compress(&codec);
        jpeg_stdio_dest(&codec, stream);
        set_up(codec, picture);
        jpeg_start_compress(&codec, TRUE);
        while (codec.next_scanline < codec.image_height) {
            // libjpeg only reads the row, though its type does not say so.
            JSAMPROW row = const_cast<JSAMPROW>(picture.pixels) +
                           std::size_t{codec.next_scanline} * picture.width * 4;
            jpeg_write_scanlines(&codec, &row, 1);
        }
        jpeg_finish_compress(&codec);
    });
}

void touch_jpeg() {
    // The choice of vector instructions is what libjpeg keeps, and compressing makes it.
    unsigned char pixel[4] = {};
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    Writer writer;
    guarded(writer, [&] {
        jpeg_compress_struct& codec = writer.codec;
        jpeg_create_compress(&codec);
        jpeg_mem_dest(&codec, &memory, &size);
        set_up(codec, {1, 1, pixel});
        jpeg_start_compress(&codec, TRUE);
    });
    std::free(memory);
}

} // namespace quillon::codecs
