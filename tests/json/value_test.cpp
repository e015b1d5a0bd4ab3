// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include "tracking_allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace quillon;
using namespace json_testing;

namespace {

std::uint32_t size(std::string_view text) {
    return static_cast<std::uint32_t>(text.size());
}

TEST(Value, OwnersAreCounted) {
    const TrackingAllocator allocator;
    EXPECT_EQ(0u, cson_value_release(cson_value_from_int(7)));
    EXPECT_EQ(0u, allocator.blocks()) << "released at a count of 0";
    cson_value* value = cson_value_from_int(7);
    value->refcount = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(cson_RangeError, cson_value_retain(value));
    value->refcount = 1;
    EXPECT_EQ(cson_OK, cson_value_retain(value));
    EXPECT_EQ(1u, cson_value_release(value));
    EXPECT_EQ(0u, cson_value_release(value));
    EXPECT_EQ(cson_ArgError, cson_value_retain(nullptr));
    EXPECT_EQ(0u, cson_value_release(nullptr));
}

TEST(Value, CommonValuesNeedNoMemory) {
    const TrackingAllocator allocator;
    cson_value* const shared[] = {cson_value_true(),           cson_value_false(),
                                  cson_value_null_constant(),  cson_value_from_int(0),
                                  cson_value_from_double(0.0), cson_value_from_double(-0.0),
                                  cson_value_from_text("", 0), cson_value_from_text("\0abcd", 5)};
    for (cson_value* value : shared) {
        EXPECT_TRUE(cson_value_is_shared(value));
        EXPECT_EQ(cson_OK, cson_value_retain(value));
        EXPECT_EQ(0u, value->refcount);
        EXPECT_EQ(0u, cson_value_release(value));
        cson_value_clear(value);
        EXPECT_FALSE(cson_value_is_undefined(value));
    }
    EXPECT_EQ(0u, allocator.blocks());
    cson_string* empty = cson_string_make(nullptr, 3);
    EXPECT_EQ(shared[6], cson_value_of_string(empty));
    EXPECT_STREQ("", cson_string_text(empty));
}

TEST(Value, ClearingEmptiesAndKeepsTheCount) {
    EXPECT_EQ(nullptr, cson_value_new(cson_kind_boolean, 0));
    EXPECT_EQ(nullptr, cson_value_new(8, 0));
    const TrackingAllocator allocator;
    for (std::uint32_t kind = cson_kind_integer; kind <= cson_kind_object; ++kind) {
        const Value value(cson_value_new(kind, 3));
        EXPECT_EQ(kind, value->api->kind);
        EXPECT_EQ(value.get() + 1, value->value);
        if (cson_array* array = cson_value_array(value.get()); array != nullptr)
            cson_array_push(array, tree("[[1,{\"a\":\"text\"}]]").release());
        if (cson_object* object = cson_value_object(value.get()); object != nullptr)
            cson_object_put_text(object, "key", tree("{\"a\":[2.5]}").release());
        value->refcount = 2;
        cson_value_clear(value.get());
        EXPECT_TRUE(cson_value_is_undefined(value.get()));
        EXPECT_EQ(nullptr, value->value);
        EXPECT_EQ(2u, value->refcount);
        EXPECT_EQ(1u, allocator.blocks()) << "all it held is freed";
        value->refcount = 0;
    }
}

TEST(Value, Conversions) {
    const double nan = std::nan("");

    const struct {
        const char* name;
        Value value;
        bool as_bool;
        std::int32_t as_int;
        int double_code;
        double as_double;
    } rows[] = {
        {"null", Value(cson_value_null_constant()), false, 0, cson_OK, 0.0},
        {"true", Value(cson_value_true()), true, 1, cson_OK, 1.0},
        {"false", Value(cson_value_false()), false, 0, cson_OK, 0.0},
        {"integer", Value(cson_value_from_int(-5)), true, -5, cson_OK, -5.0},
        {"zero", Value(cson_value_from_int(0)), false, 0, cson_OK, 0.0},
        {"double", Value(cson_value_from_double(-2.9)), true, -2, cson_OK, -2.9},
        {"huge", Value(cson_value_from_double(1e300)), true, 2147483647, cson_OK, 1e300},
        {"low", Value(cson_value_from_double(-1e300)), true, -2147483647 - 1, cson_OK, -1e300},
        {"string", Value(cson_value_from_text("7", 1)), true, 0, cson_TypeError, 0.0},
        {"empty", Value(cson_value_from_text("", 0)), false, 0, cson_TypeError, 0.0},
        {"array", Value(cson_value_make_array()), true, 0, cson_TypeError, 0.0},
    };

    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        bool flag = !row.as_bool;
        std::int32_t integer = 99;
        double number = 99;
        EXPECT_EQ(cson_OK, cson_value_to_bool(row.value.get(), &flag));
        EXPECT_EQ(cson_OK, cson_value_to_int(row.value.get(), &integer));
        EXPECT_EQ(row.double_code, cson_value_to_double(row.value.get(), &number));
        EXPECT_EQ(row.as_bool, flag);
        EXPECT_EQ(row.as_int, integer);
        EXPECT_EQ(row.as_double, number);
        EXPECT_EQ(cson_OK, cson_value_to_int(row.value.get(), nullptr));
    }
    const Value not_a_number(cson_value_from_double(nan));
    EXPECT_TRUE(cson_value_bool(not_a_number.get()));
    EXPECT_EQ(0, cson_value_int(not_a_number.get()));
    EXPECT_EQ(cson_ArgError, cson_value_to_bool(nullptr, nullptr));
}

