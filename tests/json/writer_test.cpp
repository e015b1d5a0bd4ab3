// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include "tests/scratch_folder.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <vector>

using namespace quillon;
using namespace json_testing;

namespace {

constexpr const char* SAMPLE = "{\"a\":1,\"b\":[1,2.5,\"x\"]}";

using Pieces = std::vector<std::string>;

int collect(void* state, const void* bytes, std::uint32_t count) {
    static_cast<Pieces*>(state)->emplace_back(static_cast<const char*>(bytes), count);
    return cson_OK;
}

std::string joined(const Pieces& pieces) {
    return std::accumulate(pieces.begin(), pieces.end(), std::string());
}

TEST(Write, Formats) {
    const struct {
        const char* name;
        const char* text;
        cson_write_options options;
        const char* written;
    } rows[] = {
        {"defaults", SAMPLE, {}, "{\"a\":1, \"b\":[1, 2.5, \"x\"]}"},
        {"two blanks",
         SAMPLE,
         {2},
         "{\n  \"a\":1,\n  \"b\":[\n    1,\n    2.5,\n    \"x\"\n  ]\n}"},
        {"a tab", SAMPLE, {1}, "{\n\t\"a\":1,\n\t\"b\":[\n\t\t1,\n\t\t2.5,\n\t\t\"x\"\n\t]\n}"},
        {"three blanks", "[1,2]", {3}, "[\n   1,\n   2\n]"},
        {"wide", "[[[1,2],3],4]", {40}, nullptr},
        {"single member", "{\"a\":1}", {2}, "{\"a\":1}"},
        {"single member broken",
         "{\"a\":[1]}",
         {1, 25, false, false, true},
         "{\n\t\"a\":[\n\t\t1\n\t]\n}"},
        {"empty", "[{},[]]", {1}, "[\n\t{},\n\t[]\n]"},
        {"newline", "[\"\"]", {0, 25, true}, "[\"\"]\n"},
        {"space after colon", "{\"a\":{\"b\":1}}", {0, 25, false, true}, "{\"a\": {\"b\": 1}}"},
        {"slashes", "[\"a/b\"]", {0, 25, false, false, false, true}, "[\"a\\/b\"]"},
        {"raw slash", "[\"a/b\"]", {}, "[\"a/b\"]"},
        {"depth", "[[1]]", {0, 1}, "[[1]]"},
        {"too deep", "[[[1]]]", {0, 1}, "code 2"},
        {"keywords", "[true,false,null,\"\"]", {}, "[true, false, null, \"\"]"},
        {"escapes", "[\"\\b\\t\\n\\f\\r\\\"\\\\\"]", {}, "[\"\\b\\t\\n\\f\\r\\\"\\\\\"]"},
        {"accents", "[\"h\\u00e9\\u20ac!\"]", {}, "[\"h\\u00e9\\u20ac!\"]"},
        {"beyond four digits", "[\"\\ud83d\\ude00\"]", {}, "code 2"},
        {"integers", "[-2147483648,2147483647]", {}, "[-2147483648, 2147483647]"},
    };

    for (const auto& row : rows) {
        const Value value = tree(row.text);
        const std::string written = text_of(value.get(), row.options);
        if (row.written != nullptr)
            EXPECT_EQ(row.written, written) << row.name;
        else
            EXPECT_EQ(text_of(value.get()), text_of(tree(written).get())) << row.name;
    }
}

// "%f" without the zeros at its end, but for one after the point.
std::string formatted(double number) {
    std::array<char, 400> text = {};
    std::string_view digits(text.data(), std::snprintf(text.data(), text.size(), "%f", number));
    while (digits.ends_with('0') && !digits.ends_with(".0"))
        digits.remove_suffix(1);
    return std::string(digits);
}

void expect_format(double number) {
    ASSERT_EQ(formatted(number), text_of(Value(cson_value_from_double(number)).get()));
}

// Over bit patterns, ties and numbers close to one.
TEST(Write, DoublesHaveTheFormatsBytes) {
    using Limits = std::numeric_limits<double>;
    for (const double number :
         {100.0, 1e-7, -1e-7, 1e20, 0x1p53, 0x1p53 - 1, 0.9999995, 5e-7, 0.99999949999, 4.9e-324,
          Limits::max(), Limits::infinity(), -Limits::quiet_NaN()})
        expect_format(number);
    std::mt19937_64 engine(3);
    for (int round = 0; round < 50000 && !HasFailure(); ++round) {
        const std::uint64_t bits = engine();
        const double tie = static_cast<double>(bits >> 40) / 128.0 + 0x1p-7;
        const double half = static_cast<double>(bits >> 50) + 0.5;
        const double few = (static_cast<double>(bits >> 60) + 0.5) / 1e6;
        for (const double number : {std::bit_cast<double>(bits),
                                    static_cast<double>(static_cast<std::int64_t>(bits)) * 0x1p-40,
                                    tie, std::nextafter(tie, 0.0), std::nextafter(tie, 1e9),
                                    static_cast<double>(bits >> 44) / 1e6, half / 1e6,
                                    few + static_cast<double>(bits & 7) * 1e-20})
            expect_format(number);
    }
}

TEST(Write, StringsAreLenient) {
    const struct {
        std::string_view text;
        const char* written;
        int code;
    } rows[] = {{"a\x01z", "\"a\x01z\"", cson_OK},
                {std::string_view("ab\0cd", 5), "\"ab\"", cson_OK},
                {"\x80\xC3", "\"\x80\xC3\"", cson_OK},
                {"\xC0\x80", "\"\\ufffd\"", cson_OK},
                {"12345678\xC3\xA9"
                 "12345678/",
                 "\"12345678\\u00e912345678\\/\"", cson_OK},
                {"a\xF0\x9F\x98\x80z", "\"a", cson_RangeError}};

    for (const auto& row : rows) {
        Pieces pieces;
        const auto length = static_cast<std::uint32_t>(row.text.size());
        EXPECT_EQ(row.code, cson_write_text(row.text.data(), length, true, collect, &pieces));
        EXPECT_EQ(row.written, joined(pieces));
    }
}

TEST(Write, PiecesOfASink) {
    Pieces pieces;
    const Value value = tree("{\"ab\":[true,12,\"\\u00e9\"]}");
    cson_write_options options;
    options.add_newline = true;
    EXPECT_EQ(cson_OK, cson_write(value.get(), collect, &pieces, &options));
    const Pieces expected = {"{",  "\"", "a", "b",  "\"",      ":",  "[", "true", ",", " ",
                             "12", ",",  " ", "\"", "\\u00e9", "\"", "]", "}",    "\n"};
    EXPECT_EQ(expected, pieces);
    const auto refuse = [](void* state, const void*, std::uint32_t) -> int {
        return --*static_cast<int*>(state) == 0 ? cson_NYIError : cson_OK;
    };
    for (int allowed = 1; allowed <= static_cast<int>(expected.size()); ++allowed) {
        int left = allowed;
        EXPECT_EQ(cson_NYIError, cson_write(value.get(), refuse, &left, &options));
        EXPECT_EQ(0, left) << "went on after a refusal";
    }
}

// A string of any bytes, some of which can't be written, in an array with a random tree.
Value tree_with_bytes(std::mt19937& engine) {
    Value value(cson_value_make_array());
    std::string bytes;
    for (auto left = engine() % 40; left != 0; --left)
        bytes += static_cast<char>(engine() % 3 != 0 ? 'a' : engine() % 0x100);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    cson_array* array = cson_value_array(value.get());
    cson_array_push(array, tree(random_json(engine, 2)).release());
    cson_array_push(array, cson_value_from_text(bytes.data(), length));
    return value;
}

// A buffer is added to, and grows as if every piece were appended on its own.
TEST(Write, BufferFollowsThePieces) {
    std::mt19937 engine(5);
    for (int round = 0; round < 2000; ++round) {
        const Value value = tree_with_bytes(engine);
        cson_write_options options;
        options.indentation = static_cast<std::uint8_t>(engine() % 3);
        options.space_after_colon = engine() % 2 != 0;
        options.escape_slashes = engine() % 2 != 0;
        Pieces pieces;
        const int code = cson_write(value.get(), collect, &pieces, &options);
        cson_buffer buffer;
        const auto start = engine() % 2 != 0 ? engine() % 40 : 5000;
        cson_buffer_reserve_bytes(&buffer, static_cast<std::uint32_t>(start));
        buffer.used = cson_buffer_fill_bytes(&buffer, '<') / 3;
        cson_buffer expected = buffer;
        for (const std::string& piece : pieces) {
            expected.used += static_cast<std::uint32_t>(piece.size());
            if (expected.used >= expected.capacity) {
                expected.capacity = expected.used * 2;
                ++expected.times_expanded;
            }
        }
        const std::string text = std::string(buffer.used, '<') + joined(pieces);
        ASSERT_EQ(code, cson_write_buffer(value.get(), &buffer, &options));
        ASSERT_EQ(text, std::string(reinterpret_cast<char*>(buffer.mem), buffer.used));
        EXPECT_EQ(expected.capacity, buffer.capacity);
        EXPECT_EQ(expected.times_expanded, buffer.times_expanded);
        EXPECT_TRUE(code != cson_OK || buffer.mem[buffer.used] == 0);
        cson_buffer_reserve_bytes(&buffer, 0);
    }
}

TEST(Write, FilesEndInALineFeedByDefault) {
    const std::string path = testing::TempDir() + "quillon_json_writer_test.json";
    const Value value = tree(SAMPLE);
    ASSERT_EQ(cson_OK, cson_write_path(value.get(), path.c_str(), nullptr));
    EXPECT_EQ("{\"a\":1, \"b\":[1, 2.5, \"x\"]}\n", text_of(std::filesystem::path(path)));
    std::filesystem::remove(path);
    EXPECT_EQ(cson_IOError, cson_write_path(value.get(), "no/such/folder/file", nullptr));
#if !defined(_WIN32)
    EXPECT_EQ(cson_IOError, cson_write_path(value.get(), "/dev/full", nullptr));
#endif
}

TEST(Write, ArgumentsAreChecked) {
    cson_buffer buffer;
    Pieces pieces;
    const cson_write_options options;
    EXPECT_EQ(cson_ArgError, cson_write(nullptr, collect, &pieces, nullptr));
    EXPECT_EQ(cson_ArgError, cson_write(cson_value_true(), nullptr, nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_write_buffer(nullptr, &buffer, nullptr));
    EXPECT_EQ(cson_ArgError, cson_write_stream(cson_value_true(), nullptr, nullptr));
    EXPECT_EQ(cson_TypeError, cson_write_array(cson_value_true(), collect, &pieces, &options, 0));
    EXPECT_EQ(cson_ArgError, cson_write_object(cson_value_true(), collect, &pieces, nullptr, 0));
    const Value array = tree("[1]");
    EXPECT_EQ(cson_RangeError, cson_write_array(array.get(), collect, &pieces, &options, 26));
    EXPECT_TRUE(pieces.empty());
}

TEST(Write, ContainersBelowTheTop) {
    const cson_write_options options = {1};
    const Value array = tree("[1,[],{\"a\":2,\"b\":[3,4]}]");
    const cson_value* object = cson_array_item(cson_value_array(array.get()), 2);
    Pieces pieces;
    EXPECT_EQ(cson_OK, cson_write_array(array.get(), collect, &pieces, &options, 2));
    EXPECT_EQ("[\n\t\t\t1,\n\t\t\t[],\n\t\t\t{\n\t\t\t\t\"a\":2,\n\t\t\t\t\"b\":[\n"
              "\t\t\t\t\t3,\n\t\t\t\t\t4\n\t\t\t\t]\n\t\t\t}\n\t\t]",
              joined(pieces));
    EXPECT_EQ(cson_RangeError, cson_write_object(object, collect, &pieces, &options, 25));
    EXPECT_EQ(cson_OK, cson_write_object(object, collect, &pieces, &options, 24));
}

} // namespace
