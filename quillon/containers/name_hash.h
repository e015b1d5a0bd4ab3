// The name hash that keys every table, and the comparison that looks past letter case.
#pragma once

#include "quillon/export.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillon {

// The 32-bit key of the name whose letters `letter_at(position)` gives, for a name that is folded
// on the way and stored nowhere.
template <class LetterAt>
constexpr std::uint32_t name_hash(std::size_t size, LetterAt letter_at) {
    const auto length = static_cast<std::uint32_t>(size);
    std::uint32_t shifted = length * 5;
    std::uint32_t squares = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t byte = static_cast<unsigned char>(letter_at(i));
        const std::uint32_t value = (byte ^ 0x80) - 0x80; // its sign extended
        shifted = (value << 16) + shifted * 2;
        squares += value * value;
    }
    return (length * 500 + length * length * 4000) ^ (shifted ^ squares);
}

// The 32-bit key of a name; case-sensitive, and the empty name gives 0.
//
// Usable in constant expressions, and by plug-ins without linking the library.
// Equal keys do not prove equal names: the tables keep nothing but the key.
constexpr std::uint32_t name_hash(std::string_view name) {
    return name_hash(name.size(), [&](std::size_t i) { return name[i]; });
}

// True if the names are equal once "A" to "Z" are folded to "a" to "z"; no other byte is folded.
constexpr bool equal_ignoring_case(std::string_view a, std::string_view b) {
    const auto fold = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    };
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (fold(a[i]) != fold(b[i]))
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