TEST(Value, PayloadsByKind) {
    const Value text(cson_value_from_text("abc", 3));
    cson_string* string = nullptr;
    cson_array* array = nullptr;
    EXPECT_EQ(cson_OK, cson_value_as_string(text.get(), &string));
    EXPECT_STREQ("abc", cson_string_text(string));
    EXPECT_EQ(cson_ArgError, cson_value_as_string(text.get(), nullptr));
    EXPECT_EQ(cson_TypeError, cson_value_as_array(text.get(), &array));
    EXPECT_EQ(cson_TypeError, cson_value_as_array(text.get(), nullptr));
    EXPECT_EQ(cson_ArgError, cson_value_as_object(nullptr, nullptr));
    EXPECT_EQ(nullptr, cson_value_object(text.get()));
    EXPECT_EQ(nullptr, cson_value_of_array(nullptr));
}

TEST(String, Comparison) {
    const struct {
        const char* string; // null for a null string
        const char* text;
        std::uint32_t length;
        int sign;
    } rows[] = {{nullptr, nullptr, 0, 0}, {nullptr, "a", 1, 1},    {"a", nullptr, 0, -1},
                {"a", "", 0, 1},          {"", "", 0, 0},          {"", "a", 1, -1},
                {"abc", "abd", 3, -1},    {"b", "abc", 3, 1},      {"abc", "abcd", 4, -1},
                {"abcd", "abc", 3, 1},    {"abc", "abcdef", 3, 0}, {"\xC3", "a", 1, 1},
                {"abc", "abd", 2, -1},    {"abc", "ab", 9, 1}};

    for (const auto& row : rows) {
        cson_string* string =
            row.string != nullptr ? cson_string_make(row.string, size(row.string)) : nullptr;
        const int order = cson_string_compare_bytes(string, row.text, row.length);
        EXPECT_EQ(row.sign, (order > 0) - (order < 0))
            << (row.string != nullptr ? row.string : "null") << " " << row.length;
        cson_release_string(string);
    }
}

