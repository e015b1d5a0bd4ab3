// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <regex>

using namespace quillon;
using namespace json_testing;

namespace {

// Records its events as a text: codes, with an integer, float or text after a colon.
struct Parser {
    using Configure = std::function<void(cson_push_parser_config&)>;

    explicit Parser(const Configure& configure = [](auto&) {}) {
        cson_push_parser_config config;
        cson_push_parser_init_config(&config);
        config.callback = record;
        config.context = this;
        configure(config);
        parser = cson_push_parser_new(&config);
    }

    ~Parser() { cson_push_parser_free(parser); }

    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool step(std::string_view text) {
        for (const char c : text)
            if (cson_push_parser_step(parser, static_cast<unsigned char>(c)) == 0)
                return false;
        return true;
    }

    static int record(void* context, int event, const cson_push_data* data) {
        auto& self = *static_cast<Parser*>(context);
        self.events += (self.events.empty() ? "" : " ") + std::to_string(event);
        if (event == cson_event_integer)
            self.events += ":" + std::to_string(data->integer);
        else if (data != nullptr && data->text != nullptr)
            self.events += ":" + std::string(data->text, data->length);
        else if (event == cson_event_float)
            self.events += ":" + std::to_string(data->number);
        return event != self.refused_event ? 1 : 0;
    }

