// SPDX-License-Identifier: MIT
#include "states.h"

#include "plugins/contracts/input.h"

namespace quillon::input_sdl {

void DigitalStates::begin_update(double now) {
    time = now;
    for (State& state : states) {
        state.answers[HOLD_PRESS] = false;
        if (now - state.pressed_at >= PRESS_SECONDS)
            state.answers[PRESS] = state.answers[DOUBLE_CLICK] = false;
        if (now - state.released_at >= RELEASE_SECONDS)
            state.answers[RELEASE] = false;
    }
}

void DigitalStates::set(int code, bool down) {
    State& state = states[static_cast<std::size_t>(code)];
    if (state.answers[DOWN] == down)
        return;
    state.answers[DOWN] = down;
    if (!down) {
        state.answers[RELEASE] = true;
        state.released_at = time;
        return;
    }
    const bool twice = state.clicked && time - state.pressed_at <= DOUBLE_CLICK_SECONDS;
    state.answers[PRESS] = true;
    state.answers[DOUBLE_CLICK] = twice;
    state.clicked = !twice;
    state.pressed_at = time;
    state.holds_at = time + HOLD_SECONDS;
}

void DigitalStates::release_all() {
    for (int code = 0; code < DIGITAL_CODES; ++code)
        set(code, false);
}

void DigitalStates::end_update() {
    for (State& state : states) {
        if (!state.answers[DOWN] || time < state.holds_at)
            continue;
        state.answers[HOLD_PRESS] = true;
        state.holds_at = time + HOLD_REPEAT_SECONDS;
    }
    answer_any(ANY_KEY, ANY_KEY + 1, ANY_MOUSE - 1);
    answer_any(ANY_MOUSE, LEFT_MOUSE, MIDDLE_MOUSE);
    for (int pad = FIRST_PAD_CODE; pad < DIGITAL_CODES; pad += PAD_CODES)
        answer_any(pad + PAD_ANY_BUTTON, pad + PAD_FIRST_BUTTON, pad + PAD_FIRST_ZONE - 1);
}

// True to each question that is true of any of the codes.
void DigitalStates::answer_any(int any, int first, int last) {
    auto& answers = states[static_cast<std::size_t>(any)].answers;
    answers = {};
    for (int code = first; code <= last; ++code)
        for (std::size_t question = 0; question < QUESTION_COUNT; ++question)
            answers[question] |= states[static_cast<std::size_t>(code)].answers[question];
}

} // namespace quillon::input_sdl
