// SPDX-License-Identifier: MIT
// The display names of every input, generated at compile time.
//
// The rows are constant data of the library or program that includes them, and valid while it is
// loaded.
// Indexing a table is not checked; name_at is, and so are the display operations of the bindings.
#pragma once

#include "quillon/input/codes.h"

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace quillon {

// Shown for a binding without an input, and for one whose code is in no table.
inline constexpr char NO_INPUT_NAME[] = "[NONE]";
inline constexpr char INVALID_INPUT_NAME[] = "INVALID";

namespace input_names {

// A number from 0 to 99 as text.
class Number {
public:
    constexpr explicit Number(int value)
        : digits{static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)} {}

    constexpr operator std::string_view() const {
        return digits[0] == '0' ? std::string_view(digits + 1, 1) : std::string_view(digits, 2);
    }

private:
    char digits[2];
};

using Text = std::array<char, 20>;

// Appends texts to a table. One too long or too many fails to compile, and so does one missing.
template <std::size_t count>
class Writer {
public:
    constexpr void row(std::initializer_list<std::string_view> parts) {
        auto cursor = texts[used++].begin();
        for (const std::string_view part : parts)
            for (const char letter : part)
                *cursor++ = letter;
    }

    constexpr void each(std::initializer_list<std::string_view> names) {
        for (const std::string_view name : names)
            row({name});
    }

    // One row for each character of `letters`.
    constexpr void letters(std::string_view all) {
        for (std::size_t i = 0; i < all.size(); ++i)
            row({all.substr(i, 1)});
    }

    constexpr void numbered(std::string_view device, std::string_view what, int first, int last) {
        for (int number = first; number <= last; ++number)
            row({device, what, Number(number)});
    }

    // The rows of one pad, called "Pad " or "Pad 1 ".
    constexpr void pad(std::string_view device) {
        row({device, "Any"});
        numbered(device, "Btn ", 1, PAD_BUTTONS);
        for (int axis = 1; axis <= PAD_AXES; ++axis)
            for (const std::string_view zone : {" Center", " -", " --", " +", " ++"})
                row({device, "Axis ", Number(axis), zone});
        for (int hat = 1; hat <= PAD_HATS; ++hat)
            for (const std::string_view direction : {" Left", " Right", " Up", " Down"})
                row({device, "Hat ", Number(hat), direction});
    }

    constexpr std::array<Text, count> finish() const {
        return used == count ? texts : a_table_has_too_few_rows();
    }

private:
    // Not constexpr: where a table is short, the call doesn't compile.
    static std::array<Text, count> a_table_has_too_few_rows() { return {}; }

    std::array<Text, count> texts{};
    std::size_t used = 0;
};

// "Pad 1 " to "Pad 4 ".
struct PadPrefix {
    char text[6];

    constexpr explicit PadPrefix(int pad)
        : text{'P', 'a', 'd', ' ', static_cast<char>('1' + pad), ' '} {}

    constexpr operator std::string_view() const { return {text, sizeof text}; }
};

constexpr auto make_digital() {
    Writer<DIGITAL_CODES> table;
    table.each({"Any Key", "Escape", "Tab", "Backspace", "Enter", "Space"});
    table.each({"Insert", "Delete", "Home", "End", "Page Up", "Page Down"});
    table.each({"Up", "Down", "Left", "Right"});
    table.letters("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
    table.numbered("F", "", 1, 12);
    table.numbered("Keypad ", "", 0, 9);
    table.each({"Keypad .", "Keypad /", "Keypad *", "Keypad -", "Keypad +", "Keypad Enter"});
    table.each({"Num Lock", "Caps Lock", "Scroll Lock", "Left Shift", "Right Shift"});
    table.each({"Left Control", "Right Control", "Left Alt", "Right Alt"});
    table.letters("~-+[]\\:\"<>?");
    table.each({"Print Screen", "Pause", "Any Mouse", "Left Mouse", "Right Mouse"});
    table.each({"Middle Mouse", "Mouse Wheel Up", "Mouse Wheel Down"});
    for (int pad = 0; pad < PAD_COUNT; ++pad)
        table.pad(PadPrefix(pad));
    return table.finish();
}

constexpr auto make_analog() {
    Writer<ANALOG_CODES> table;
    table.each({"Mouse X", "Mouse Y"});
    for (int pad = 0; pad < PAD_COUNT; ++pad)
        table.numbered(PadPrefix(pad), "Axis ", 1, PAD_AXES);
    return table.finish();
}

constexpr auto make_pad() {
    Writer<PAD_CODES> table;
    table.pad("Pad ");
    return table.finish();
}

constexpr auto make_pad_axes() {
    Writer<PAD_AXES> table;
    table.numbered("Pad ", "Axis ", 1, PAD_AXES);
    return table.finish();
}

constexpr auto make_logic() {
    Writer<3> table;
    table.each({"Or", "And", "Not"});
    return table.finish();
}

// The texts of the five tables.
inline constexpr auto DIGITAL = make_digital();
inline constexpr auto ANALOG = make_analog();
inline constexpr auto PAD = make_pad();
inline constexpr auto PAD_AXIS = make_pad_axes();
inline constexpr auto LOGIC = make_logic();

template <std::size_t count>
constexpr std::array<const char*, count> rows_of(const std::array<Text, count>& texts) {
    std::array<const char*, count> rows{};
    for (std::size_t row = 0; row < count; ++row)
        rows[row] = texts[row].data();
    return rows;
}

template <std::size_t count>
constexpr std::int16_t find(const std::array<const char*, count>& table, std::string_view name) {
    for (std::size_t row = 0; row < count; ++row)
        if (name == table[row])
            return static_cast<std::int16_t>(row);
    return NO_INPUT;
}

} // namespace input_names

// Indexed by absolute digital code.
inline constexpr auto digital_input_names = input_names::rows_of(input_names::DIGITAL);

// Indexed by absolute analog code.
inline constexpr auto analog_input_names = input_names::rows_of(input_names::ANALOG);

// Indexed by pad-relative digital code.
inline constexpr auto pad_input_names = input_names::rows_of(input_names::PAD);

// Indexed by pad-relative axis.
inline constexpr auto pad_axis_names = input_names::rows_of(input_names::PAD_AXIS);

// Indexed by InputLogic.
inline constexpr auto input_logic_names = input_names::rows_of(input_names::LOGIC);

// The row at `code`, or INVALID_INPUT_NAME for one that the table does not have.
template <std::size_t count>
constexpr const char* name_at(const std::array<const char*, count>& table, int code) {
    const bool inside = code >= 0 && code < static_cast<int>(count);
    return inside ? table[static_cast<std::size_t>(code)] : INVALID_INPUT_NAME;
}

// The absolute code that is displayed as `name`, or NO_INPUT; case-sensitive.
constexpr std::int16_t digital_code(std::string_view name) {
    return input_names::find(digital_input_names, name);
}

// The same for an absolute analog code.
constexpr std::int16_t analog_code(std::string_view name) {
    return input_names::find(analog_input_names, name);
}

} // namespace quillon
