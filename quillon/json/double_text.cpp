#include "quillon/json/double_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace quillon {
namespace {

constexpr std::uint64_t million = 1000000;
constexpr std::uint64_t half = std::uint64_t{1} << 63;

std::uint32_t format_slowly(cson_double_block& block, double number) {
    const int length = std::snprintf(block.data(), block.size(), "%f", number);
    return length > 0 ? static_cast<std::uint32_t>(length) : 0;
}

// The first six decimals of a fraction, rounded half to even; false where the bits that the
// fixed-point form has lost might tip the balance. A carry gives a whole million.
bool round_to_millionths(double fraction, std::uint64_t& millionths) {
    const double scaled = fraction * 0x1p64; // exact
    const auto fixed = static_cast<std::uint64_t>(scaled);
    const std::uint64_t low = (fixed & 0xFFFFFFFF) * million;
    const std::uint64_t high = (fixed >> 32) * million + (low >> 32);
    const std::uint64_t rest = high << 32 | (low & 0xFFFFFFFF); // of 2^64, behind the six decimals
    millionths = high >> 32;
    const bool exact = static_cast<double>(fixed) == scaled;
    const bool close = rest - (half - million) <= million || rest > ~million;
    if (!exact && close)
        return false;
    const bool up = rest > half || (rest == half && millionths % 2 != 0);
    millionths += up ? 1 : 0;
    return true;
}

char* write_six_digits(char* text, std::uint64_t millionths) {
    for (int i = 5; i >= 0; --i) {
        text[i] = static_cast<char>('0' + millionths % 10);
        millionths /= 10;
    }
    return text + 6;
}

} // namespace

std::uint32_t cson_format_double(cson_double_block& block, double number, const char* point) {
    const double magnitude = std::fabs(number);
    if (!(magnitude < 0x1p53))
        return format_slowly(block, number);
    auto whole = static_cast<std::uint64_t>(magnitude);
    std::uint64_t millionths = 0;
    if (!round_to_millionths(magnitude - static_cast<double>(whole), millionths))
        return format_slowly(block, number);
    whole += millionths / million;
    char* at = block.data();
    if (std::signbit(number))
        *at++ = '-';
    at = std::to_chars(at, block.data() + block.size(), whole).ptr;
    const std::size_t point_length = std::strlen(point);
    std::memcpy(at, point, point_length);
    at = write_six_digits(at + point_length, millionths % million);
    return static_cast<std::uint32_t>(at - block.data());
}

} // namespace quillon
