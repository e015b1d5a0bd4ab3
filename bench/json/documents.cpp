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

template <class... Values>
std::string format(const char* pattern, Values... values) {
    std::array<char, 512> text = {};
    std::snprintf(text.data(), text.size(), pattern, values...);
    return text.data();
}

// Joins `count` pieces with a comma.
template <class Piece>
std::string join(unsigned count, Piece piece) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += i != 0 ? "," : "";
        text += piece(i);
    }
    return text;
}

std::string wrap(const char* before, const std::string& text, const char* behind) {
    std::string wrapped = before;
    wrapped += text;
    wrapped += behind;
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

} // namespace

std::vector<Document> make_documents() {
    Dice dice;
    return {{"coordinates", coordinates(dice)},
            {"mesh", mesh(dice)},
            {"dialogue", dialogue(dice)},
            {"entities", entities(dice)},
            {"settings", settings(dice)}};
}
