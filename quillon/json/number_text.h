// Numbers as text, straight into memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillon {

// Bytes that must be free behind `at` for any number but a double of 2^53 and more, and for a point
// of up to 8 bytes.
inline constexpr std::size_t cson_number_room = 48;

// Bytes that must be free for any double at all.
inline constexpr std::size_t cson_double_room = 400;

// Both write from `at` on, may leave bytes behind the text, and return its end.
unsigned char* cson_put_integer(unsigned char* at, std::int32_t number);

// The very bytes that "%f" gives under the current locale, whose decimal point is `point`, up to
// the last digit that isn't 0, and one behind a ".". Null where that needs the format itself: for
// 2^53 and more, and for what is too close to call.
//
// Works in integers: the part behind the point times 10^6 is exact in 84 bits, and rounds half to
// even.
unsigned char* cson_put_double(unsigned char* at, double number, std::string_view point);

// The same by the format, for any double, into `cson_double_room` bytes. Null where it gives
// nothing.
unsigned char* cson_put_formatted(unsigned char* at, double number);

} // namespace quillon
