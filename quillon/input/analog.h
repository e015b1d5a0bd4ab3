// SPDX-License-Identifier: MIT
// A binding to one axis, with the shape of its response.
#pragma once

#include "quillon/export.h"

#include <cstdint>

namespace quillon {
struct cInputAnalog;
}

// Queries ask the connected input plug-in.
// Without one, and for a binding whose code is -1, they return 0 or false.
// The value of a mouse axis is a tenth of the plug-in's.
extern "C" {

// The shaped response, from -1 to 1, never NaN.
//
// 0 up to and including `dead_zone`, then linear up to 1 where `saturation_zone` begins.
// With a `saturation_zone` of exactly 1 it is +1 or -1 beyond the dead zone, `inverted` or not.
// A `dead_zone` of 1 or more leaves nothing to map: beyond it the response is any value in range.
QUILLON_API float __cInputAnalog_query(const quillon::cInputAnalog* binding);

// True if the last update moved the axis beyond `dead_zone`; `inverted` is ignored.
QUILLON_API bool __cInputAnalog_query_up(const quillon::cInputAnalog* binding);

// True if the last update moved the axis below minus `dead_zone`; `inverted` is ignored.
QUILLON_API bool __cInputAnalog_query_down(const quillon::cInputAnalog* binding);

// True if the last update moved the axis back inside `dead_zone`, which it had reached or passed.
QUILLON_API bool __cInputAnalog_query_center(const quillon::cInputAnalog* binding);

// The name of the axis; the text belongs to the library.
//
// "[NONE]" for a code of -1, "INVALID" if no row of analog_input_names has that code and pad.
QUILLON_API const char* __cInputAnalog_display_name(const quillon::cInputAnalog* binding);
}

namespace quillon {

// Plain data that the host fills in; queries keep nothing in it.
//
// `code` is absolute if `pad` is -1, else an axis 0 to 3 of pad 0 to 3. Neither is checked: the
// plug-in is asked about whatever code results.
// `dead_zone` is in the scale of the axis, whose full travel is 1.
// `saturation_zone` is the part of the travel beyond it, at the far end, that responds in full.
struct cInputAnalog {
    // The axis, as above.
    std::int16_t code = -1;
    std::int16_t pad = -1;
    float dead_zone = 0;       // 0 and above
    float saturation_zone = 0; // 0 to 1
    bool inverted = false;     // the response changes its sign

    // The shaped response: __cInputAnalog_query.
    float query() const { return __cInputAnalog_query(this); }

    // __cInputAnalog_query_up.
    bool query_up() const { return __cInputAnalog_query_up(this); }

    // __cInputAnalog_query_down.
    bool query_down() const { return __cInputAnalog_query_down(this); }

    // __cInputAnalog_query_center.
    bool query_center() const { return __cInputAnalog_query_center(this); }

    // The name of the axis: __cInputAnalog_display_name.
    const char* display_name() const { return __cInputAnalog_display_name(this); }
};

} // namespace quillon
