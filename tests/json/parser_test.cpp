#include "json_testing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <vector>

using namespace quillon;
using namespace json_testing;

namespace {

// --- Corpus: the verdict stands in the file's name, as accept_NAME or
// reject_CODE_LINE_COLUMN_NAME; line 0 means that the parser itself found nothing wrong. "comments"
// in the name allows them.

std::vector<std::filesystem::path> corpus() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(JSON_CORPUS))
        paths.push_back(entry.path());
    return paths;
}

std::string content(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Corpus : public testing::TestWithParam<std::filesystem::path> {
protected:
    void check(const Outcome& outcome, std::uint32_t length) {
        const std::string name = GetParam().stem().string();
        std::smatch verdict;
        if (!std::regex_match(name, verdict, std::regex("reject_(\\d+)_(\\d+)_(\\d+)_.*"))) {
            ASSERT_EQ(0u, name.find("accept_"));
            EXPECT_EQ(cson_OK, outcome.code);
            EXPECT_EQ(0u, outcome.info.error_code);
            EXPECT_EQ(length, outcome.info.length);
            return;
        }
        EXPECT_STREQ(cson_error_name(std::stoi(verdict[1])), cson_error_name(outcome.code));
        EXPECT_EQ(nullptr, outcome.value);
        const bool by_parser = verdict[2] != "0";
        EXPECT_EQ(by_parser ? outcome.code : 0, static_cast<int>(outcome.info.error_code));
        if (by_parser) {
            EXPECT_EQ(std::stoul(verdict[2]), outcome.info.line);
            EXPECT_EQ(std::stoul(verdict[3]), outcome.info.column);
        }
    }

    cson_read_options options() const {
        cson_read_options used;
        used.allow_comments = GetParam().string().find("comments") != std::string::npos
                                  ? std::int8_t{1}
                                  : std::int8_t{0};
        return used;
    }
};

TEST_P(Corpus, VerdictHoldsOnEveryRoad) {
    const std::string text = content(GetParam());
    const auto length = static_cast<std::uint32_t>(text.size());
    {
        SCOPED_TRACE("bytewise");
        check(read_bytewise(text, options()), length);
    }
    {
        SCOPED_TRACE("whole");
        check(read_whole(text, options()), length);
    }
    SCOPED_TRACE("path");
    Outcome outcome;
    cson_value* value = nullptr;
    const cson_read_options used = options();
    outcome.code = cson_read_path(&value, GetParam().c_str(), &used, &outcome.info);
    outcome.value.reset(value);
    check(outcome, length);
}

INSTANTIATE_TEST_SUITE_P(Json, Corpus, testing::ValuesIn(corpus()),
                         [](const auto& instance) { return instance.param.stem().string(); });

// --- Push parser -------------------------------------------------------------------------------

// The events as a text: codes, with an integer, float or text behind a colon.
struct Recorder {
    std::string events;
    int refused_event = 0;

    static int record(void* context, int event, const cson_push_data* data) {
        auto& self = *static_cast<Recorder*>(context);
        self.events += (self.events.empty() ? "" : " ") + std::to_string(event);
        if (event == cson_event_integer)
            self.events += ":" + std::to_string(data->integer);
        else if (data != nullptr && data->text != nullptr)
            self.events += ":" + std::string(data->text, data->length);
        else if (event == cson_event_float)
            self.events += ":" + std::to_string(data->number);
        return event != self.refused_event ? 1 : 0;
    }
};

struct Parser {
    explicit Parser(const cson_push_parser_config& config)
        : parser(cson_push_parser_new(&config)) {}

    ~Parser() { cson_push_parser_free(parser); }

    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool step(std::string_view text) {
        for (const char c : text)
            if (cson_push_parser_step(parser, static_cast<unsigned char>(c)) == 0)
                return false;
        return true;
    }

    cson_push_parser* parser;
};

cson_push_parser_config recording(Recorder& recorder) {
    cson_push_parser_config config;
    cson_push_parser_init_config(&config);
    config.callback = Recorder::record;
    config.context = &recorder;
    return config;
}

TEST(PushParser, Events) {
    const struct {
        const char* text;
        const char* events;
    } rows[] = {{"[1,2]", "1 5:1 5:2 2"},
                {"{\"a\":1}", "3 11:a 5:1 4"},
                {"{}", "3 4"},
                {"[]", "1 2"},
                {"[true ,false,null]", "1 8 9 7 2"},
                {"[\"x\\ty\",1.5]", "1 10:x\ty 6:1.500000 2"}};

    for (const auto& row : rows) {
        Recorder recorder;
        Parser parser(recording(recorder));
        EXPECT_TRUE(parser.step(row.text)) << row.text;
        EXPECT_NE(0, cson_push_parser_finish(parser.parser));
        EXPECT_EQ(row.events, recorder.events);
    }
}

TEST(PushParser, ManualFloatsArriveAsText) {
    Recorder recorder;
    cson_push_parser_config config = recording(recorder);
    config.manual_floats = 1;
    EXPECT_TRUE(Parser(config).step("[1.50,2e3]"));
    EXPECT_EQ("1 6:1.50 6:2e3 2", recorder.events);
}

TEST(PushParser, RefusalAndBadPlaceLeaveErrorAtZero) {
    Recorder recorder;
    recorder.refused_event = cson_event_integer;
    Parser parser(recording(recorder));
    EXPECT_TRUE(parser.step("[1"));
    EXPECT_FALSE(parser.step("]"));
    EXPECT_EQ(0, cson_push_parser_error(parser.parser));
    EXPECT_EQ(0, cson_push_parser_step(parser.parser, -1));
    EXPECT_EQ(cson_push_invalid_character, cson_push_parser_error(parser.parser));
}

TEST(PushParser, ResetAfterFailureStartsAfresh) {
    Recorder recorder;
    Parser parser(recording(recorder));
    for (const char* broken : {"[\"\\ud83d", "[\"a\\", "{\"a\":tr", "[1,]", "[[[["}) {
        parser.step(broken);
        ASSERT_NE(0, cson_push_parser_reset(parser.parser));
        recorder.events.clear();
        EXPECT_TRUE(parser.step(" [\"x\"]")) << broken;
        EXPECT_NE(0, cson_push_parser_finish(parser.parser));
        EXPECT_EQ("1 10:x 2", recorder.events);
        cson_push_parser_reset(parser.parser);
    }
}

TEST(PushParser, DepthLimits) {
    const struct {
        std::size_t passing;
        std::int32_t depth;
        bool limited;
    } rows[] = {{1, 0, true}, {1, 1, true}, {127, 127, true}, {128, 128, true}, {70000, -1, false}};

    for (const auto& row : rows) {
        cson_push_parser_config config;
        cson_push_parser_init_config(&config);
        config.depth = row.depth;
        Parser parser(config);
        EXPECT_TRUE(parser.step(std::string(row.passing, '['))) << row.depth;
        EXPECT_EQ(!row.limited, parser.step("[")) << row.depth;
        EXPECT_EQ(row.limited ? cson_push_nesting_depth : cson_push_no_error,
                  cson_push_parser_error(parser.parser));
    }
}

TEST(PushParser, TokenBufferDoubles) {
    Parser parser(cson_push_parser_config{nullptr, nullptr, 127, 0, 0, nullptr, nullptr});
    EXPECT_TRUE(parser.step("[\"" + std::string(3498, 'x')));
    EXPECT_EQ(3500u, parser.parser->buffer_capacity);
    EXPECT_TRUE(parser.step(std::string(10000 - 3498, 'x') + "\"]"));
    EXPECT_EQ(14000u, parser.parser->buffer_capacity);
}

TEST(PushParser, Blankness) {
    EXPECT_NE(0, cson_push_parser_is_blank(""));
    EXPECT_NE(0, cson_push_parser_is_blank(" \t\r\n"));
    EXPECT_EQ(0, cson_push_parser_is_blank(" \v"));
}

// --- Reading -----------------------------------------------------------------------------------

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

TEST(Read, MaxDepth) {
    const cson_read_options two{2, 0};
    EXPECT_EQ(cson_OK, read_whole("[[1]]", two).code);
    EXPECT_EQ(cson_Parse_NESTING_DEPTH_REACHED, read_whole("[[[1]]]", two).code);
}

TEST(Read, InfoGoesOnFromTheCallersRecord) {
    cson_read_info info{7, 3, 100, 15, 9, 9};
    cson_value* out = nullptr;
    ASSERT_EQ(cson_OK, cson_read_text(&out, "{\"a\":[1,2]}", 11, nullptr, &info));
    cson_value_release(out);
    EXPECT_EQ(7u, info.line);
    EXPECT_EQ(14u, info.column);
    EXPECT_EQ(111u, info.length);
    EXPECT_EQ(0u, info.error_code);
    EXPECT_EQ(1u, info.total_key_count);
    EXPECT_EQ(4u, info.total_value_count);
}

TEST(Read, TreeHasTheCapacitiesAndCountsOfItsMaking) {
    const Value root =
        tree("{\"list\":[1,2,3,4,5,6,7],\"o\":{\"a\":1,\"b\":1,\"c\":1,\"d\":1,\"e\":1}}");
    EXPECT_EQ(0u, root->refcount);
    cson_object* object = cson_value_object(root.get());
    EXPECT_EQ(5u, object->list.capacity);
    const cson_kvp* pair = cson_object_find(object, "list", nullptr);
    EXPECT_EQ(1u, pair->key->refcount);
    EXPECT_EQ(1u, pair->value->refcount);
    EXPECT_EQ(12u, cson_value_array(pair->value)->list.capacity);
    EXPECT_EQ(8u, cson_value_object(cson_object_get_text(object, "o"))->list.capacity);
}

TEST(Read, ReadersCodeEndsIt) {
    const auto fail_third = [](void* state, void* destination, std::uint32_t* count) -> int {
        *static_cast<char*>(destination) = '[';
        *count = 1;
        return ++*static_cast<int*>(state) == 3 ? cson_NYIError : cson_OK;
    };
    int calls = 0;
    cson_value* out = nullptr;
    cson_read_info info;
    EXPECT_EQ(cson_NYIError, cson_read(&out, fail_third, &calls, nullptr, &info));
    EXPECT_EQ(2u, info.length);
    EXPECT_EQ(0u, info.error_code);
}

// A comma as decimal point on both sides; the point must not be taken for granted on the fast road.
TEST(Locale, DecimalPoint) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    bool found = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE"})
        found = found || std::setlocale(LC_NUMERIC, name) != nullptr;
    if (!found)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    const Outcome whole = read_whole("[1.5,-2.25e1,2.0,1e20]");
    const Outcome bytewise = read_bytewise("[1.5,-2.25e1,2.0,1e20]");
    const std::string written = text_of(whole.value.get());
    std::setlocale(LC_NUMERIC, before.c_str());
    EXPECT_EQ("[1,5, -22,5, 2,, 100000000000000000000,]", written)
        << "a zero stays behind a dot alone";
    const std::string expected = "[1.5, -22.5, 2.0, 100000000000000000000.0]";
    EXPECT_EQ(expected, text_of(whole.value.get()));
    EXPECT_EQ(expected, text_of(bytewise.value.get()));
}

} // namespace
