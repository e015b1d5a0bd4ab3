#include "fake_table.h"

#include "quillon/input/digital.h"

#include <gmock/gmock.h>

namespace {

using quillon::cInputDigital;
using quillon::InputLogic;
using quillon_test::FakeTable;
using quillon_test::Question;
using testing::ElementsAre;

constexpr std::uint16_t FIRST = 85;   // "Left Control"
constexpr std::uint16_t SECOND = 198; // any button of pad 2

struct Query {
    const char* name;
    bool (*ask)(const cInputDigital*);
    char edge;
    const char* rules[4]; // by logic; E is the query's own entry, D is down, | is Or, & is And
};

constexpr const char* NEVER = "";
constexpr Query QUERIES[] = {
    {"down", __cInputDigital_query_down, 'D', {"E1|E2", "E1&E2", "E1&!E2", NEVER}},
    {"press", __cInputDigital_query_press, 'P', {"E1|E2", "D1&E2|E1&D2", "E1&!D2", NEVER}},
    {"hold", __cInputDigital_query_hold_press, 'H', {"E1|E2", "D1&E2|E1&D2", "E1&!D2", NEVER}},
    {"release", __cInputDigital_query_release, 'R', {"E1|E2", "!D1&E2|E1&!D2", "E1&!D2", NEVER}},
    {"double", __cInputDigital_query_double_click, 'C', {"E1|E2", "D1&E2|E1&D2", "E1&!D2", NEVER}},
};

// Works a rule out from left to right, no further than its result needs, and notes what it asks.
struct Rule {
    const cInputDigital& binding;
    char edge;
    std::vector<Question> asked{};

    bool holds(const char* rule) {
        bool all = *rule != '\0';
        for (bool negated = false; *rule != '\0'; ++rule) {
            if (*rule == '|' && all)
                return true;
            if (*rule == '|')
                all = true;
            if (*rule == 'D' || *rule == 'E') {
                all = all && answer(rule[0], rule[1]) != negated;
                ++rule;
            }
            negated = *rule == '!';
        }
        return all;
    }

    bool answer(char letter, char input) {
        if ((input == '1' ? binding.code1 : binding.code2) == -1)
            return false;
        asked.emplace_back(letter == 'E' ? edge : 'D', input == '1' ? FIRST : SECOND);
        return FakeTable::yes[asked.back()];
    }
};

// Every query with every logic, each input set or not, and every pair of answers for each.
TEST(InputDigital, QueriesFollowTheTablesAndAskNothingElse) {
    const FakeTable table;
    for (const Query& query : QUERIES) {
        for (int bits = 0; bits < 256; ++bits) {
            const auto bit = [bits](int index) { return (bits >> index & 1) != 0; };
            const int logic = bits >> 6;
            const cInputDigital binding{.code1 = static_cast<std::int16_t>(bit(0) ? FIRST : -1),
                                        .pad1 = -1,
                                        .code2 = static_cast<std::int16_t>(bit(1) ? 0 : -1),
                                        .pad2 = 2,
                                        .logic = static_cast<InputLogic>(logic)};
            FakeTable::yes = {{{query.edge, FIRST}, bit(2)}, {{query.edge, SECOND}, bit(3)}};
            if (query.edge != 'D')
                FakeTable::yes.insert({{{'D', FIRST}, bit(4)}, {{'D', SECOND}, bit(5)}});
            Rule rule{binding, query.edge};
            const bool expected = rule.holds(query.rules[logic]);
            FakeTable::asked.clear();
            EXPECT_EQ(expected, query.ask(&binding)) << query.name << " " << bits;
            EXPECT_EQ(rule.asked, FakeTable::asked) << query.name << " " << bits;
        }
    }
}

TEST(InputDigital, CodesReachThePlugInUntested) {
    const FakeTable table;

    struct Row {
        cInputDigital binding;
        std::uint16_t code;
        const char* name;
    };

    constexpr std::uint16_t wrapped = (32767 * 46 + 108) & 0xFFFF;
    for (const Row& row : {Row{{0, -1}, 0, "Any Key"}, Row{{0, 2}, 198, "Pad 3 Any"},
                           Row{{44, 3}, 287, "Pad 4 Hat 2 Down"}, Row{{-8, 0}, 100, "Print Screen"},
                           Row{{287, -1}, 287, "Pad 4 Hat 2 Down"}, Row{{288, -1}, 288, "INVALID"},
                           Row{{-2, -1}, 65534, "INVALID"}, Row{{0, 4}, 288, "INVALID"},
                           Row{{0, 1457}, 137, "INVALID"}, Row{{32767, 32767}, wrapped, "INVALID"},
                           // A pad below -1 counts for queries and not for names.
                           Row{{45, -2}, 63, "3"}}) {
        FakeTable::asked.clear();
        row.binding.query_down();
        EXPECT_THAT(FakeTable::asked, ElementsAre(Question('D', row.code))) << row.name;
        EXPECT_STREQ(row.name, row.binding.display_name1());
        const cInputDigital second{.code2 = row.binding.code1, .pad2 = row.binding.pad1};
        EXPECT_STREQ(row.name, second.display_name2());
    }
    EXPECT_STREQ("[NONE]", cInputDigital{.pad1 = 2}.display_name1());
    EXPECT_STREQ("[NONE]", cInputDigital{.pad2 = 2}.display_name2());
}

TEST(InputDigital, UnconnectedIsFalse) {
    for (const InputLogic logic : {InputLogic::Or, InputLogic::And, InputLogic::Not}) {
        const cInputDigital binding{1, -1, 2, -1, logic};
        EXPECT_FALSE(binding.query_down() || binding.query_press() || binding.query_release());
    }
}

} // namespace
