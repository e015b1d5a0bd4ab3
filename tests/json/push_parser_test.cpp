// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

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

TEST(PushParser, Blankness) {
    EXPECT_NE(0, cson_push_parser_is_blank(""));
    EXPECT_NE(0, cson_push_parser_is_blank(" \t\r\n"));
    EXPECT_EQ(0, cson_push_parser_is_blank(" \v"));
}

} // namespace
