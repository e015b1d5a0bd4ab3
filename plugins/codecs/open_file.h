// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace quillon::codecs {

enum class Access : std::uint8_t { Read, Write };

// A stream of bytes, or null with errno set; writing begins with an empty file.
std::FILE* open_file(const std::filesystem::path& path, Access access);

} // namespace quillon::codecs
