// SPDX-License-Identifier: MIT
// What the document reader accepts, the push parser accepts with the same tree, counts and
// positions; what it leaves to the push parser has the outcome of single steps.
#include "json_testing.h"

#include "quillon/json/document_reader.h"
#include "tests/scratch_folder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <regex>
#include <unistd.h>
#include <vector>

using namespace quillon;
using namespace json_testing;

namespace {

// The one outcome of every way to read a text.
Outcome read_every_way(std::string text, const cson_read_options& options = {}) {
    std::FILE* stream = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), stream);
    std::rewind(stream);
    const Outcome streamed = outcome_of([&](cson_value** out, cson_read_info* info) {
        return cson_read_stream(out, stream, &options, info);
    });
    std::fclose(stream);
    const cson_buffer buffer{0, static_cast<std::uint32_t>(text.size()), 0,
                             reinterpret_cast<unsigned char*>(text.data())};
    const Outcome buffered = outcome_of([&](cson_value** out, cson_read_info* info) {
        return cson_read_buffer(out, &buffer, &options, info);
    });
    Outcome bytewise = read_bytewise(text, options);
    const std::string expected = text_of(bytewise);
    const bool same = expected == text_of(streamed) && expected == text_of(buffered) &&
                      expected == text_of(read_whole(text, options));
    EXPECT_TRUE(same) << text.substr(0, 1000);
    return bytewise;
}

// --- Corpus: the verdict is in the file's name, as accept_NAME, with the tree in NAME.tree, or
// reject_CODE_LINE_COLUMN_NAME; line 0 means that the parser itself found nothing wrong. "comments"
// in the name allows them.

std::vector<std::filesystem::path> corpus() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(JSON_CORPUS))
        if (entry.path().extension() == ".json")
            paths.push_back(entry.path());
    return paths;
}

class Corpus : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Corpus, VerdictHoldsForEveryWayToRead) {
    const std::string path = GetParam().string();
    const cson_read_options options{25, path.find("comments") != std::string::npos};
    const std::string text = text_of(GetParam());
    const Outcome outcome = read_every_way(text, options);
    EXPECT_EQ(text_of(outcome), text_of(outcome_of([&](cson_value** out, cson_read_info* info) {
                  return cson_read_path(out, path.c_str(), &options, info);
              })));
    const cson_read_info& info = outcome.info;
    const std::string name = GetParam().stem().string();
    std::smatch verdict;
    if (!std::regex_match(name, verdict, std::regex("reject_(\\d+)_(\\d+)_(\\d+)_.*"))) {
        EXPECT_EQ(cson_OK, outcome.code);
        EXPECT_EQ(text.size(), info.length);
        const auto expected = std::filesystem::path(path).replace_extension(".tree");
        EXPECT_EQ(text_of(expected), tree_text(outcome.value.get()) + "\n");
        return;
    }
    EXPECT_STREQ(cson_error_name(std::stoi(verdict[1])), cson_error_name(outcome.code));
    EXPECT_EQ(nullptr, outcome.value);
    const bool by_parser = verdict[2] != "0";
    EXPECT_EQ(by_parser ? outcome.code : 0, static_cast<int>(info.error_code));
    EXPECT_TRUE(!by_parser ||
                (std::stoul(verdict[2]) == info.line && std::stoul(verdict[3]) == info.column))
        << info.line << ":" << info.column;
}

INSTANTIATE_TEST_SUITE_P(Json, Corpus, testing::ValuesIn(corpus()),
                         [](const auto& instance) { return instance.param.stem().string(); });

