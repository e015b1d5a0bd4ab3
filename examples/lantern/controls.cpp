// SPDX-License-Identifier: MIT
#include "controls.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace lantern {

namespace {

using quillon::cInputAnalog;
using quillon::cInputDigital;
using quillon::digital_code;
using quillon::InputLogic;

struct Binding {
    const char* name;
    cInputDigital input;
};

cInputDigital either(const char* first, const char* second) {
    return {.code1 = digital_code(first), .code2 = digital_code(second)};
}

// In the order of Action.
std::array<Binding, 12> bindings = {{
    {"left", either("Left", "Pad 1 Hat 1 Left")},
    {"right", either("Right", "Pad 1 Hat 1 Right")},
    {"up", either("Up", "Pad 1 Hat 1 Up")},
    {"down", either("Down", "Pad 1 Hat 1 Down")},
    {"boost", either("Space", "Pad 1 Btn 1")},
    {"brake", either("Left Shift", "Pad 1 Btn 2")},
    {"start", either("Enter", "Pad 1 Btn 8")},
    {"help", either("F1", "Pad 1 Btn 7")},
    // Not with Left Control, which makes it a photo.
    {"pause",
     {.code1 = digital_code("P"), .code2 = digital_code("Left Control"), .logic = InputLogic::Not}},
    {"fullscreen", either("F11", "")},
    {"photo",
     {.code1 = digital_code("Left Control"), .code2 = digital_code("P"), .logic = InputLogic::And}},
    {"quit", either("Escape", "")},
}};

const cInputAnalog TURN_AXIS{.code = 0, .pad = 0, .dead_zone = 0.15F};
const cInputAnalog CLIMB_AXIS{.code = 1, .pad = 0, .dead_zone = 0.15F, .inverted = true};

const cInputDigital& input_of(Action action) {
    return bindings[static_cast<std::size_t>(action)].input;
}

std::int16_t code_of(const std::string& name) {
    const std::int16_t code = digital_code(name);
    if (code == quillon::NO_INPUT)
        throw std::runtime_error("no input is called \"" + name +
                                 "\"; `quillon inputs` lists them");
    return code;
}

std::int8_t lever(Action less, Action more, const cInputAnalog& axis) {
    const float keys = float(input_of(more).query_down()) - float(input_of(less).query_down());
    return static_cast<std::int8_t>(127.0F * std::clamp(keys + axis.query(), -1.0F, 1.0F));
}

} // namespace

void bind(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    const auto binding = std::find_if(bindings.begin(), bindings.end(), [&](const Binding& known) {
        return known.name == text.substr(0, equals);
    });
    if (binding == bindings.end() || equals == text.size())
        throw std::runtime_error("can't bind \"" + text + "\"; write it as boost=Left Shift");
    const std::string inputs = text.substr(equals + 1);
    const std::size_t plus = inputs.find('+', 1);
    binding->input = {.code1 = code_of(inputs.substr(0, plus))};
    if (plus == std::string::npos)
        return;
    binding->input.code2 = code_of(inputs.substr(plus + 1));
    binding->input.logic = InputLogic::And;
}

bool is_pressed(Action action) {
    return input_of(action).query_press();
}

Input steering() {
    return {lever(Action::Left, Action::Right, TURN_AXIS),
            lever(Action::Down, Action::Up, CLIMB_AXIS),
            static_cast<std::uint8_t>((input_of(Action::Boost).query_down() ? Input::BOOST : 0) |
                                      (input_of(Action::Brake).query_down() ? Input::BRAKE : 0))};
}

std::string help_text() {
    std::string text;
    for (const auto& [name, input] : bindings) {
        text += std::string(name) + ":  " + input.display_name1();
        if (input.code2 != quillon::NO_INPUT && input.logic != InputLogic::Not)
            text += (input.logic == InputLogic::And ? " + " : " or ") +
                    std::string(input.display_name2());
        text += '\n';
    }
    return text;
}

} // namespace lantern
