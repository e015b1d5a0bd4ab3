#include "input_view.h"

#include "plugins/contracts/input.h"
#include "quillon/core/modules.h"
#include "quillon/input/names.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace tool {
namespace {

using quillon::cInputAnalog;
using quillon::cInputDigital;

constexpr std::size_t NAME_WIDTH = 32;
constexpr int BAR_HALF = 12;

std::string label(std::string_view text) {
    const std::size_t padding = text.size() < NAME_WIDTH ? NAME_WIDTH - text.size() : 1;
    return std::string(text) + std::string(padding, ' ');
}

// "[       ====|            ] -0.33"
std::string bar(float value) {
    const int filled = static_cast<int>(std::lround(std::fabs(value) * BAR_HALF));
    const std::string blank(static_cast<std::size_t>(BAR_HALF - filled), ' ');
    const std::string full(static_cast<std::size_t>(filled), '=');
    const std::string empty(BAR_HALF, ' ');
    char number[16];
    std::snprintf(number, sizeof number, "%+.2f", static_cast<double>(value));
    return (value < 0 ? "[" + blank + full + "|" + empty : "[" + empty + "|" + full + blank) +
           "] " + number;
}

// A stick at rest is no press, and Any only repeats what is shown anyway.
bool is_shown(std::string_view name) {
    return name.find("Any") == std::string_view::npos && !name.ends_with("Center");
}

std::string pressed_names() {
    std::string names;
    for (std::int16_t code = 0; code < quillon::DIGITAL_CODES; ++code) {
        const cInputDigital input{.code1 = code};
        if (is_shown(input.display_name1()) && (input.query_down() || input.query_press()))
            names += (names.empty() ? "" : ", ") + std::string(input.display_name1());
    }
    return names.empty() ? "nothing" : names;
}

std::string axis_line(cInputAnalog axis) {
    return label(axis.display_name()) + bar(axis.query()) + "\n";
}

std::string axis_lines(const quillon::Input& plugin) {
    std::string lines =
        axis_line({.code = quillon::MOUSE_X}) + axis_line({.code = quillon::MOUSE_Y});
    for (std::int16_t pad = 0; pad < quillon::PAD_COUNT; ++pad) {
        const char* const name = plugin.pad_name(static_cast<std::uint16_t>(pad));
        if (name == nullptr)
            continue;
        lines += label("Pad " + std::to_string(pad + 1)) + name + "\n";
        for (std::int16_t axis = 0; axis < quillon::PAD_AXES; ++axis)
            lines += axis_line({.code = axis, .pad = pad});
    }
    return lines;
}

std::string words_of(std::initializer_list<std::pair<const char*, bool>> answers) {
    std::string words;
    for (const auto& [word, yes] : answers)
        if (yes)
            words += std::string(" ") + word;
    return words;
}

struct Answers {
    std::string operator()(const cInputDigital& input) const {
        return words_of({{"down", input.query_down()},
                         {"press", input.query_press()},
                         {"release", input.query_release()},
                         {"hold", input.query_hold_press()},
                         {"double-click", input.query_double_click()}});
    }

    std::string operator()(const cInputAnalog& input) const {
        return " " + bar(input.query()) +
               words_of({{"up", input.query_up()},
                         {"down", input.query_down()},
                         {"center", input.query_center()}});
    }
};

} // namespace

std::string input_view(const quillon::Input& plugin, std::span<const Binding> bindings) {
    std::string text = label("pressed") + pressed_names() + "\n" + axis_lines(plugin);
    for (const Binding& binding : bindings)
        text += label("bound: " + binding.text) + std::visit(Answers(), binding.input) + "\n";
    return text;
}

} // namespace tool
