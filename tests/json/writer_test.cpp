#include "json_testing.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

using namespace quillon;
using namespace json_testing;

namespace {

constexpr const char* sample = "{\"a\":1,\"b\":[1,2.5,\"x\"]}";

int collect(void* state, const void* bytes, std::uint32_t count) {
    static_cast<std::vector<std::string>*>(state)->emplace_back(static_cast<const char*>(bytes),
                                                                count);
    return cson_OK;
}

int append(void* state, const void* bytes, std::uint32_t count) {
    static_cast<std::string*>(state)->append(static_cast<const char*>(bytes), count);
    return cson_OK;
}

TEST(Write, Formats) {
    const struct {
        const char* name;
        const char* text;
        cson_write_options options;
        const char* written;
    } rows[] = {
        {"defaults", sample, {}, "{\"a\":1, \"b\":[1, 2.5, \"x\"]}"},
        {"two blanks",
         sample,
         {2},
         "{\n  \"a\":1,\n  \"b\":[\n    1,\n    2.5,\n    \"x\"\n  ]\n}"},
        {"a tab", sample, {1}, "{\n\t\"a\":1,\n\t\"b\":[\n\t\t1,\n\t\t2.5,\n\t\t\"x\"\n\t]\n}"},
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

// Over bit patterns, ties and numbers close to one.
TEST(Write, DoublesHaveTheFormatsBytes) {
    std::mt19937_64 engine(3);
    std::vector<double> numbers = {100.0,
                                   1.5,
                                   1e-7,
                                   -1e-7,
                                   1e20,
                                   0x1p53,
                                   0x1p53 - 1,
                                   0.9999995,
                                   0.99999949999,
                                   5e-7,
                                   4.9e-324,
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::quiet_NaN()};
    for (int round = 0; round < 50000; ++round) {
        const std::uint64_t bits = engine();
        const double tie = static_cast<double>(bits >> 40) / 128.0 + 0x1p-7;
        const double half = static_cast<double>(bits >> 50) + 0.5;
        const double few = (static_cast<double>(bits >> 60) + 0.5) / 1e6;
        for (const double number : {std::bit_cast<double>(bits),
                                    static_cast<double>(static_cast<std::int64_t>(bits)) * 0x1p-40,
                                    tie, std::nextafter(tie, 0.0), std::nextafter(tie, 1e9),
                                    static_cast<double>(bits >> 44) / 1e6, half / 1e6,
                                    few + static_cast<double>(bits & 7) * 1e-20})
            numbers.push_back(number);
    }
    for (const double number : numbers)
        ASSERT_EQ(formatted(number), text_of(Value(cson_value_from_double(number)).get()));
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
        std::string written;
        EXPECT_EQ(row.code,
                  cson_write_text(row.text.data(), static_cast<std::uint32_t>(row.text.size()),
                                  true, append, &written));
        EXPECT_EQ(row.written, written);
    }
}

TEST(Write, PiecesOfASink) {
    std::vector<std::string> pieces;
    const Value value = tree("{\"ab\":[true,12,\"\\u00e9\"]}");
    cson_write_options options;
    options.add_newline = true;
    EXPECT_EQ(cson_OK, cson_write(value.get(), collect, &pieces, &options));
    const std::vector<std::string> expected = {"{",       "\"", "a", "b",  "\"", ":", "[",
                                               "true",    ",",  " ", "12", ",",  " ", "\"",
                                               "\\u00e9", "\"", "]", "}",  "\n"};
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

// A tree with a string of any bytes, some of which can't be written.
Value tree_with_bytes(std::mt19937& engine) {
    Value value = random_tree(engine, 2);
    std::string bytes;
    for (auto left = engine() % 40; left != 0; --left)
        bytes += static_cast<char>(engine() % 3 != 0 ? 'a' : engine() % 0x100);
    cson_value* string =
        cson_value_from_text(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    if (cson_value_is_array(value.get()))
        cson_array_push(cson_value_array(value.get()), string);
    else
        cson_object_put_text(cson_value_object(value.get()), "bytes", string);
    return value;
}

// A buffer gets the bytes of the pieces, and grows as if every piece were appended on its own.
TEST(Write, BufferFollowsThePieces) {
    std::mt19937 engine(5);
    for (int round = 0; round < 2000; ++round) {
        const Value value = tree_with_bytes(engine);
        cson_write_options options;
        options.indentation = static_cast<std::uint8_t>(engine() % 3);
        options.space_after_colon = engine() % 2 != 0;
        options.escape_slashes = engine() % 2 != 0;
        const auto start = static_cast<std::uint32_t>(engine() % 2 != 0 ? engine() % 40 : 5000);
        std::vector<std::string> pieces;
        const int code = cson_write(value.get(), collect, &pieces, &options);
        std::string joined;
        std::uint32_t used = 0;
        std::uint32_t capacity = start;
        std::uint32_t expanded = start != 0 ? 1 : 0;
        for (const std::string& piece : pieces) {
            joined += piece;
            used += static_cast<std::uint32_t>(piece.size());
            if (used >= capacity) {
                capacity = used * 2;
                ++expanded;
            }
        }
        cson_buffer buffer;
        cson_buffer_reserve_bytes(&buffer, start);
        ASSERT_EQ(code, cson_write_buffer(value.get(), &buffer, &options));
        ASSERT_EQ(joined, std::string(reinterpret_cast<char*>(buffer.mem), buffer.used));
        EXPECT_EQ(capacity, buffer.capacity);
        EXPECT_EQ(expanded, buffer.times_expanded);
        EXPECT_TRUE(code != cson_OK || buffer.mem[used] == 0);
        cson_buffer_reserve_bytes(&buffer, 0);
    }
}

TEST(Write, BufferIsAddedTo) {
    cson_buffer buffer;
    const Value value = tree("[1]");
    EXPECT_EQ(cson_OK, cson_write_buffer(cson_value_null_constant(), &buffer, nullptr));
    EXPECT_EQ(8u, buffer.capacity);
    EXPECT_EQ(cson_OK, cson_write_buffer(value.get(), &buffer, nullptr));
    EXPECT_STREQ("null[1]", reinterpret_cast<const char*>(buffer.mem));
    EXPECT_EQ(7u, buffer.used);
    cson_buffer_reserve_bytes(&buffer, 0);
}

TEST(Write, FilesEndInALineFeedByDefault) {
    const std::string path = testing::TempDir() + "quillon_json_writer_test.json";
    const Value value = tree(sample);
    ASSERT_EQ(cson_OK, cson_write_path(value.get(), path.c_str(), nullptr));
    std::FILE* stream = std::fopen(path.c_str(), "rb");
    char text[100] = {};
    EXPECT_EQ(27u, std::fread(text, 1, sizeof(text), stream));
    EXPECT_STREQ("{\"a\":1, \"b\":[1, 2.5, \"x\"]}\n", text);
    std::fclose(stream);
    std::remove(path.c_str());
    EXPECT_EQ(cson_IOError, cson_write_path(value.get(), "no/such/folder/file", nullptr));
    EXPECT_EQ(cson_IOError, cson_write_path(value.get(), "/dev/full", nullptr));
}

TEST(Write, ArgumentsAreChecked) {
    cson_buffer buffer;
    std::vector<std::string> pieces;
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
    std::string text;
    EXPECT_EQ(cson_OK, cson_write_array(array.get(), append, &text, &options, 2));
    EXPECT_EQ("[\n\t\t\t1,\n\t\t\t[],\n\t\t\t{\n\t\t\t\t\"a\":2,\n\t\t\t\t\"b\":[\n\t\t\t\t\t3,"
              "\n\t\t\t\t\t4\n"
              "\t\t\t\t]\n\t\t\t}\n\t\t]",
              text);
    EXPECT_EQ(cson_RangeError, cson_write_object(object, append, &text, &options, 25));
    EXPECT_EQ(cson_OK, cson_write_object(object, append, &text, &options, 24));
}

} // namespace
