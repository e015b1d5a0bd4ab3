#include "quillon/files/strings.h"

#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>

namespace {

struct CopyCase {
    std::uint16_t capacity;
    const char* result;
};

TEST(Copy, IsCutToTheCapacity) {
    const CopyCase cases[] = {{0, "abcdef"}, {1, ""},       {2, "a"},      {4, "abc"},
                              {6, "abcde"},  {7, "abcdef"}, {8, "abcdef"}, {65535, "abcdef"}};
    for (const auto& [capacity, result] : cases) {
        char destination[] = "??????????";
        __mystring_char_pointer_copy(destination, "abcdef", capacity);
        EXPECT_STREQ(result, destination) << capacity;
        EXPECT_EQ('?', destination[std::string(result).size() + 1]) << capacity;
    }
    const std::string beyond_16_bits(70'000, 'x');
    std::string destination(70'001, '?');
    __mystring_char_pointer_copy(destination.data(), beyond_16_bits.c_str(), 65535);
    EXPECT_STREQ(beyond_16_bits.substr(0, 65534).c_str(), destination.c_str());
}

TEST(Copy, DestinationMayOverlap) {
    char text[16] = "abcdef";
    __mystring_char_pointer_copy(text + 2, text, 0);
    EXPECT_STREQ("ababcdef", text);
    __mystring_char_pointer_copy(text, text + 2, 4);
    EXPECT_STREQ("abc", text);
}

struct MeasureCase {
    std::string text;
    std::int32_t width, height;
};

TEST(Measure, CountsLinesAndLeavesSequencesOut) {
    const MeasureCase cases[] = {
        {"", 0, 1},
        {"ab\ncdef", 4, 2},
        {"abc\n", 3, 2},
        {"\n\n", 0, 3},
        {"a#12345bc", 3, 1},   // a sequence
        {"#12345", 0, 1},      // ends the text, with nothing behind
        {"#123\nxy", 1, 1},    // skips a line feed
        {"#12345\nxy", 2, 2},  // the byte behind is handled like any other
        {"##", 0, 1},          // a pair at the very end: its second byte is cut off
        {"##12345ab", 2, 1},   // so is the start of a sequence
        {"###12345ab", 3, 1},  // a pair that a third follows is one character
        {"####12345ab", 3, 1}, // and the third starts a pair of its own
        {"#", 0, 1},
        {"abc#", 3, 1},
        {"ab#1234", 2, 1}, // cut off
        {"\x80\xff\n", 2, 2},
        {std::string(65535, 'a'), 65535, 1},
        {std::string(65535, '#'), 32767, 1},
        {std::string(65536 + 3, 'a'), 3, 1},
    };
    for (const auto& [text, width, height] : cases) {
        std::int32_t measured_width = -7;
        std::int32_t measured_height = -7;
        __mystring_extract_width_and_height_from_string(text.c_str(), measured_width,
                                                        measured_height);
        EXPECT_EQ(width, measured_width) << text.substr(0, 20);
        EXPECT_EQ(height, measured_height) << text.substr(0, 20);
    }
}

std::string roman(std::uint16_t value) {
    char text[256];
    __mystring_convert_to_roman_numeral(text, value);
    return text;
}

TEST(Roman, WritesEveryValue) {
    EXPECT_EQ("", roman(0));
    EXPECT_EQ("MCMXCIV", roman(1994));
    EXPECT_EQ("MMMM", roman(4000));
    EXPECT_EQ(std::string(65, 'M') + "DXXXV", roman(65535));
    EXPECT_EQ(76U, roman(64888).size());
    const char* const digits[] = {"", "I", "II", "III", "IV", "V", "VI", "VII", "VIII", "IX"};
    const auto digit = [&](int number, const char* letters) { // I, V, X become the three letters
        std::string text = digits[number % 10];
        for (char& letter : text)
            letter = letters[letter == 'I' ? 0 : letter == 'V' ? 1 : 2];
        return text;
    };
    for (int value = 0; value <= 65535; ++value)
        ASSERT_EQ(std::string(static_cast<std::size_t>(value / 1000), 'M') +
                      digit(value / 100, "CDM") + digit(value / 10, "XLC") + digit(value, "IVX"),
                  roman(static_cast<std::uint16_t>(value)));
}

std::string wrapped(std::string text, std::uint32_t width) {
    __mystring_auto_newline(text, width);
    return text;
}

struct WrapCase {
    const char* text;
    std::uint32_t width;
    const char* result;
};

TEST(Wrap, BreaksBehindTheLastByteThatIsNoLetter) {
    const WrapCase cases[] = {
        {"aaa bbb ccc", 5, "aaa \nbbb \nccc"},
        {"", 5, ""},
        {"aaa bbb", 0, "aaa bbb"},
        {"aaa bbb", 100, "aaa bbb"},
        {"a1b2", 1, "a1\nb2\n"},
        {"aaaa bb", 5, "aaaa \nbb"},
        {"aa,bb-cc", 4, "aa,\nbb-\ncc"},
        {"ab\ncd ef", 6, "ab\ncd \nef"}, // a line feed does not start the count again
        {"\xc3\xa4z zz", 3, "\xc3\xa4\nz \nzz"},
        {"abcdef", 4, "abcd\nef"}, // hard breaks
        {"abcd", 4, "abcd"},
        {"abcdefgh", 4, "abcd\nefgh"},
        {"abcd ef", 4, "abcd \nef"},
        {"ab cdefghi", 4, "ab \ncdef\nghi"},
        {"abc", 1, "a\nb\nc"},
    };
    for (const auto& [text, width, result] : cases)
        EXPECT_EQ(result, wrapped(text, width)) << '"' << text << "\" at " << width;
}

// The rule word by word, for texts in which no run of letters is as long as the line.
std::string wrapped_word_by_word(std::string text, std::uint32_t width) {
    std::uint32_t break_position = 0;
    std::uint32_t column = 0;
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        if (std::isalpha(static_cast<unsigned char>(text[i])) == 0)
            break_position = i + 1;
        ++column;
        if (column >= width) {
            text.insert(break_position, "\n");
            column = i - break_position;
        }
    }
    return text;
}

TEST(Wrap, FollowsTheRuleOnRandomText) {
    std::mt19937 draw(1);
    for (int round = 0; round < 3000; ++round) {
        const auto width = static_cast<std::uint32_t>(2 + draw() % 12);
        std::string text;
        for (int word = 0; word < 20; ++word) {
            text.append(draw() % width, 'x');
            text.append(1 + draw() % 2, " \n.7#\x80"[draw() % 6]);
        }
        ASSERT_EQ(wrapped_word_by_word(text, width), wrapped(text, width)) << text;
    }
}

TEST(Wrap, LongTextEndsSoon) {
    const std::string letters = wrapped(std::string(3'000'000, 'x'), 2);
    EXPECT_EQ(4'499'999U, letters.size());
    EXPECT_EQ("xx\nxx\n", letters.substr(0, 6));
    EXPECT_EQ(6'000'000U, wrapped(std::string(3'000'000, '.'), 1).size());
}

} // namespace
