// A double as text, in the form "%f".
#pragma once

#include <array>
#include <cstdint>

namespace quillon {

// Room for the longest double of that form, a sign and six decimals.
using cson_double_block = std::array<char, 400>;

// Writes the very bytes that "%f" gives under the current locale, whose decimal point is `point`,
// and returns how many; not terminated. 0 where the format gives nothing.
//
// Works in integers: below 2^53 the part behind the point times 10^6 is exact in 84 bits, and
// rounds half to even. All other numbers, and those too close to call, go through the format
// itself.
std::uint32_t cson_format_double(cson_double_block& block, double number, const char* point);

} // namespace quillon
