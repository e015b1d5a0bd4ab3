// SPDX-License-Identifier: MIT
#include "quillon/json/number.h"

#include "quillon/json/swar.h"

#include <algorithm>
#include <bit>
#include <cstdio>

namespace quillon::json {
namespace {

constexpr std::uint64_t MILLION = 1000000;
constexpr std::uint64_t TEN_TO_8 = 100000000;
constexpr std::uint64_t HALF = std::uint64_t{1} << 63;

// The eight digits of a number below 10^8, a byte each, the first in the lowest: fours, then pairs,
// then digits are split side by side.
//
// 10486 / 2^20 and 103 / 2^10 are 1/100 and 1/10, rounded up so little that the quotients of all
// numbers below 10^4 and 100 are exact.
std::uint64_t digits_of(std::uint64_t number) {
    const std::uint64_t fours = number / 10000 | number % 10000 << 32;
    const std::uint64_t hundreds = fours * 10486 >> 20 & 0x0000007F0000007F;
    const std::uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    const std::uint64_t tens = pairs * 103 >> 10 & 0x000F000F000F000F;
    return tens | (pairs - tens * 10) << 8;
}

void store_digits(unsigned char* at, std::uint64_t digits) {
    store_text(at, digits | ONES * '0');
}

// Without leading zeros.
unsigned char* put_below_10_to_8(unsigned char* at, std::uint64_t number) {
    constexpr std::uint64_t last_digit = std::uint64_t{1} << 56;
    const std::uint64_t digits = digits_of(number);
    const auto zeros = static_cast<unsigned>(std::countr_zero(digits | last_digit)) / 8;
    store_digits(at, digits >> 8 * zeros);
    return at + 8 - zeros;
}

unsigned char* put_long(unsigned char* at, std::uint64_t number) {
    at = put_below_10_to_8(at, number / TEN_TO_8);
    store_digits(at, digits_of(number % TEN_TO_8));
    return at + 8;
}

// A number below 10^16.
unsigned char* put_unsigned(unsigned char* at, std::uint64_t number) {
    return number < TEN_TO_8 ? put_below_10_to_8(at, number) : put_long(at, number);
}

// A sign comes at random in many documents, and goes without a branch.
unsigned char* put_sign(unsigned char* at, bool negative) {
    *at = '-';
    return at + (negative ? 1 : 0);
}

// A double below 2^53 as a whole number and 64 bits of fraction.
struct FixedPoint {
    std::uint64_t whole;
    std::uint64_t fraction;
    bool exact; // no bits after those are lost
};

FixedPoint to_fixed_point(std::uint64_t bits) {
    const std::uint64_t mantissa = (bits & ((HALF >> 11) - 1)) | HALF >> 11;
    const auto below_point = 1075 - static_cast<unsigned>(bits >> 52 & 0x7FF);
    if (below_point < 64)
        return {mantissa >> below_point, mantissa << 1 << (63 - below_point), true};
    const unsigned lost = std::min(below_point - 64, 63u);
    return {0, mantissa >> lost, (mantissa & ((std::uint64_t{1} << lost) - 1)) == 0};
}

// The first six decimals of a fraction, rounded half to even; false where lost bits might tip the
// balance. A carry makes a whole million.
bool round_to_millionths(const FixedPoint& number, std::uint64_t& millionths) {
    const std::uint64_t low = (number.fraction & 0xFFFFFFFF) * MILLION;
    const std::uint64_t high = (number.fraction >> 32) * MILLION + (low >> 32);
    const std::uint64_t rest = high << 32 | (low & 0xFFFFFFFF); // of 2^64, after the six decimals
    if (!number.exact && (rest - (HALF - MILLION) <= MILLION || rest > ~MILLION))
        return false;
    millionths = high >> 32;
    millionths += rest > HALF - (millionths & 1) ? 1 : 0;
    return true;
}

// Zeros at the end are cut off, but for the one after a ".".
unsigned char* put_decimals(unsigned char* at, std::uint64_t millionths, bool keeps_one) {
    const std::uint64_t digits = digits_of(millionths) >> 16;
    const auto bits = static_cast<unsigned>(std::bit_width(digits));
    store_digits(at, digits);
    return at + std::max((bits + 7) / 8, keeps_one ? 1u : 0u);
}

} // namespace

unsigned char* put_integer(unsigned char* at, std::int32_t number) {
    const auto magnitude = static_cast<std::uint32_t>(number);
    return put_unsigned(put_sign(at, number < 0), number < 0 ? 0u - magnitude : magnitude);
}

unsigned char* put_double(unsigned char* at, double number, std::string_view point) {
    const auto bits = std::bit_cast<std::uint64_t>(number);
    constexpr std::uint64_t beyond = std::uint64_t{1075 + 1} << 52; // 2^53 as bits
    if ((bits & ~HALF) >= beyond || point.size() > 8)
        return nullptr;
    const FixedPoint fixed = to_fixed_point(bits);
    std::uint64_t millionths = 0;
    if (!round_to_millionths(fixed, millionths))
        return nullptr;
    at = put_sign(at, bits >= HALF);
    at = put_unsigned(at, fixed.whole + (millionths >= MILLION ? 1 : 0));
    if (point.size() == 1)
        *at = static_cast<unsigned char>(point.front());
    else
        copy_bytes(at, point.data(), point.size());
    return put_decimals(at + point.size(), millionths >= MILLION ? 0 : millionths, point == ".");
}

unsigned char* put_formatted(unsigned char* at, double number) {
    char* text = reinterpret_cast<char*>(at);
    int length = std::snprintf(text, DOUBLE_ROOM, "%f", number);
    if (length <= 0)
        return nullptr;
    while (length > 1 && text[length - 1] == '0' && text[length - 2] != '.')
        --length;
    return at + length;
}

} // namespace quillon::json
