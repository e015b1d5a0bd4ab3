// SPDX-License-Identifier: MIT
#include "quillon/files/strings.h"

#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>

namespace {

TEST(Copy, IsCutToTheCapacity) {
    struct Case {
        std::uint16_t capacity;
        std::string result;
    };

    for (const auto& [capacity, result] : {Case{0, "abcdef"},
                                           {1, ""},
                                           {2, "a"},
                                           {4, "abc"},
                                           {6, "abcde"},
                                           {7, "abcdef"},
                                           {65535, "abcdef"}}) {
        std::string destination = "??????????";
        __mystring_char_pointer_copy(destination.data(), "abcdef", capacity);
        EXPECT_EQ(result + '\0' + std::string(9 - result.size(), '?'), destination) << capacity;
    }
    char overlapping[16] = "abcdef";
    __mystring_char_pointer_copy(overlapping + 2, overlapping, 0);
    EXPECT_STREQ("ababcdef", overlapping);
}

TEST(Measure, CountsLinesAndLeavesSequencesOut) {
    struct Case {
        std::string text;
        std::int32_t width, height;
    };

    const Case cases[] = {
        {"", 0, 1},
        {"ab\ncdef", 4, 2},
        {"abc\n\n", 3, 3},
        {"a#12345bc", 3, 1},   // a sequence
        {"#123\nxy", 1, 1},    // skips a line feed
        {"#12345\nxy", 2, 2},  // the byte after is handled like any other
        {"##12345ab", 2, 1},   // the second of a pair starts a sequence
        {"###12345ab", 3, 1},  // unless a third follows: then the pair is one character
        {"####12345ab", 3, 1}, // and the third starts a pair of its own
        {"abc#", 3, 1},        // cut off
        {"ab##", 2, 1},
        {"ab#1234", 2, 1},
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

TEST(Roman, WritesEveryStepAndThousandsWithoutLimit) {
    const auto written = [](std::uint16_t value) {
        char text[256];
        __mystring_convert_to_roman_numeral(text, value);
        return std::string(text);
    };
    EXPECT_EQ("", written(0));
    EXPECT_EQ("MCMXCIV", written(1994));
    EXPECT_EQ("DCCCLXXXVIII", written(888));
    EXPECT_EQ("CDXLIX", written(449));
    EXPECT_EQ("MMMM", written(4000));
    EXPECT_EQ(std::string(65, 'M') + "DXXXV", written(65535));
}

std::string wrapped(std::string text, std::uint32_t width) {
    __mystring_auto_newline(text, width);
    return text;
}

TEST(Wrap, BreaksHardWhereALineIsAllLetters) {
    EXPECT_EQ("aaa bbb", wrapped("aaa bbb", 0));
    EXPECT_EQ("a1\nb2\n", wrapped("a1b2", 1));
    EXPECT_EQ("abcd", wrapped("abcd", 4));
    EXPECT_EQ("abcd\nefgh", wrapped("abcdefgh", 4));
    EXPECT_EQ("abcd \nef", wrapped("abcd ef", 4));
    EXPECT_EQ("ab \ncdef\nghi", wrapped("ab cdefghi", 4));
    EXPECT_EQ("a\nb\nc", wrapped("abc", 1));
    EXPECT_EQ(4'499'999U, wrapped(std::string(3'000'000, 'x'), 2).size()); // and soon
}

// The rule word by word, for texts in which no run of letters is as long as the line.
std::string wrapped_word_by_word(std::string text, std::uint32_t width) {
    std::uint32_t break_position = 0;
    std::uint32_t column = 0;
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        if (std::isalpha(static_cast<unsigned char>(text[i])) == 0)
            break_position = i + 1;
        if (++column >= width) {
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

} // namespace
