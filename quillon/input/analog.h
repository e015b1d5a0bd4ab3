// One axis that a game has bound, with the shape of its response.
#pragma once

#include "quillon/export.h"

#include <cstdint>

namespace quillon {
struct cInputAnalog;
}

// Queries ask the connected input plug-in; without one, and for a binding whose code is -1, they
// give 0 or false. The value of a mouse axis counts a tenth of what the plug-in says.
extern "C" {

// The shaped response, from -1 to 1, never NaN.
//
// 0 up to and with `dead_zone`, then linear up to 1 where `saturation_zone` begins.
// A `saturation_zone` of exactly 1 gives +1 or -1 beyond the dead zone, whatever `inverted` says.
// A `dead_zone` of 1 or more leaves nothing to map: an axis beyond it gives some value in the
// range.
QUILLON_API float __cInputAnalog_query(const quillon::cInputAnalog* binding);

// The last update took the axis beyond `dead_zone`; `inverted` plays no part.
QUILLON_API bool __cInputAnalog_query_up(const quillon::cInputAnalog* binding);

// The last update took the axis below minus `dead_zone`; `inverted` plays no part.
QUILLON_API bool __cInputAnalog_query_down(const quillon::cInputAnalog* binding);

// The last update brought the axis back inside `dead_zone`, which it had reached or passed.
QUILLON_API bool __cInputAnalog_query_center(const quillon::cInputAnalog* binding);

// The name of the axis; the text is the library's.
//
// "[NONE]" for a code of -1, "INVALID" if code or pad leads outside analog_input_names.
QUILLON_API const char* __cInputAnalog_display_name(const quillon::cInputAnalog* binding);
}

namespace quillon {

// Plain data that the host fills in; queries keep nothing in it.
//
// `code` is absolute if `pad` is -1, else an axis 0 to 3 of pad 0 to 3. Neither is tested: the
// plug-in is asked about whatever they come to. `dead_zone` is in the scale of the axis, whose full
// travel is 1; `saturation_zone` is the part of the travel beyond it, at the far end, that responds
// in full.
struct cInputAnalog {
    std::int16_t code = -1;
    std::int16_t pad = -1;
    float dead_zone = 0;
    float saturation_zone = 0;
    bool inverted = false;

    float query() const { return __cInputAnalog_query(this); }

    bool query_up() const { return __cInputAnalog_query_up(this); }

    bool query_down() const { return __cInputAnalog_query_down(this); }

    bool query_center() const { return __cInputAnalog_query_center(this); }

    const char* display_name() const { return __cInputAnalog_display_name(this); }
};

} // namespace quillon