TEST(Read, ArgumentsAreChecked) {
    cson_value* out = nullptr;
    cson_buffer buffer;
    EXPECT_EQ(cson_ArgError, cson_read_text(nullptr, "[]", 2, nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_read_text(&out, nullptr, 2, nullptr, nullptr));
    EXPECT_EQ(cson_RangeError, cson_read_text(&out, "[", 1, nullptr, nullptr));
    EXPECT_EQ(cson_RangeError, cson_read_text(&out, "\0]", 2, nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_read(&out, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_read_stream(&out, nullptr, nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_read_path(&out, nullptr, nullptr, nullptr));
    EXPECT_EQ(cson_IOError, cson_read_path(&out, "no such file", nullptr, nullptr));
    EXPECT_EQ(cson_IOError, cson_read_path(&out, JSON_CORPUS, nullptr, nullptr)) << "a folder";
    EXPECT_EQ(cson_ArgError, cson_read_buffer(&out, &buffer, nullptr, nullptr));
    EXPECT_EQ(nullptr, out);
}

TEST(Read, OptionsHoldForEveryWayToRead) {
    for (std::uint16_t depth = 0; depth < 4; ++depth)
        EXPECT_EQ(depth < 2 ? cson_Parse_NESTING_DEPTH_REACHED : cson_OK,
                  read_every_way("[[1/**/]]", {depth, 1}).code);
    cson_value* out = nullptr;
    EXPECT_EQ(cson_OK, cson_read_text(&out, "[[[1]]]", 7, nullptr, nullptr));
    cson_value_release(out);
}

// A reading asks for no byte after the one that ends it.
TEST(Read, StreamIsLeftAfterTheLastByteAskedFor) {
    const struct {
        const char* text;
        int code;
        long position;
    } rows[] = {{"..[x,1]...", cson_Parse_UNBALANCED_COLLECTION, 4},
                {"..[1]  tail", cson_Parse_INVALID_CHAR, 8},
                {"..[1,\n[]] \n", cson_OK, 11},
                {"..[1", cson_Parse_UNBALANCED_COLLECTION, 4},
                {"..", cson_UnknownError, 2}};

    for (const auto& row : rows) {
        std::FILE* stream = std::tmpfile();
        std::fputs(row.text, stream);
        std::fseek(stream, 2, SEEK_SET);
        cson_value* out = nullptr;
        EXPECT_EQ(row.code, cson_read_stream(&out, stream, nullptr, nullptr)) << row.text;
        EXPECT_EQ(row.position, std::ftell(stream)) << row.text;
        cson_value_release(out);
        std::fclose(stream);
    }
}

#if !defined(_WIN32)
TEST(Read, PipeWhoseWriterWaitsGetsItsAnswer) {
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    ASSERT_EQ(2, write(ends[1], "[x", 2));
    std::FILE* stream = fdopen(ends[0], "r");
    cson_value* out = nullptr;
    EXPECT_EQ(cson_Parse_UNBALANCED_COLLECTION, cson_read_stream(&out, stream, nullptr, nullptr));
    std::fclose(stream);
    close(ends[1]);
}
#endif

TEST(Read, InfoGoesOnFromTheCallersRecord) {
    Outcome outcome;
    outcome.info = {7, 3, 100, 15, 9, 9};
    cson_value* out = nullptr;
    outcome.code = cson_read_text(&out, "{\"a\":[1,2]}", 11, nullptr, &outcome.info);
    outcome.value.reset(out);
    EXPECT_EQ("0 7 14 111 0 1 4 {\"a\":[1 2 of 7] of 5}", text_of(outcome));
    const cson_kvp* pair = cson_value_object(out)->list.items[0];
    EXPECT_EQ(0u, out->refcount);
    EXPECT_EQ(1u, pair->key->refcount);
    EXPECT_EQ(1u, pair->value->refcount);
}

TEST(Read, ReadersCodeEndsIt) {
    const auto fail_third = [](void* state, void* destination, std::uint32_t* count) -> int {
        EXPECT_EQ(1u, *count);
        *static_cast<char*>(destination) = '[';
        return ++*static_cast<int*>(state) == 3 ? cson_NYIError : cson_OK;
    };
    int calls = 0;
    cson_value* out = nullptr;
    cson_read_info info;
    info.error_code = cson_Parse_INVALID_CHAR; // of an earlier reading
    EXPECT_EQ(cson_NYIError, cson_read(&out, fail_third, &calls, nullptr, &info));
    EXPECT_EQ(2u, info.length);
    EXPECT_EQ(0u, info.error_code);
}

// Wine has no such locales.
#if !defined(_WIN32)
// A comma as decimal point on both sides; and one of several bytes, of which the first alone comes
// before the conversion. `scripts/setup test` makes both locales.
TEST(Locale, DecimalPoint) {
    const struct {
        const char* locale;
        const char* written;
        const char* tree;
    } rows[] = {{"de_DE.UTF-8", "[1,5, -22,5, 2,, 100000000000000000000,]",
                 "[0x1.8p+0 -0x1.68p+4 0x1p+1 0x1.5af1d78b58c4p+66 of 7]"},
                {"ps_AF.UTF-8", nullptr, "[0x1p+0 -0x1p+1 0x1p+1 0x1.5af1d78b58c4p+66 of 7]"}};

    for (const auto& row : rows) {
        ASSERT_NE(nullptr, std::setlocale(LC_NUMERIC, row.locale)) << row.locale;
        const Outcome outcome = read_every_way("[1.5,-2.25e1,2.0,1e20]");
        const std::string written = text_of(outcome.value.get());
        std::setlocale(LC_NUMERIC, "C");
        EXPECT_EQ(row.tree, tree_text(outcome.value.get()));
        EXPECT_TRUE(row.written == nullptr || row.written == written) << written;
    }
}
#endif

// Replaces, drops or repeats bytes, with a liking for those that mean something.
void mutate(std::mt19937& engine, std::string& text) {
    constexpr std::string_view bytes = "{}[]:,\"\\/*+-.0123456789eEtrufalsn \t\n\r\x1F\x7F\xC3";
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
        std::string text = random_json(engine, 3);
        for (auto left = engine() % 4; left != 0; --left)
            mutate(engine, text);
        if (text.size() < 2)
            continue;
        const cson_read_options options{static_cast<std::uint16_t>(engine() % 2 != 0 ? 25 : 3),
                                        static_cast<std::int8_t>(engine() % 2)};
        read_every_way(text, options);
        if (HasFailure())
            return;
    }
}

TEST(Readers, DocumentReaderTakesWhatIsPlain) {
    for (const std::string_view text :
         {"\n [1 , -2.5e3\t,[ ] ]\r\n", "{ \"a\\n\" : \"\\ud83d\\ude00\" , \"b\":{ } }",
          "[\n        true,\n            false,\n  null\n]"}) {
        json::TreeBuilder builder;
        EXPECT_TRUE(json::read_document(builder,
                                        reinterpret_cast<const unsigned char*>(text.data()),
                                        static_cast<std::uint32_t>(text.size()), 2))
            << text;
        cson_value_release(builder.take_root());
    }
}

TEST(Readers, AgreeOnNumbers) {
    std::mt19937 engine(11);
    for (int round = 0; round < 20000; ++round) {
        std::string text = engine() % 2 != 0 ? "[-" : "[";
        for (const char* part : {"", ".", "e"}) {
            text += engine() % 2 != 0 || *part == 0 ? part : "";
            for (auto digits = engine() % (*part == 'e' ? 4 : 24); digits != 0; --digits)
                text += static_cast<char>('0' + engine() % 10);
        }
        text += engine() % 2 != 0 ? " ]" : "]";
        ASSERT_EQ(text_of(read_bytewise(text)), text_of(read_whole(text))) << text;
    }
}

TEST(Readers, AgreeOnLongTexts) {
    std::mt19937 engine(13);
    for (int round = 0; round < 40; ++round) {
        std::string text = "[";
        while (text.size() < 40000)
            text += random_json(engine, 2) + ",";
        text += "0]";
        if (round % 2 != 0)
            mutate(engine, text);
        read_every_way(text);
    }
}

} // namespace
