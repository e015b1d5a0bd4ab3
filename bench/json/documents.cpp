// SPDX-License-Identifier: MIT
#include "documents.h"

#include <array>
#include <cstdio>
#include <random>

namespace {

// Draws by hand from the engine, whose sequence is the same everywhere.
class Dice {
public:
    unsigned below(unsigned limit) { return static_cast<unsigned>(engine() % limit); }

    double unit() { return static_cast<double>(engine()) / 4294967296.0; }

    double between(double low, double high) { return low + (high - low) * unit(); }

private:
    std::mt19937 engine{2024};
};

template <typename... Values>
std::string format(const char* pattern, Values... values) {
    std::array<char, 512> text = {};
    std::snprintf(text.data(), text.size(), pattern, values...);
    return text.data();
}

// Joins `count` pieces with a comma.
template <typename Piece>
std::string join(unsigned count, Piece piece) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += i != 0 ? "," : "";
        text += piece(i);
    }
    return text;
}

std::string wrap(const char* before, const std::string& text, const char* after) {
    std::string wrapped = before;
    wrapped += text;
    wrapped += after;
    return wrapped;
}

std::string coordinates(Dice& dice) {
    const auto point = [&](unsigned) {
        return format("[%.15g,%.15g]", dice.between(-141, -52), dice.between(41, 83));
    };
    const auto ring = [&](unsigned) { return wrap("[", join(20 + dice.below(300), point), "]"); };
    return wrap("{\"type\":\"MultiPolygon\",\"coordinates\":[", join(320, ring), "]}");
}

std::string mesh(Dice& dice) {
    const auto position = [&](unsigned) { return format("%.4f", dice.between(-20, 20)); };
    const auto index = [&](unsigned) { return format("%u", dice.below(30000)); };
    return wrap("{\"positions\":[", join(90000, position), "],") +
           wrap("\"normals\":[", join(60000, position), "],") +
           wrap("\"indices\":[", join(120000, index), "]}");
}

std::string sentence(Dice& dice) {
    constexpr std::array<const char*, 24> words = {"the",
                                                   "guard",
                                                   "speaks",
                                                   "of",
                                                   "a",
                                                   "lantern",
                                                   "beneath",
                                                   "harbour",
                                                   "stones",
                                                   "caf\xC3\xA9",
                                                   "and",
                                                   "never",
                                                   "answers",
                                                   "\\\"no\\\"",
                                                   "twice",
                                                   "before",
                                                   "dawn",
                                                   "comes",
                                                   "over",
                                                   "hills",
                                                   "stra\xC3\x9F"
                                                   "e",
                                                   "with",
                                                   "silver",
                                                   "\\n"};
    std::string text;
    const unsigned count = 6 + dice.below(40);
    for (unsigned i = 0; i < count; ++i) {
        text += i != 0 ? " " : "";
        text += words[dice.below(words.size())];
    }
    return text;
}

std::string dialogue(Dice& dice) {
    const auto line = [&](unsigned i) {
        return format("{\"id\":\"line_%05u\",\"speaker\":\"guard_%u\",\"text\":\"", i,
                      dice.below(40)) +
               sentence(dice) + "\",\"note\":\"" + sentence(dice) + "\"}";
    };
    return wrap("{\"language\":\"en\",\"lines\":[", join(5000, line), "]}");
}

std::string entities(Dice& dice) {
    const auto entity = [&](unsigned i) {
        return format("{\"id\":%u,\"name\":\"crate_%u\",\"kind\":\"prop\",\"visible\":%s,"
                      "\"parent\":null,\"position\":{\"x\":%.3f,\"y\":%.3f,\"z\":%.3f},"
                      "\"tags\":[\"static\",\"wood\"],\"health\":%u,\"script\":\"on_touch\"}",
                      i, i, dice.below(2) != 0 ? "true" : "false", dice.between(-500, 500),
                      dice.between(0, 40), dice.between(-500, 500), dice.below(101));
    };
    return wrap("{\"version\":3,\"entities\":[", join(10000, entity), "]}");
}

std::string settings(Dice& dice) {
    const auto section = [&](unsigned i) {
        return format("\n    \"section_%u\": {\n        \"enabled\": %s,\n        \"volume\": "
                      "%.2f,\n        \"binding\": \"KEY_%u\",\n        \"size\": [\n            "
                      "%u,\n            %u\n        ]\n    }",
                      i, dice.below(2) != 0 ? "true" : "false", dice.unit(), dice.below(256),
                      dice.below(4096), dice.below(4096));
    };
    const auto group = [&](unsigned) { return wrap("{", join(20, section), "\n}"); };
    return wrap("[", join(250, group), "]\n");
}

