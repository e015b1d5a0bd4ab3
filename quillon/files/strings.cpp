// SPDX-License-Identifier: MIT
#include "quillon/files/strings.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace quillon {
namespace {

struct RomanStep {
    std::uint16_t value;
    std::string_view letters;
};

constexpr RomanStep ROMAN_STEPS[] = {
    {1000, "M"}, {900, "CM"}, {500, "D"}, {400, "CD"}, {100, "C"}, {90, "XC"}, {50, "L"},
    {40, "XL"},  {10, "X"},   {9, "IX"},  {5, "V"},    {4, "IV"},  {1, "I"},
};

constexpr std::size_t ROMAN_CAPACITY = 256;

bool is_letter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

// Wraps one text: `lines` is the result up to `position`, and at most the one byte there.
class Wrapping {
public:
    explicit Wrapping(std::uint32_t width) : line_width(width) {}

    std::string wrap(std::string_view text) {
        lines.reserve(text.size() + text.size() / line_width);
        for (std::size_t taken = 0;; ++position) {
            if (position == lines.size()) {
                if (taken == text.size())
                    return std::move(lines);
                lines.push_back(text[taken++]);
            }
            step();
        }
    }

private:
    void step() {
        if (!is_letter(lines[position]))
            break_position = position + 1;
        ++column;
        if (column < line_width)
            return;
        if (break_position > line_start)
            break_before(break_position);
        else if (column > line_width)
            break_before(position);
    }

    // The byte at `position` moves on by one and is then counted on the new line. A break right
    // after it makes the count wrap, and the line feed there brings it to 0.
    void break_before(std::size_t place) {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(place), '\n');
        line_start = place + 1;
        column = static_cast<std::uint32_t>(position - place);
    }

    std::string lines;
    std::size_t position = 0;
    std::size_t break_position = 0;
    std::size_t line_start = 0;
    std::uint32_t column = 0;
    std::uint32_t line_width;
};

} // namespace
} // namespace quillon

using namespace quillon;

void __mystring_char_pointer_copy(char* destination, const char* source, std::uint16_t capacity) {
    if (capacity == 0) {
        std::memmove(destination, source, std::strlen(source) + 1);
        return;
    }
    const std::size_t most = capacity - 1U;
    const void* const end = std::memchr(source, 0, most);
    const std::size_t length =
        end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - source) : most;
    std::memmove(destination, source, length);
    destination[length] = '\0';
}

void __mystring_extract_width_and_height_from_string(const char* text, std::int32_t& width,
                                                     std::int32_t& height) {
    const auto length = static_cast<std::uint16_t>(std::strlen(text));
    std::int32_t column = 0;
    width = 0;
    height = 1;
    for (std::uint32_t i = 0; i < length; ++i) {
        if (text[i] == '#' && text[i + 1] == '#')
            ++i;
        if (text[i] == '#' && text[i + 1] != '#')
            i += 6;
        if (i >= length)
            break;
        if (text[i] == '\n') {
            width = std::max(width, column);
            column = 0;
            ++height;
        } else {
            ++column;
        }
    }
    width = std::max(width, column);
}

void __mystring_convert_to_roman_numeral(char* destination, std::uint16_t value) {
    std::size_t length = 0;
    for (const auto& [step, letters] : ROMAN_STEPS)
        while (value >= step && length + letters.size() < ROMAN_CAPACITY) {
            std::memcpy(destination + length, letters.data(), letters.size());
            length += letters.size();
            value = static_cast<std::uint16_t>(value - step);
        }
    destination[length] = '\0';
}

void __mystring_auto_newline(std::string& text, std::uint32_t line_width) {
    if (line_width > 0)
        text = Wrapping(line_width).wrap(text);
}
