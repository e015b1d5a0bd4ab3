#include "image_files.h"

#include <cstdlib>

Bytes png_file(const PngKind& kind, const Bytes& rows,
               const std::function<void(png_structp, png_infop)>& add_chunks) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto append = [](png_structp writer, png_bytep data, std::size_t count) {
        auto& target = *static_cast<Bytes*>(png_get_io_ptr(writer));
        target.insert(target.end(), data, data + count);
    };
    png_set_write_fn(png, &file, append, nullptr);
    png_set_IHDR(png, info, kind.width, kind.height, kind.bit_depth, kind.color_type,
                 kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (add_chunks)
        add_chunks(png, info);
    png_write_info(png, info);
    png_set_packing(png);
    const int passes = png_set_interlace_handling(png);
    const std::size_t stride = rows.size() / kind.height;
    for (int pass = 0; pass < passes && !rows.empty(); ++pass)
        for (std::size_t row = 0; row < kind.height; ++row)
            png_write_row(png, rows.data() + row * stride);
    if (!rows.empty())
        png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return file;
}

Bytes jpeg_file(std::uint32_t width, std::uint32_t height, J_COLOR_SPACE space,
                const Bytes& samples, const std::function<void(jpeg_compress_struct&)>& configure) {
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &memory, &size);
    codec.image_width = width;
    codec.image_height = height;
    codec.input_components = static_cast<int>(samples.size());
    codec.in_color_space = space;
    jpeg_set_defaults(&codec);
    if (configure)
        configure(codec);
    jpeg_start_compress(&codec, TRUE);
    Bytes pixels;
    for (std::uint32_t column = 0; column < width; ++column)
        pixels.insert(pixels.end(), samples.begin(), samples.end());
    JSAMPROW row = pixels.data();
    while (codec.next_scanline < height)
        jpeg_write_scanlines(&codec, &row, 1);
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    Bytes file(memory, memory + size);
    std::free(memory);
    return file;
}
