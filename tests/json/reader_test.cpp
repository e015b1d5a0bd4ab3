// What the document reader accepts, the push parser accepts with the same tree, counts and
// positions; what it leaves to the push parser has the outcome of single steps.
#include "json_testing.h"

#include <gtest/gtest.h>

#include <cstdio>

using namespace quillon;
using namespace json_testing;

namespace {

Outcome read_stream(const std::string& text) {
    std::FILE* stream = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), stream);
    std::rewind(stream);
    Outcome outcome = outcome_of([&](cson_value** out, cson_read_info* info) {
        return cson_read_stream(out, stream, nullptr, info);
    });
    std::fclose(stream);
    return outcome;
}

std::string random_text(std::mt19937& engine, int depth) {
    cson_write_options options;
    options.indentation = static_cast<std::uint8_t>(engine() % 4);
    options.add_newline = engine() % 2 != 0;
    options.space_after_colon = engine() % 2 != 0;
    options.escape_slashes = engine() % 2 != 0;
    return text_of(random_tree(engine, depth).get(), options);
}

// Replaces, drops or repeats bytes, with a liking for those that mean something.
void mutate(std::mt19937& engine, std::string& text) {
    constexpr std::string_view bytes = "{}[]:,\"\\/*+-.0123456789eEtrufalsn \t\n\r\x01\x7F\xC3";
    constexpr const char* pieces[] = {"/**/",
                                      "\\ud83d",
                                      "\\ude00",
                                      "1e5",
                                      "-0.0",
                                      "1.",
                                      "true",
                                      "null ,",
                                      "\\u0000",
                                      "00",
                                      " 12345678901234567890"};
    const std::size_t at = engine() % (text.size() + 1);
    switch (engine() % 4) {
    case 0:
        text.insert(at, pieces[engine() % std::size(pieces)]);
        break;
    case 1:
        text.erase(at, engine() % 3);
        break;
    case 2:
        text.insert(at, text.substr(engine() % (text.size() + 1), engine() % 9));
        break;
    default:
        text.insert(at, 1, bytes[engine() % bytes.size()]);
    }
}

TEST(Readers, AgreeOnRandomAndMutatedTexts) {
    std::mt19937 engine(7);
    for (int round = 0; round < 4000; ++round) {
        std::string text = random_text(engine, 3);
        for (auto left = engine() % 4; left != 0; --left)
            mutate(engine, text);
        if (text.size() < 2)
            continue;
        const cson_read_options options{static_cast<std::uint16_t>(engine() % 2 != 0 ? 25 : 3),
                                        static_cast<std::int8_t>(engine() % 2)};
        ASSERT_EQ(text_of(read_bytewise(text, options)), text_of(read_whole(text, options)))
            << text;
    }
}

TEST(Readers, AgreeOnNumbers) {
    std::mt19937 engine(11);
    for (int round = 0; round < 20000; ++round) {
        std::string text = engine() % 2 != 0 ? "[-" : "[";
        for (const char* part : {"", ".", "e"}) {
            text += engine() % 2 != 0 || *part == 0 ? part : "";
            for (auto digits = engine() % (*part == 'e' ? 4 : 20); digits != 0; --digits)
                text += static_cast<char>('0' + engine() % 10);
        }
        text += engine() % 2 != 0 ? " ]" : "]";
        ASSERT_EQ(text_of(read_bytewise(text)), text_of(read_whole(text))) << text;
    }
}

TEST(Readers, AgreeOnLongStreams) {
    std::mt19937 engine(13);
    for (int round = 0; round < 40; ++round) {
        std::string text = "[";
        while (text.size() < 40000)
            text += random_text(engine, 2) + ",";
        text += "0]";
        if (round % 2 != 0)
            mutate(engine, text);
        EXPECT_TRUE(text_of(read_bytewise(text)) == text_of(read_stream(text)));
    }
}

} // namespace
