// SPDX-License-Identifier: MIT
// A binding to two digital inputs, joined by a logic.
#pragma once

#include "quillon/export.h"

#include <cstdint>

namespace quillon {
struct cInputDigital;
}

// Queries ask the connected input plug-in and combine its answers.
// An input that is unset is false and asks nothing.
// False while no input plug-in is connected, and for a `logic` that is none of the three.
extern "C" {

// Or: either input is down. And: both are. Not: the first is and the second is not.
QUILLON_API bool __cInputDigital_query_down(const quillon::cInputDigital* binding);

// Or: either input was pressed. And: one was pressed while the other is down.
// Not: the first was pressed while the second is not down.
QUILLON_API bool __cInputDigital_query_press(const quillon::cInputDigital* binding);

// Or: either input was released. And: one was released while the other is not down, so that the
// last of the two has left. Not: the first was released while the second is not down.
QUILLON_API bool __cInputDigital_query_release(const quillon::cInputDigital* binding);

// As for a press, with inputs that count as pressed because they are held.
QUILLON_API bool __cInputDigital_query_hold_press(const quillon::cInputDigital* binding);

// As for a press, with inputs that were double-clicked.
QUILLON_API bool __cInputDigital_query_double_click(const quillon::cInputDigital* binding);

// The name of the first input, whatever the logic; the text belongs to the library.
//
// "[NONE]" if the input is unset, "INVALID" if no row of digital_input_names has that code and pad.
QUILLON_API const char* __cInputDigital_display_name1(const quillon::cInputDigital* binding);

// The same for the second input.
QUILLON_API const char* __cInputDigital_display_name2(const quillon::cInputDigital* binding);
}

namespace quillon {

// How the two inputs are joined; each query says what it means for it.
enum class InputLogic : std::int32_t { Or, And, Not };

// Plain data that the host fills in; queries keep nothing in it.
//
// A code is absolute if its pad is -1, else relative to pad 0 to 3; a code of -1 leaves that input
// unset.
// Codes and pads are not checked: the plug-in is asked about whatever code results.
struct cInputDigital {
    // The two inputs, as above.
    std::int16_t code1 = -1;
    std::int16_t pad1 = -1;
    std::int16_t code2 = -1;
    std::int16_t pad2 = -1;
    InputLogic logic = InputLogic::Or; // how they are joined

    // __cInputDigital_query_down.
    bool query_down() const { return __cInputDigital_query_down(this); }

    // __cInputDigital_query_press.
    bool query_press() const { return __cInputDigital_query_press(this); }

    // __cInputDigital_query_release.
    bool query_release() const { return __cInputDigital_query_release(this); }

    // __cInputDigital_query_hold_press.
    bool query_hold_press() const { return __cInputDigital_query_hold_press(this); }

    // __cInputDigital_query_double_click.
    bool query_double_click() const { return __cInputDigital_query_double_click(this); }

    // The name of the first input: __cInputDigital_display_name1.
    const char* display_name1() const { return __cInputDigital_display_name1(this); }

    // The name of the second: __cInputDigital_display_name2.
    const char* display_name2() const { return __cInputDigital_display_name2(this); }
};

} // namespace quillon
