// SPDX-License-Identifier: MIT
#include "bindings.h"

#include "command.h"
#include "nearest_word.h"
#include "quillon/containers/name_hash.h"
#include "quillon/input/names.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace tool {
namespace {

using quillon::InputLogic;
using quillon::NO_INPUT;

// Full travel is 1; less than this is a stick at rest.
constexpr float DEAD_ZONE = 0.2F;

constexpr struct {
    std::string_view word;
    InputLogic logic;
} JOINS[] = {
    {" + ", InputLogic::And},
    {" And ", InputLogic::And},
    {" Or ", InputLogic::Or},
    {" Not ", InputLogic::Not},
};

template <typename Names>
std::int16_t code_of(const Names& names, std::string_view name) {
    const auto row = std::ranges::find_if(names, [name](const char* candidate) {
        return quillon::equal_ignoring_case(candidate, name);
    });
    return row == names.end() ? NO_INPUT : static_cast<std::int16_t>(row - names.begin());
}

std::int16_t digital_code_of(std::string_view name) {
    return code_of(quillon::digital_input_names, name);
}

// "+" is a name and part of names, so a join is one only where both of its sides are names.
std::optional<quillon::cInputDigital> joined(std::string_view text) {
    for (std::size_t at = 1; at < text.size(); ++at)
        for (const auto& [word, logic] : JOINS) {
            if (!quillon::equal_ignoring_case(text.substr(at, word.size()), word))
                continue;
            const std::int16_t first = digital_code_of(text.substr(0, at));
            const std::int16_t second = digital_code_of(text.substr(at + word.size()));
            if (first != NO_INPUT && second != NO_INPUT)
                return quillon::cInputDigital{first, -1, second, -1, logic};
        }
    return std::nullopt;
}

// The part of `text` that is not a name: all of it, or one side of a join.
std::string wrong_name(std::string_view text) {
    for (std::size_t at = 1; at < text.size(); ++at)
        for (const auto& join : JOINS)
            if (quillon::equal_ignoring_case(text.substr(at, join.word.size()), join.word)) {
                const std::string_view first = text.substr(0, at);
                const bool first_is_good = digital_code_of(first) != NO_INPUT;
                return std::string(first_is_good ? text.substr(at + join.word.size()) : first);
            }
    return std::string(text);
}

[[noreturn]] void refuse(const std::string& text) {
    std::vector<std::string> known(quillon::digital_input_names.begin(),
                                   quillon::digital_input_names.end());
    known.insert(known.end(), quillon::analog_input_names.begin(),
                 quillon::analog_input_names.end());
    const std::string wrong = wrong_name(text);
    const std::string nearest = nearest_word(wrong, known);
    throw Failure("no input is called '" + wrong + "'" +
                  (nearest.empty() ? "; docs/input.md lists the names"
                                   : "; did you mean '" + nearest + "'?"));
}

} // namespace

Binding parse_binding(const std::string& text) {
    if (const std::int16_t code = digital_code_of(text); code != NO_INPUT)
        return {text, quillon::cInputDigital{.code1 = code}};
    if (const std::int16_t code = code_of(quillon::analog_input_names, text); code != NO_INPUT)
        return {text, quillon::cInputAnalog{.code = code, .dead_zone = DEAD_ZONE}};
    if (const auto pair = joined(text))
        return {text, *pair};
    refuse(text);
}

} // namespace tool
