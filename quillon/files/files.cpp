// SPDX-License-Identifier: MIT
#include "quillon/files/files.h"

#include "quillon/platform/files.h"
#include "quillon/platform/paths.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

namespace quillon {
namespace {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

using Stream = std::unique_ptr<std::FILE, CloseStream>;

// Some platforms open a folder and fail at its first byte; here no platform opens one.
Stream open_to_read(const char* path) {
    return Stream(platform::is_folder(path) ? nullptr : platform::open_file(path, "rb"));
}

// A file opened in text mode, and its length.
struct Text {
    Stream stream;
    long length = -1;
};

Text open_text(const char* path) {
    Text text;
    if (!platform::can_have_a_length(path))
        return text;
    text.stream.reset(platform::open_file(path, "r"));
    if (text.stream != nullptr && std::fseek(text.stream.get(), 0, SEEK_END) == 0) {
        text.length = std::ftell(text.stream.get());
        std::rewind(text.stream.get());
    }
    return text;
}

std::string_view path_of(const char* text) {
    constexpr std::size_t most = std::numeric_limits<std::int16_t>::max();
    const std::string_view path(text);
    return path.size() <= most ? path : std::string_view();
}

constexpr std::string_view SEPARATORS = "/\\";

void write(char* output, std::string_view text) {
    if (!text.empty())
        std::memmove(output, text.data(), text.size());
    output[text.size()] = '\0';
}

} // namespace
} // namespace quillon

using namespace quillon;

char* __mFileOps_create_string_from_file(const char* path) {
    const Text text = open_text(path);
    if (text.length < 0) {
        std::fprintf(stderr, "Can't open file '%s' for reading\n", path);
        return nullptr;
    }
    const auto most = static_cast<std::size_t>(text.length);
    char* const buffer = new (std::nothrow) char[most + 1];
    if (buffer == nullptr) {
        std::fprintf(stderr, "Can't new space for '%s'\n", path);
        return nullptr;
    }
    buffer[std::fread(buffer, 1, most, text.stream.get())] = '\0';
    return buffer;
}

void __mFileOps_open_for_read(std::FILE*& stream, const char* path) {
    stream = open_to_read(path).release();
}

void __mFileOps_open_for_write(std::FILE*& stream, const char* path) {
    stream = platform::open_file(path, "wb");
}

void __mFileOps_close(std::FILE* stream) {
    if (stream != nullptr)
        std::fclose(stream);
}

bool __mFileOps_file_exists(const char* path) {
    return platform::path_exists(path);
}

void __mFileOps_file_copy(const char* destination, const char* source) {
    if (platform::is_same_file(destination, source))
        return;
    const Stream from = open_to_read(source);
    const Stream to(platform::open_file(destination, "wb"));
    if (from == nullptr || to == nullptr)
        return;
    std::array<char, 16384> block;
    std::size_t length = block.size();
    while (length == block.size()) {
        length = std::fread(block.data(), 1, block.size(), from.get());
        if (std::fwrite(block.data(), 1, length, to.get()) < length)
            return;
    }
}

bool __mFileOps_check_for_extension(const char* name, const char* extension) {
    const std::string_view path = path_of(name);
    const std::string_view ending(extension);
    return path.size() > ending.size() + 1 && path.ends_with(ending);
}

bool __mFileOps_create_directory(const char* path) {
    const std::string folder = platform::normalise_path(path);
    return platform::wide_length(folder) < platform::PATH_LIMIT && platform::create_folder(folder);
}

void __mFileOps_get_pathname_extention(char* output, const char* path) {
    const std::string_view whole = path_of(path);
    const std::size_t dot = whole.rfind('.');
    write(output, dot == std::string_view::npos ? std::string_view() : whole.substr(dot + 1));
}

void __mFileOps_get_pathname_filename(char* output, const char* path) {
    const std::string_view whole = path_of(path);
    const std::size_t start = whole.find_last_of(SEPARATORS) + 1; // npos makes it 0
    const std::size_t dot = whole.rfind('.');
    const bool named = dot != std::string_view::npos && dot > start;
    write(output, named ? whole.substr(start, dot - start) : std::string_view());
}

void __mFileOps_get_pathname_path(char* output, const char* path) {
    const std::string_view whole = path_of(path);
    const std::size_t end = whole.find_last_of(SEPARATORS);
    write(output, end == std::string_view::npos ? std::string_view() : whole.substr(0, end));
}
