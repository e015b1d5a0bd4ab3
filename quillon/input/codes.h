// SPDX-License-Identifier: MIT
// The numbers of every input that a game can bind.
//
// A digital code is a key, a button, a direction of a hat or a zone of an axis; an analog code is
// an axis. Codes are signed 16-bit, and -1 means that nothing is bound. The input plug-in receives
// them unchanged, as unsigned 16-bit. One outside these ranges reaches it too: a plug-in answers
// false or 0 to a code that it does not know.
#pragma once

#include <cstdint>

namespace quillon {

// The code of nothing.
inline constexpr std::int16_t NO_INPUT = -1;

// How many pads there are, and what each has.
inline constexpr std::int16_t PAD_COUNT = 4;
inline constexpr std::int16_t PAD_BUTTONS = 16;
inline constexpr std::int16_t PAD_AXES = 4;
inline constexpr std::int16_t PAD_HATS = 2;

// The zones of an axis, in the order of their codes.
enum class AxisZone : std::int16_t { Center, Minus, FullMinus, Plus, FullPlus };
inline constexpr std::int16_t AXIS_ZONES = 5;

// The directions of a hat, in the order of their codes; that of the arrow keys differs.
enum class HatDirection : std::int16_t { Left, Right, Up, Down };
inline constexpr std::int16_t HAT_DIRECTIONS = 4;

// Pad-relative digital codes: any button, the buttons, the zones of each axis, the directions of
// each hat.
inline constexpr std::int16_t PAD_ANY_BUTTON = 0;
inline constexpr std::int16_t PAD_FIRST_BUTTON = 1;
inline constexpr std::int16_t PAD_FIRST_ZONE = PAD_FIRST_BUTTON + PAD_BUTTONS;
inline constexpr std::int16_t PAD_FIRST_DIRECTION = PAD_FIRST_ZONE + PAD_AXES * AXIS_ZONES;
inline constexpr std::int16_t PAD_CODES = PAD_FIRST_DIRECTION + PAD_HATS * HAT_DIRECTIONS;

// Absolute digital codes: keyboard, mouse, then the pads one after the other.
inline constexpr std::int16_t ANY_KEY = 0;
inline constexpr std::int16_t ANY_MOUSE = 102;
inline constexpr std::int16_t LEFT_MOUSE = 103;
inline constexpr std::int16_t RIGHT_MOUSE = 104;
inline constexpr std::int16_t MIDDLE_MOUSE = 105;
inline constexpr std::int16_t MOUSE_WHEEL_UP = 106;
inline constexpr std::int16_t MOUSE_WHEEL_DOWN = 107;
inline constexpr std::int16_t FIRST_PAD_CODE = 108;
inline constexpr std::int16_t DIGITAL_CODES = FIRST_PAD_CODE + PAD_COUNT * PAD_CODES;

// Absolute analog codes: the two mouse axes, then the axes of each pad.
inline constexpr std::int16_t MOUSE_X = 0;
inline constexpr std::int16_t MOUSE_Y = 1;
inline constexpr std::int16_t FIRST_PAD_AXIS = 2;
inline constexpr std::int16_t ANALOG_CODES = FIRST_PAD_AXIS + PAD_COUNT * PAD_AXES;

static_assert(PAD_CODES == 45 && DIGITAL_CODES == 288 && ANALOG_CODES == 18);

} // namespace quillon
