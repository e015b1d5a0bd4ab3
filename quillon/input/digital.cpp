// SPDX-License-Identifier: MIT
#include "quillon/input/digital.h"

#include "quillon/core/modules.h"
#include "quillon/input/names.h"

namespace quillon {
namespace {

static_assert(modInput::digital_pad_code(0, 0) == FIRST_PAD_CODE &&
              modInput::digital_pad_code(PAD_CODES - 1, PAD_COUNT - 1) == DIGITAL_CODES - 1);

// One of the five questions that the input plug-in answers about a code.
using Question = bool (modInput::*)(std::uint16_t) const;

// One of a binding's two inputs.
struct Input {
    const modInput& module;
    std::int16_t code;
    std::int16_t pad;

    bool answers(Question question) const {
        if (code == NO_INPUT)
            return false;
        const std::int16_t absolute = pad == -1 ? code : modInput::digital_pad_code(code, pad);
        return (module.*question)(static_cast<std::uint16_t>(absolute));
    }

    bool down() const { return answers(&modInput::key_down); }
};

// When two inputs that are joined by And answer together.
using Chord = bool (*)(const Input& first, const Input& second, Question edge);

bool both(const Input& first, const Input& second, Question state) {
    return first.answers(state) && second.answers(state);
}

bool completed(const Input& first, const Input& second, Question edge) {
    return (first.down() && second.answers(edge)) || (first.answers(edge) && second.down());
}

bool last_one_left(const Input& first, const Input& second, Question edge) {
    return (!first.down() && second.answers(edge)) || (first.answers(edge) && !second.down());
}

bool query(const cInputDigital& binding, Question question, Chord chord) {
    const modInput& module = *__mInput_instance();
    const Input first{module, binding.code1, binding.pad1};
    const Input second{module, binding.code2, binding.pad2};
    switch (binding.logic) {
    case InputLogic::Or:
        return first.answers(question) || second.answers(question);
    case InputLogic::And:
        return chord(first, second, question);
    case InputLogic::Not:
        return first.answers(question) && !second.down();
    }
    return false;
}

const char* display_name(std::int16_t code, std::int16_t pad) {
    if (code == NO_INPUT)
        return NO_INPUT_NAME;
    const int row = pad < 0 ? code : pad * PAD_CODES + code + FIRST_PAD_CODE;
    return name_at(digital_input_names, row);
}

} // namespace
} // namespace quillon

using namespace quillon;

bool __cInputDigital_query_down(const cInputDigital* binding) {
    return query(*binding, &modInput::key_down, both);
}

bool __cInputDigital_query_press(const cInputDigital* binding) {
    return query(*binding, &modInput::key_press, completed);
}

bool __cInputDigital_query_release(const cInputDigital* binding) {
    return query(*binding, &modInput::key_release, last_one_left);
}

bool __cInputDigital_query_hold_press(const cInputDigital* binding) {
    return query(*binding, &modInput::key_hold_press, completed);
}

bool __cInputDigital_query_double_click(const cInputDigital* binding) {
    return query(*binding, &modInput::key_double_click, completed);
}

const char* __cInputDigital_display_name1(const cInputDigital* binding) {
    return display_name(binding->code1, binding->pad1);
}

const char* __cInputDigital_display_name2(const cInputDigital* binding) {
    return display_name(binding->code2, binding->pad2);
}
