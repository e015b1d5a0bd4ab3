// SPDX-License-Identifier: MIT
// Numbers from text and into text.
#pragma once

#include "quillon/json/swar.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <system_error>

namespace quillon::json {

// The powers of ten that a double holds exactly.
inline constexpr std::array<double, 23> POWERS_OF_TEN = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// True if eight bytes are digits: each byte is at most 9 once the bits of '0' are off.
inline bool are_digits(std::uint64_t bytes) {
    const std::uint64_t values = bytes ^ ONES * '0';
    return ((values | (values + ONES * (0x80 - 10))) & HIGH_BITS) == 0;
}

// The number that eight digits make, the first of them in the lowest byte: pairs, then fours, then
// all are put together side by side, three multiplications in place of eight.
inline std::uint64_t eight_digits(std::uint64_t bytes) {
    bytes = (bytes & ONES * 0x0F) * (1 + (10 << 8)) >> 8;
    bytes = (bytes & 0x00FF00FF00FF00FF) * (1 + (100 << 16)) >> 16;
    return (bytes & 0x0000FFFF0000FFFF) * (1 + (std::uint64_t{10000} << 32)) >> 32;
}

// A number of a JSON text, taken apart.
class NumberToken {
public:
    // False for what doesn't parse. The caller checks whether the next byte may follow.
    //
    // Before `limit` there must be a byte that can't be part of a number.
    bool scan(const unsigned char* at, const unsigned char* limit) {
        begin = at;
        negative = *at == '-';
        const unsigned char* integer = at + (negative ? 1 : 0);
        at = take_digits(integer);
        const bool leading_zero = *integer == '0';
        if (at == integer || (leading_zero && at - integer > 1))
            return false;
        digits = static_cast<std::size_t>(at - integer);
        if (*at == '.') {
            is_float = true;
            const unsigned char* fraction = at + 1;
            at = take_digits(take_eights(fraction, limit));
            decimals = static_cast<std::size_t>(at - fraction);
            digits += decimals;
        }
        if ((*at | 0x20) == 'e') {
            at = leading_zero && !is_float ? nullptr : skip_exponent(at + 1);
            is_float = has_exponent = true;
        }
        end = at;
        return at != nullptr;
    }

    // The nearest of 32 bits.
    std::int32_t to_integer() const {
        constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
        const bool is_large = digits > EXACT_DIGITS || mantissa > largest;
        if (is_large)
            return static_cast<std::int32_t>(negative ? -largest - 1 : largest);
        return static_cast<std::int32_t>(signed_mantissa());
    }

    // The nearest double. False, for strtod to decide, beyond the range of doubles.
    //
    // A quotient of two numbers that a double holds exactly is rounded once, as it should be.
    // Source: W. D. Clinger, "How to read floating point numbers accurately", 1990.
    bool to_double(double& number) const {
        constexpr std::uint64_t largest = std::uint64_t{1} << 53;
        if (!has_exponent && digits <= EXACT_DIGITS && mantissa <= largest) {
            number = static_cast<double>(signed_mantissa()) / POWERS_OF_TEN[decimals];
            return true;
        }
        const char* last = reinterpret_cast<const char*>(end);
        const auto result = std::from_chars(reinterpret_cast<const char*>(begin), last, number);
        return result.ec == std::errc() && result.ptr == last;
    }

    const unsigned char* end = nullptr; // after the last byte
    bool is_float = false;

private:
    static constexpr std::size_t EXACT_DIGITS = 19; // of which every number fits the mantissa

    static bool is_digit(unsigned char c) { return static_cast<unsigned char>(c - '0') <= 9; }

    // Without a branch, as signs come at random.
    std::int64_t signed_mantissa() const {
        const std::int64_t sign = negative ? -1 : 0;
        return (static_cast<std::int64_t>(mantissa) ^ sign) - sign;
    }

    const unsigned char* take_eights(const unsigned char* at, const unsigned char* limit) {
        for (; limit - at >= 8; at += 8) {
            const std::uint64_t bytes = load_text(at);
            if (!are_digits(bytes))
                break;
            mantissa = mantissa * 100000000 + eight_digits(bytes);
        }
        return at;
    }

    const unsigned char* take_digits(const unsigned char* at) {
        for (; is_digit(*at); ++at)
            mantissa = mantissa * 10 + (*at - std::uint64_t{'0'});
        return at;
    }

    static const unsigned char* skip_exponent(const unsigned char* at) {
        if (*at == '+' || *at == '-')
            ++at;
        const unsigned char* first = at;
        while (is_digit(*at))
            ++at;
        return at != first ? at : nullptr;
    }

    const unsigned char* begin = nullptr;
    std::uint64_t mantissa = 0; // of all digits, while these are no more than EXACT_DIGITS
    std::size_t digits = 0;
    std::size_t decimals = 0;
    bool negative = false;
    bool has_exponent = false;
};

// Bytes that must be free after `at` for any number but a double of 2^53 and more, and for a point
// of up to 8 bytes.
inline constexpr std::size_t NUMBER_ROOM = 48;

// Bytes that must be free for any double at all.
inline constexpr std::size_t DOUBLE_ROOM = 400;

// Both write from `at` on, may leave bytes after the text, and return its end.
unsigned char* put_integer(unsigned char* at, std::int32_t number);

// Exactly the bytes of "%f" under the current locale, whose decimal point is `point`, without the
// zeros at the end except one after a ".". Null where only the format itself can decide: for 2^53
// and more, and for a rounding that depends on bits that were cut off.
//
// Works in integers: the fraction times 10^6 is exact in 84 bits, and rounds half to even.
unsigned char* put_double(unsigned char* at, double number, std::string_view point);

// The same by the format, for any double, into DOUBLE_ROOM bytes. Null if the format fails.
unsigned char* put_formatted(unsigned char* at, double number);

} // namespace quillon::json
