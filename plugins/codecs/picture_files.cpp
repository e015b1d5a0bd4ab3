#include "image.h"

#include "codecs.h"
#include "quillon/core/plugin.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace image {
namespace {

struct Format {
    std::string_view signature;
    Picture (*read)(std::span<const std::uint8_t> file);
    void (*write)(const PictureView& picture, std::FILE* stream);
    std::array<std::string_view, 2> extensions;
};

// The first one writes every name that carries no extension of another.
constexpr Format FORMATS[] = {
    {"\x89PNG\r\n\x1a\n", read_png, write_png, {".png", ".png"}},
    {"\xff\xd8\xff", read_jpeg, write_jpeg, {".jpg", ".jpeg"}},
};

// Why the last load or save failed.
std::string last_error;

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

// Only a regular file has a size, and opening a pipe could wait for ever.
std::vector<std::uint8_t> file_bytes(const char* name) {
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(name, failure);
    if (failure)
        throw std::runtime_error(failure.message());
    if (size > MAX_FILE_BYTES)
        throw std::runtime_error("the file has more than " + std::to_string(MAX_FILE_BYTES) +
                                 " bytes");
    const File file(std::fopen(name, "rb"));
    if (file == nullptr)
        throw std::system_error(errno, std::generic_category());
    std::vector<std::uint8_t> bytes(size);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    return bytes;
}

const Format& format_of_content(std::span<const std::uint8_t> file) {
    const auto* const found = std::ranges::find_if(FORMATS, [file](const Format& format) {
        const std::string_view start(reinterpret_cast<const char*>(file.data()),
                                     std::min(file.size(), format.signature.size()));
        return start == format.signature;
    });
    if (found == std::end(FORMATS))
        throw std::runtime_error("neither a PNG nor a JPEG file");
    return *found;
}

const Format& format_of_name(const char* name) {
    const std::string extension = fs::path(name).extension().string();
    const auto* const found = std::ranges::find_if(FORMATS, [&extension](const Format& format) {
        return std::ranges::any_of(format.extensions, [&extension](std::string_view known) {
            return quillon::equal_ignoring_case(known, extension);
        });
    });
    return found == std::end(FORMATS) ? FORMATS[0] : *found;
}

// Writes to the open file and closes it.
void write_file(File file, const char* name, const PictureView& picture) {
    format_of_name(name).write(picture, file.get());
    if (std::fclose(file.release()) != 0)
        throw std::system_error(errno, std::generic_category());
}

// A device that the host wrote to is no leftover.
void remove_leftover(const char* name) {
    std::error_code ignored;
    if (fs::is_regular_file(name, ignored))
        fs::remove(name, ignored);
}

// Runs `work` and keeps the reason if it throws, so that nothing leaves the plug-in but a false.
template <class Work>
bool succeeds(const char* task, const char* name, Work work) {
    try {
        last_error.clear();
        work();
        return true;
    } catch (const std::exception& failure) {
        last_error = std::string("cannot ") + task + " '" + name + "': " + failure.what();
    }
    return false;
}

void load_bitmap(const char* name, void* width, void* height, void* pixels) {
    Picture picture{};
    const bool loaded = succeeds("load", name, [name, &picture] {
        const std::vector<std::uint8_t> bytes = file_bytes(name);
        picture = format_of_content(bytes).read(bytes);
    });
    if (!loaded)
        picture = {};
    *static_cast<std::uint16_t*>(width) = picture.width;
    *static_cast<std::uint16_t*>(height) = picture.height;
    *static_cast<std::uint8_t**>(pixels) = picture.pixels.release();
}

bool save_bitmap(const char* name, std::uint16_t width, std::uint16_t height,
                 std::uint8_t* pixels) {
    return succeeds("save", name, [&] {
        if (pixels == nullptr || width == 0 || height == 0)
            throw std::runtime_error("there are no pixels to write");
        File file(std::fopen(name, "wb"));
        if (file == nullptr)
            throw std::system_error(errno, std::generic_category());
        try {
            write_file(std::move(file), name, {width, height, pixels});
        } catch (...) {
            remove_leftover(name);
            throw;
        }
    });
}

} // namespace

Picture make_picture(std::uint32_t width, std::uint32_t height) {
    if (width > MAX_SIDE || height > MAX_SIDE || std::uint64_t{width} * height > MAX_PIXELS)
        throw std::runtime_error(
            "the picture is larger than this plug-in reads: " + std::to_string(width) + " x " +
            std::to_string(height) + " pixels, where " + std::to_string(MAX_SIDE) + " a side and " +
            std::to_string(MAX_PIXELS) + " in all are the most");
    const std::size_t bytes = std::size_t{width} * height * 4;
    return {static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
            std::make_unique_for_overwrite<std::uint8_t[]>(bytes)};
}

} // namespace image

QUILLON_PLUGIN_SERVES("image", "GRAPHICS")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>*) {
    return true;
}

void shutdown() {}

void connect_graphics_interface(void** table) {
    auto& graphics = quillon::as_table<quillon::GraphicsTable>(table);
    graphics.load_bitmap = image::load_bitmap;
    graphics.save_bitmap = image::save_bitmap;
}

QUILLON_PLUGIN_EXPORT const char* image_last_error() {
    return image::last_error.c_str();
}
