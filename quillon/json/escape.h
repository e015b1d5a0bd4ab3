// SPDX-License-Identifier: MIT
// Escapes in strings: short letters, UTF-16 code units, and the UTF-8 that they become.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillon::json {

inline constexpr std::string_view ESCAPE_LETTERS = "\"\\/bfnrt";
inline constexpr std::string_view ESCAPE_MEANINGS = "\"\\/\b\f\n\r\t";

// By letter, the byte that a backslash and the letter stand for; 0 for all others, "u" included.
inline constexpr auto ESCAPES = [] {
    std::array<unsigned char, 256> meanings = {};
    for (std::size_t i = 0; i < ESCAPE_LETTERS.size(); ++i)
        meanings[static_cast<unsigned char>(ESCAPE_LETTERS[i])] =
            static_cast<unsigned char>(ESCAPE_MEANINGS[i]);
    return meanings;
}();

inline constexpr std::uint8_t NO_HEX_DIGIT = 0xFF;

inline constexpr auto HEX_VALUES = [] {
    std::array<std::uint8_t, 256> values = {};
    values.fill(NO_HEX_DIGIT);
    for (std::uint8_t i = 0; i < 16; ++i) {
        values[static_cast<unsigned char>("0123456789abcdef"[i])] = i;
        values[static_cast<unsigned char>("0123456789ABCDEF"[i])] = i;
    }
    return values;
}();

inline constexpr std::uint32_t NO_CODE_UNIT = 0x10000;

// The code unit that four hex digits make, or NO_CODE_UNIT.
inline std::uint32_t code_unit_of(const unsigned char* digits) {
    const std::uint32_t a = HEX_VALUES[digits[0]];
    const std::uint32_t b = HEX_VALUES[digits[1]];
    const std::uint32_t c = HEX_VALUES[digits[2]];
    const std::uint32_t d = HEX_VALUES[digits[3]];
    return (a | b | c | d) < 16 ? a << 12 | b << 8 | c << 4 | d : NO_CODE_UNIT;
}

inline bool is_high_surrogate(std::uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

inline bool is_low_surrogate(std::uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// The code point of a surrogate pair.
inline std::uint32_t code_point_of(std::uint32_t high, std::uint32_t low) {
    return (low & 0x3FF) + ((high & 0x3FF) << 10) + 0x10000;
}

// Writes a code point as UTF-8, 1 to 4 bytes, and returns their end.
inline unsigned char* put_utf8(unsigned char* at, std::uint32_t code) {
    const auto byte = [](std::uint32_t bits) { return static_cast<unsigned char>(bits); };
    const auto tail = [=](unsigned shift) { return byte(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        *at++ = byte(code);
        return at;
    }
    if (code < 0x800) {
        *at++ = byte(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            *at++ = byte(0xE0 | code >> 12);
        } else {
            *at++ = byte(0xF0 | code >> 18);
            *at++ = tail(12);
        }
        *at++ = tail(6);
    }
    *at++ = tail(0);
    return at;
}

} // namespace quillon::json