// Nested tables of identifiers, with most members null or short lists.
std::string catalogue(Dice& dice) {
    const auto area = [&](unsigned) {
        return format("{\"areaId\":%u,\"blockIds\":[]}", 205705993 + dice.below(99));
    };
    const auto price = [&](unsigned) {
        return format("{\"amount\":%u,\"audienceSubCategoryId\":337100890,\"seatCategoryId\":%u}",
                      dice.below(200) * 500, 338937235 + dice.below(99));
    };
    const auto performance = [&](unsigned i) {
        return format("{\"eventId\":%u,\"id\":%u,\"logo\":null,\"name\":null,\"prices\":[",
                      138586341 + dice.below(999), 339887544 + i) +
               join(1 + dice.below(4), price) + "],\"seatCategories\":[{\"areas\":[" +
               join(1 + dice.below(9), area) +
               format("],\"seatCategoryId\":%u}],\"start\":%u000,\"venueCode\":\"HALL_%u\"}",
                      338937235 + dice.below(99), 1372701600 + dice.below(9999999), dice.below(9));
    };
    const auto name = [&](unsigned i) {
        return format("\"%u\":\"Hall %u, row %u\"", 205705993 + i, dice.below(20), i);
    };
    return wrap("{\"areaNames\":{", join(400, name), "},") +
           wrap("\"performances\":[", join(2500, performance), "]}");
}

// What people write: long keys, links with escaped slashes, text beyond ASCII, wide identifiers.
std::string posts(Dice& dice) {
    const auto post = [&](unsigned i) {
        const unsigned id = dice.below(1000000000);
        return format("{\"created_at\":\"Sun Aug 31 00:29:%02u\",\"id\":50587489%010u,"
                      "\"id_str\":\"50587489%010u\",\"text\":\"",
                      i % 60, id, id) +
               sentence(dice) + " \xE5\x90\x8D\xE5\x89\x8D\xE3\x81\xAE" +
               format("\",\"truncated\":false,\"in_reply_to_status_id\":null,\"user\":{\"id\":%u,"
                      "\"screen_name\":\"player_%u\",\"url\":\"http:\\/\\/quay.example\\/p\\/%u\","
                      "\"followers_count\":%u,\"verified\":%s},\"entities\":{\"hashtags\":[],"
                      "\"urls\":[]},\"retweet_count\":%u,\"favorited\":false,\"lang\":\"ja\"}",
                      dice.below(2000000000), i, i, dice.below(5000),
                      dice.below(9) == 0 ? "true" : "false", dice.below(90));
    };
    return wrap("{\"statuses\":[", join(3000, post), "]}");
}

// Strings of which every third or fourth character is a short escape.
std::string short_escapes(Dice& dice) {
    constexpr std::array<const char*, 8> pieces = {"\\n", "\\t", "\\\"", "\\\\",
                                                   "ab",  "c",   "def",  " "};
    const auto text = [&](unsigned) {
        std::string made = "\"";
        for (unsigned left = 20 + dice.below(100); left != 0; --left)
            made += pieces[dice.below(pieces.size())];
        return made + "\"";
    };
    return wrap("[", join(6000, text), "]");
}

// Strings written in \u escapes alone, a few of them surrogate pairs.
std::string unicode_escapes(Dice& dice) {
    const auto text = [&](unsigned) {
        std::string made = "\"";
        for (unsigned left = 5 + dice.below(40); left != 0; --left)
            made += dice.below(20) == 0 ? format("\\ud83d\\ude%02x", dice.below(80))
                                        : format("\\u%04x", 0x3041 + dice.below(0x4000));
        return made + "\"";
    };
    return wrap("[", join(8000, text), "]");
}

// Containers of a single entry within each other.
std::string deep(Dice& dice) {
    const auto chain = [&](unsigned) {
        std::string before;
        std::string after;
        for (unsigned left = 2 + dice.below(20); left != 0; --left) {
            const bool is_array = dice.below(4) != 0;
            before += is_array ? "[" : "{\"in\":";
            after.insert(0, is_array ? "]" : "}");
        }
        return before + format("%u", dice.below(1000)) + after;
    };
    return wrap("[", join(12000, chain), "]");
}

} // namespace

std::vector<Document> make_documents() {
    Dice dice;
    return {{"coordinates", coordinates(dice)},
            {"mesh", mesh(dice)},
            {"dialogue", dialogue(dice)},
            {"entities", entities(dice)},
            {"settings", settings(dice)},
            {"catalogue", catalogue(dice)},
            {"posts", posts(dice)},
            {"short_escapes", short_escapes(dice)},
            {"unicode_escapes", unicode_escapes(dice)},
            {"deep", deep(dice)}};
}
