// SPDX-License-Identifier: MIT
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

// In wide terminals, and in narrow ones.
constexpr std::size_t WIDE = 90;
constexpr std::size_t NAME_WIDTHS[] = {32, 22};
constexpr std::size_t BAR_HALVES[] = {12, 8};

// What is left of a travel from one frame to the next: a hundredth after 0.7 seconds.
constexpr float FADING = 0.9F;
constexpr float GONE = 0.005F; // less is shown as 0

constexpr std::int16_t MOUSE_AXES[] = {quillon::MOUSE_X, quillon::MOUSE_Y};

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

std::string words_of(std::initializer_list<std::pair<const char*, bool>> answers) {
    std::string words;
    for (const auto& [word, yes] : answers)
        if (yes)
            words += std::string(" ") + word;
    return words;
}

std::string answers(const cInputDigital& input) {
    return words_of({{"down", input.query_down()},
                     {"press", input.query_press()},
                     {"release", input.query_release()},
                     {"hold", input.query_hold_press()},
                     {"double-click", input.query_double_click()}});
}

std::string answers(const cInputAnalog& input) {
    return words_of(
        {{"up", input.query_up()}, {"down", input.query_down()}, {"center", input.query_center()}});
}

} // namespace

InputView::InputView(std::span<const Binding> watched, int screen_columns)
    : bindings(watched), columns(static_cast<std::size_t>(screen_columns)) {
    const bool is_narrow = columns > 0 && columns < WIDE;
    name_width = NAME_WIDTHS[is_narrow];
    bar_half = BAR_HALVES[is_narrow];
}

// A longer line would wrap, and the next frame would not cover it.
std::string InputView::line(std::string_view label, const std::string& text) const {
    std::string whole(label);
    whole.resize(std::max(name_width, label.size() + 1), ' ');
    whole += text;
    if (columns > 0 && whole.size() > columns)
        whole = whole.substr(0, columns - 3) + "...";
    return whole + "\n";
}

// "[       ====|            ] -0.33"
std::string InputView::bar(float value) const {
    const auto filled = std::min(bar_half, static_cast<std::size_t>(std::lround(
                                               std::fabs(value) * static_cast<float>(bar_half))));
    const std::string blank(bar_half - filled, ' ');
    const std::string full(filled, '=');
    const std::string empty(bar_half, ' ');
    char number[16];
    std::snprintf(number, sizeof number, "%+.2f", static_cast<double>(value));
    return (value < 0 ? "[" + blank + full + "|" + empty : "[" + empty + "|" + full + blank) +
           "] " + number;
}

std::string InputView::axis_line(cInputAnalog axis, float value) const {
    return line(axis.display_name(), bar(value));
}

std::string InputView::axis_lines(const quillon::Input& plugin) {
    std::string lines;
    for (std::size_t i = 0; i < travel.size(); ++i) {
        const cInputAnalog axis{.code = MOUSE_AXES[i]};
        const float now = axis.query();
        const float faded = std::fabs(travel[i]) * FADING < GONE ? 0 : travel[i] * FADING;
        travel[i] = std::fabs(now) >= std::fabs(faded) ? now : faded;
        lines += axis_line(axis, travel[i]);
    }
    for (std::int16_t pad = 0; pad < quillon::PAD_COUNT; ++pad) {
        const char* const name = plugin.pad_name(static_cast<std::uint16_t>(pad));
        if (name == nullptr)
            continue;
        lines += line("Pad " + std::to_string(pad + 1), name);
        for (std::int16_t code = 0; code < quillon::PAD_AXES; ++code) {
            const cInputAnalog axis{.code = code, .pad = pad};
            lines += axis_line(axis, axis.query());
        }
    }
    return lines;
}

std::string InputView::frame(const quillon::Input& plugin) {
    std::string text = line("pressed", pressed_names()) + axis_lines(plugin);
    for (const Binding& binding : bindings) {
        const std::string value = std::holds_alternative<cInputAnalog>(binding.input)
                                      ? bar(std::get<cInputAnalog>(binding.input).query())
                                      : "";
        text += line(
            "bound: " + binding.text,
            value + std::visit([](const auto& input) { return answers(input); }, binding.input));
    }
    return text;
}

} // namespace tool
