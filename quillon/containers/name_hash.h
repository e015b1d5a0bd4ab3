// SPDX-License-Identifier: MIT
// The name hash that keys every table, and the comparison that ignores letter case.
#pragma once

#include "quillon/export.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillon {
namespace detail {

// Fold "a" to "z", and no other byte: names are compared in ASCII whatever the locale is.
constexpr char to_upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
}

constexpr char to_lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

} // namespace detail

// The 32-bit key of the name whose letters `letter_at(position)` returns, for a name that is folded
// while it is hashed and stored nowhere.
template <typename LetterAt>
constexpr std::uint32_t name_hash(std::size_t size, LetterAt letter_at) {
    const auto length = static_cast<std::uint32_t>(size);
    std::uint32_t shifted = length * 5;
    std::uint32_t squares = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t byte = static_cast<unsigned char>(letter_at(i));
        const std::uint32_t value = (byte ^ 0x80) - 0x80; // sign-extended: bytes count as signed
        shifted = (value << 16) + shifted * 2;
        squares += value * value;
    }
    return (length * 500 + length * length * 4000) ^ (shifted ^ squares);
}

// The 32-bit key of a name; case-sensitive, and 0 for the empty name.
//
// Usable in constant expressions, and by plug-ins without linking the library.
// Equal keys do not prove equal names, and the tables keep nothing but the key.
constexpr std::uint32_t name_hash(std::string_view name) {
    return name_hash(name.size(), [&](std::size_t i) { return name[i]; });
}

// True if the names are equal once "A" to "Z" are folded to "a" to "z"; no other byte is folded.
constexpr bool equal_ignoring_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (detail::to_lower(a[i]) != detail::to_lower(b[i]))
            return false;
    return true;
}

} // namespace quillon

extern "C" {

// The name_hash of a terminated string.
QUILLON_API std::uint32_t __mystring_hash(const char* text);

// equal_ignoring_case of two terminated strings, of any length.
QUILLON_API bool __mystring_case_insensitive_string_equal(const char* a, const char* b);
}
