// SPDX-License-Identifier: MIT
#include "font_file.h"

#include "plugins/utf8_path.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <span>
#include <stdexcept>
#include <system_error>

namespace quillon::graphics_gl {
namespace {

constexpr std::uintmax_t MAX_BYTES = 1U << 26;
constexpr std::size_t HEADER_BYTES = 12;
constexpr std::size_t RECORD_BYTES = 16;

using Bytes = std::span<const std::uint8_t>;

// Big-endian, as all numbers of the format; bytes past the end count as 0.
std::uint32_t number(Bytes bytes, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + size; ++i)
        value = value << 8 | (i < bytes.size() ? bytes[i] : 0U);
    return value;
}

// The sum of the table's words, without the word in "head" that adjusts the sum of the file.
std::uint32_t checksum(Bytes table, bool is_head) {
    std::uint32_t sum = 0;
    for (std::size_t at = 0; at < table.size(); at += 4)
        if (!(is_head && at == 8))
            sum += number(table, at, 4);
    return sum;
}

bool is_table_whole(Bytes file, std::size_t record) {
    const bool is_head = std::memcmp(file.data() + record, "head", 4) == 0;
    const std::size_t offset = number(file, record + 8, 4);
    const std::size_t size = number(file, record + 12, 4);
    return offset <= file.size() && size <= file.size() - offset &&
           checksum(file.subspan(offset, size), is_head) == number(file, record + 4, 4);
}

bool is_whole(Bytes file) {
    if (file.size() < HEADER_BYTES)
        return false;
    const std::size_t tables = number(file, 4, 2);
    if (file.size() < HEADER_BYTES + tables * RECORD_BYTES)
        return false;
    for (std::size_t i = 0; i < tables; ++i)
        if (!is_table_whole(file, HEADER_BYTES + i * RECORD_BYTES))
            return false;
    return tables > 0;
}

} // namespace

std::vector<std::uint8_t> read_font_file(const std::string& file) {
    const std::filesystem::path path = utf8_path(file);
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure)
        throw std::runtime_error("cannot read the font '" + file + "': " + failure.message());
    if (size > MAX_BYTES)
        throw std::runtime_error("the font '" + file + "' is too large");
    std::vector<std::uint8_t> bytes(size);
    std::ifstream(path, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (!is_whole(bytes))
        throw std::runtime_error("'" + file + "' is not a TrueType font, or damaged");
    return bytes;
}

} // namespace quillon::graphics_gl
