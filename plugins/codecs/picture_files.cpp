// SPDX-License-Identifier: MIT
#include "picture_files.h"

#include "codecs.h"
#include "open_file.h"

#include "plugins/utf8_path.h"

#include "quillon/containers/name_hash.h"

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

namespace quillon::codecs {
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

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

// Only a regular file has a size, and opening a pipe could wait for ever.
std::vector<std::uint8_t> file_bytes(const fs::path& path) {
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(path, failure);
    if (failure)
        throw std::runtime_error(failure.message());
    if (size > MAX_PICTURE_FILE_BYTES)
        throw std::runtime_error("the file has more than " +
                                 std::to_string(MAX_PICTURE_FILE_BYTES) + " bytes");
    const File file(open_file(path, Access::Read));
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

const Format& format_of_name(const fs::path& path) {
    const std::u8string letters = path.extension().u8string();
    const std::string extension(letters.begin(), letters.end());
    const auto* const found = std::ranges::find_if(FORMATS, [&extension](const Format& format) {
        return std::ranges::any_of(format.extensions, [&extension](std::string_view known) {
            return equal_ignoring_case(known, extension);
        });
    });
    return found == std::end(FORMATS) ? FORMATS[0] : *found;
}

// Writes to the open file and closes it.
void write_file(File file, const Format& format, const PictureView& picture) {
    format.write(picture, file.get());
    if (std::fclose(file.release()) != 0)
        throw std::system_error(errno, std::generic_category());
}

// A device that the host wrote to is no leftover.
void remove_leftover(const fs::path& path) {
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored))
        fs::remove(path, ignored);
}

void write_or_remove(const fs::path& path, const PictureView& picture) {
    if (picture.pixels == nullptr || picture.width == 0 || picture.height == 0)
        throw std::runtime_error("there are no pixels to write");
    const Format& format = format_of_name(path);
    File file(open_file(path, Access::Write));
    if (file == nullptr)
        throw std::system_error(errno, std::generic_category());
    try {
        write_file(std::move(file), format, picture);
    } catch (...) {
        remove_leftover(path);
        throw;
    }
}

// Runs `work`; if it throws, keeps the reason with what could not be done. So nothing leaves the
// plug-in but a false, even when there is no memory for the reason.
template <typename Work>
bool succeeds(LastError& error, const char* task, const char* name, Work work) {
    LastError reason;
    if (reason.guard(work))
        return error.clear();
    return error.fail("cannot ", task, " '", name, "': ", reason.text());
}

} // namespace

Picture make_picture(std::uint32_t width, std::uint32_t height) {
    if (width > MAX_PICTURE_SIDE || height > MAX_PICTURE_SIDE ||
        std::uint64_t{width} * height > MAX_PICTURE_PIXELS)
        throw std::runtime_error(
            "the picture is larger than this plug-in reads: " + std::to_string(width) + " x " +
            std::to_string(height) + " pixels, where " + std::to_string(MAX_PICTURE_SIDE) +
            " a side and " + std::to_string(MAX_PICTURE_PIXELS) + " in all are the most");
    const std::size_t bytes = std::size_t{width} * height * 4;
    return {static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
            std::make_unique_for_overwrite<std::uint8_t[]>(bytes)};
}

void prepare() {
    touch_jpeg();
}

void load_bitmap(LastError& error, const char* name, void* width, void* height, void* pixels) {
    Picture picture{};
    const bool is_loaded = succeeds(error, "load", name, [name, &picture] {
        const std::vector<std::uint8_t> bytes = file_bytes(utf8_path(name));
        picture = format_of_content(bytes).read(bytes);
    });
    if (!is_loaded)
        picture = {};
    *static_cast<std::uint16_t*>(width) = picture.width;
    *static_cast<std::uint16_t*>(height) = picture.height;
    *static_cast<std::uint8_t**>(pixels) = picture.pixels.release();
}

bool save_bitmap(LastError& error, const char* name, std::uint16_t width, std::uint16_t height,
                 const std::uint8_t* pixels) {
    return succeeds(error, "save", name, [&] {
        write_or_remove(utf8_path(name), {width, height, pixels});
    });
}

} // namespace quillon::codecs