    std::string events;
    int refused_event = 0;
    cson_push_parser* parser;
};

TEST(PushParser, Events) {
    const struct {
        const char* text;
        const char* events;
        std::int32_t manual_floats = 0;
    } rows[] = {{"[1,2]", "1 5:1 5:2 2"},
                {"{\"a\":1}", "3 11:a 5:1 4"},
                {"{}", "3 4"},
                {"[true ,false,null]", "1 8 9 7 2"},
                {"[\"x\\ty\",1.5]", "1 10:x\ty 6:1.500000 2"},
                {"[1.50,2e3]", "1 6:1.50 6:2e3 2", 1}};

    for (const auto& row : rows) {
        Parser parser([&](auto& config) { config.manual_floats = row.manual_floats; });
        EXPECT_TRUE(parser.step(row.text)) << row.text;
        EXPECT_NE(0, cson_push_parser_finish(parser.parser));
        EXPECT_EQ(row.events, parser.events);
    }
}

TEST(PushParser, RefusalAndBadPlaceLeaveErrorAtZero) {
    Parser parser;
    parser.refused_event = cson_event_integer;
    EXPECT_TRUE(parser.step("[1"));
    EXPECT_FALSE(parser.step("]"));
    EXPECT_EQ(0, cson_push_parser_error(parser.parser));
    EXPECT_EQ(0, cson_push_parser_step(parser.parser, -1));
    EXPECT_EQ(cson_push_invalid_character, cson_push_parser_error(parser.parser));
}

TEST(PushParser, ResetAfterFailureStartsAfresh) {
    Parser parser([](auto& config) { config.allow_comments = 1; });
    for (const char* broken : {"[/*", "[\"\\ud83d", "[\"a\\", "{\"a\":tr", "[1,]", "[[[["}) {
        parser.step(broken);
        ASSERT_NE(0, cson_push_parser_reset(parser.parser));
        parser.events.clear();
        EXPECT_TRUE(parser.step(" [\"x\\u0079\"]")) << broken;
        EXPECT_NE(0, cson_push_parser_finish(parser.parser));
        EXPECT_EQ("1 10:xy 2", parser.events);
        cson_push_parser_reset(parser.parser);
    }
}

TEST(PushParser, DepthLimits) {
    for (const int depth : {0, 1, 127, 128, -1}) {
        Parser parser([&](auto& config) { config.depth = depth; });
        const std::size_t passing = depth < 0 ? 70000 : std::max(depth, 1);
        EXPECT_TRUE(parser.step(std::string(passing, '['))) << depth;
        EXPECT_EQ(depth < 0, parser.step("[")) << depth;
        EXPECT_EQ(depth < 0 ? cson_push_no_error : cson_push_nesting_depth,
                  cson_push_parser_error(parser.parser));
    }
}

TEST(PushParser, TokenBufferAndStackKeepTheirContentAsTheyGrow) {
    Parser parser([](auto& config) { config.depth = -1; });
    std::string token;
    while (token.size() < 10000)
        token += std::to_string(token.size());
    EXPECT_TRUE(parser.step("[\"" + token + "\""));
    EXPECT_EQ("1 10:" + token, parser.events);
    EXPECT_EQ(14000u, parser.parser->buffer_capacity);
    std::string closing = "]";
    for (int i = 0; i < 1000; ++i) {
        EXPECT_TRUE(parser.step(i % 3 != 0 ? ",[1" : ",{\"a\":[1"));
        closing.insert(0, i % 3 != 0 ? "]" : "]}");
    }
    EXPECT_TRUE(parser.step(closing));
    EXPECT_NE(0, cson_push_parser_finish(parser.parser));
}

int live_blocks;

TEST(PushParser, MemoryComesFromTheConfiguration) {
    const auto counted = [](cson_push_parser_config& config) {
        config.depth = 1000;
        config.allocate = [](std::size_t bytes) { return ++live_blocks, std::malloc(bytes); };
        config.release = [](void* block) { --live_blocks, std::free(block); };
    };
    {
        Parser parser(counted);
        EXPECT_EQ(2, live_blocks) << "the parser and its stack";
        EXPECT_TRUE(parser.step("[\"" + std::string(4000, 'x')));
        EXPECT_EQ(3, live_blocks);
    }
    EXPECT_EQ(0, live_blocks);
    const Parser half([&](auto& config) { counted(config), config.release = nullptr; });
    EXPECT_EQ(0, live_blocks) << "the two count only together";
}

// Where the parser goes from every state: after each accepted character the digit of the state, of
// 36, and at the end the error of a character that isn't accepted. Entries that depend on the
// container are those of an array. A text after "=" begins a value, in both containers.
struct StateRow {
    const char* text;
    const char* cells;
};

constexpr StateRow STATE_ROWS[] = {
    {"", " 0\t0{2[6/u!1"},
    {"{", " 2\t2\"7/u}1!8"},
    {"{\"a\":1,", " 3\t3\"7/u!8"},
    {"{\"a\"", " 4\t4:5/u!9"},
    {"[", " 6\t6{2[6\"7/u-d0e1ffnnrtk]1!7"},
    {"=", " 5\t5{2[6\"7/u-d0e1ffnnrtk!1"},
    {"=[]", " 1\t1/u,5]1!1"},
    {"=\"", " 7{7[7:7\"1\\8/7+7-7.70717a7b7c7d7e7f7l7n7r7s7t7u7A7E7~7*7,7]7}7!1"},
    {"=\"\\", "\"7\\7/7b7f7n7r7t7u9!3"},
    {"=\"\\u", "0a1aaabacadaeafaAaEa!4"},
    {"=\"\\u0", "0b1babbbcbdbebfbAbEb!4"},
    {"=\"\\u00", "0c1cacbcccdcecfcAcEc!4"},
    {"=\"\\u004", "0717a7b7c7d7e7f7A7E7!4"},
    {"=-", "0e1f!5"},
    {"=0", " 1\t1/u.x,5]1!5"},
    {"=1", " 1\t1/u.x0f1fehEh,5]1!5"},
    {"=1.5", " 1\t1/u0g1gehEh,5]1!5"},
    {"=1e", "+i-i0j1j!5"},
    {"=1e+", "0j1j!5"},
    {"=1e1", " 1\t10j1j,5]1!5"},
    {"=t", "rl!2"},
    {"=tr", "um!2"},
    {"=tru", "/ue1!2"},
    {"=f", "ao!2"},
    {"=fa", "lp!2"},
    {"=fal", "sq!2"},
    {"=fals", "/ue1!2"},
    {"=n", "us!2"},
    {"=nu", "lt!2"},
    {"=nul", "/ul1!2"},
    {"=/", "*v!1"},
    {"=/*", " v\tv{v[v:v\"v\\v/v+v-v.v0v1vavbvcvdvevfvlvnvrvsvtvuvAvEv~v*w,v]v}v"},
    {"=/**", " v\tv{v[v:v\"v\\v/5+v-v.v0v1vavbvcvdvevfvlvnvrvsvtvuvAvEv~v*w,v]v}v"},
    {"=1.", " 1\t10g1gehEh,5]1!1"},
    {"=\"\\ud83d", "\\z!4"},
    {"=\"\\ud83d\\", "u9!4"},
};

constexpr std::string_view DIGITS = "0123456789abcdefghijklmnopqrstuvwxyz";

std::string cells_after(const std::string& text) {
    std::string cells;
    std::string error;
    for (const char c : std::string_view(" \t{[:\"\\/+-.01abcdeflnrstuAE~*,]}")) {
        Parser parser([](auto& config) { config.allow_comments = 1; });
        EXPECT_TRUE(parser.step(text)) << text;
        if (parser.step({&c, 1}))
            cells += {c, DIGITS[parser.parser->state]};
        else if (c == '~' || error.empty())
            error = "!" + std::to_string(cson_push_parser_error(parser.parser));
    }
    return cells + error;
}

TEST(PushParser, EveryCellOfTheGrammarLeadsOn) {
    for (const auto& [text, cells] : STATE_ROWS) {
        if (*text != '=') {
            EXPECT_EQ(cells, cells_after(text)) << text;
            continue;
        }
        const std::string value = text + 1;
        EXPECT_EQ(cells, cells_after("[0," + value)) << value;
        const std::string in_object = std::regex_replace(cells, std::regex(",5]1"), ",3}1");
        EXPECT_EQ(in_object, cells_after("{\"a\":" + value)) << value;
    }
}

TEST(PushParser, Blankness) {
    EXPECT_NE(0, cson_push_parser_is_blank(""));
    EXPECT_NE(0, cson_push_parser_is_blank(" \t\r\n"));
    EXPECT_EQ(0, cson_push_parser_is_blank(" \v"));
}

} // namespace
