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

// The width of names, in terminals of at least so many columns.
struct NameWidth {
    std::size_t columns;
    std::size_t width;
};

constexpr NameWidth NAME_WIDTHS[] = {{90, 32}, {60, 22}, {0, 18}};

constexpr std::size_t MAX_BAR_HALF = 12;
constexpr std::size_t MIN_BAR_HALF = 3;
// What a line has beside its name and the halves of a bar: "[|] +0.00", and " center" of a binding.
constexpr std::size_t BAR_TEXT = 16;

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

void InputView::fit(int screen_columns) {
    columns = static_cast<std::size_t>(screen_columns);
    name_width = NAME_WIDTHS[0].width;
    bar_half = MAX_BAR_HALF;
    if (columns == 0)
        return;
    name_width = std::ranges::find_if(NAME_WIDTHS, [this](const NameWidth& row) {
                     return columns >= row.columns;
                 })->width;
    const std::size_t beside = name_width + BAR_TEXT;
    bar_half =
        std::clamp(columns > beside ? (columns - beside) / 2 : 0, MIN_BAR_HALF, MAX_BAR_HALF);
}

// A longer line would wrap, and the next frame would not cover it. The name gives way first, as
// what follows is the news.
std::string InputView::line(std::string_view label, const std::string& text) const {
    std::string whole(label);
    if (columns > 0 && whole.size() >= name_width && whole.size() + 1 + text.size() > columns) {
        const std::size_t rest = columns > text.size() ? columns - text.size() : 0;
        whole = whole.substr(0, std::max(name_width, rest) - 4) + "...";
    }
    whole.resize(std::max(name_width, whole.size() + 1), ' ');
    whole += text;
    if (columns > 3 && whole.size() > columns)
        whole = whole.substr(0, columns - 3) + "...";
    return whole + "\n";
}

// "[       ====|            ] -0.33"
std::string InputView::bar(float value) const {
    const float size = std::fabs(value);
    // What the number shows, the bar shows too.
    const long least = size >= GONE ? 1 : 0;
    const long length = std::max(least, std::lround(size * static_cast<float>(bar_half)));
    const auto filled = std::min(bar_half, static_cast<std::size_t>(length));
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

std::string InputView::frame(const quillon::Input& plugin, int screen_columns) {
    fit(screen_columns);
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