TEST(Utf8, LenientDecoding) {
    const struct {
        std::string_view bytes;
        std::uint32_t code_point;
        std::uint32_t consumed;
    } rows[] = {{"A", 'A', 1},
                {"\x80", 0x80, 1},
                {"\xC3\xA9", 0xE9, 2},
                {"\xE2\x82\xAC!", 0x20AC, 3},
                {"\xF0\x9F\x98\x80", 0x1F600, 4},
                {"\xC0\x80", 0xFFFD, 2},
                {"\xED\xA0\x80", 0xFFFD, 3},
                {"\xEF\xBF\xBF", 0xFFFD, 3},
                {"\xC3", 0xFFFD, 1},
                {"\xC3\xA9\xA9\xA9", (((0xE9u << 6) + 0x29) << 6) + 0x29, 4},
                {"\xFF\x81", 0xFFFD, 2},
                {"\xFE\x82\x80", 0x80, 3}};

    for (const auto& row : rows) {
        const auto* begin = reinterpret_cast<const unsigned char*>(row.bytes.data());
        const unsigned char* after = nullptr;
        EXPECT_EQ(row.code_point, cson_utf8_next(begin, begin + row.bytes.size(), &after));
        EXPECT_EQ(row.consumed, after - begin);
    }
    cson_string* string = cson_string_make("h\xC3\xA9\xE2\x82\xACllo\0x", 11);
    EXPECT_EQ(6u, cson_string_chars(string));
    EXPECT_EQ(11u, cson_string_size(string));
    cson_release_string(string);
}

TEST(Buffer, ReserveIsExact) {
    cson_buffer buffer;
    EXPECT_EQ(cson_ArgError, cson_buffer_reserve_bytes(nullptr, 1));
    EXPECT_EQ(0u, cson_buffer_fill_bytes(&buffer, 1));
    EXPECT_EQ(cson_OK, cson_buffer_reserve_bytes(&buffer, 5));
    EXPECT_EQ(5u, cson_buffer_fill_bytes(&buffer, 'x'));
    buffer.used = 2;
    EXPECT_EQ(cson_OK, cson_buffer_reserve_bytes(&buffer, 9));
    EXPECT_EQ(cson_OK, cson_buffer_reserve_bytes(&buffer, 3));
    EXPECT_EQ(9u, buffer.capacity);
    EXPECT_EQ(2u, buffer.times_expanded);
    EXPECT_EQ("xx" + std::string(7, 0), std::string(reinterpret_cast<char*>(buffer.mem), 9));
    EXPECT_EQ(cson_OK, cson_buffer_reserve_bytes(&buffer, 0));
    EXPECT_EQ(0u, buffer.capacity + buffer.used + buffer.times_expanded);
    EXPECT_EQ(nullptr, buffer.mem);
}

// No two blocks are equal, and what the buffer held before is never zero.
TEST(Buffer, ReadsBlocksUntilAShortOne) {
    std::string source;
    while (source.size() < 10000)
        source += std::to_string(source.size());
    const auto reader = [](void* state, void* destination, std::uint32_t* count) -> int {
        EXPECT_EQ(4096u, *count);
        auto& rest = *static_cast<std::string_view*>(state);
        *count = size(rest.substr(0, *count));
        rest.copy(static_cast<char*>(destination), *count);
        rest.remove_prefix(*count);
        return cson_OK;
    };
    for (const std::uint32_t before : {0u, 3u, 20000u})
        for (const std::uint32_t total : {1u, 4096u, 10000u, 0u}) {
            cson_buffer buffer;
            cson_buffer_reserve_bytes(&buffer, before);
            buffer.used = cson_buffer_fill_bytes(&buffer, 'x');
            std::string_view rest = std::string_view(source).substr(0, total);
            const std::string expected(rest);
            EXPECT_EQ(cson_OK, cson_buffer_read_from(&buffer, reader, &rest));
            EXPECT_EQ(expected, std::string(reinterpret_cast<char*>(buffer.mem), buffer.used));
            EXPECT_EQ(std::max(before, total + 1), buffer.capacity);
            EXPECT_TRUE(total == 0 || buffer.mem[total] == 0) << total;
            cson_buffer_reserve_bytes(&buffer, 0);
        }
    cson_buffer buffer;
    EXPECT_EQ(cson_ArgError, cson_buffer_read_from(&buffer, nullptr, nullptr));
    const auto failing = [](void*, void*, std::uint32_t*) -> int { return cson_NYIError; };
    EXPECT_EQ(cson_NYIError, cson_buffer_read_from(&buffer, failing, nullptr));
}

} // namespace
