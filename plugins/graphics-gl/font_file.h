// SPDX-License-Identifier: MIT
// TrueType files, read with their checksums.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillon::graphics_gl {

// The bytes of a TrueType file whose tables are whole.
//
// stb_truetype trusts every offset in a font, so a cut or damaged file must not reach it: each
// table lies within the file and has the checksum that the directory names. A font that was made
// to do harm is not recognised.
// Throws std::runtime_error with the reason.
std::vector<std::uint8_t> read_font_file(const std::string& file);

} // namespace quillon::graphics_gl
