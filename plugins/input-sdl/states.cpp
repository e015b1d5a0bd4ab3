#include "states.h"

#include "input_sdl.h"

namespace quillon::input_sdl {

void DigitalStates::begin_update(double now) {
    time = now;
    for (State& state : states) {
        state.answers[HoldPress] = false;
        if (now - state.pressedAt >= PRESS_SECONDS)
            state.answers[Press] = state.answers[DoubleClick] = false;
        if (now - state.releasedAt >= RELEASE_SECONDS)
            state.answers[Release] = false;
    }
}

void DigitalStates::set(int code, bool down) {
    State& state = states[static_cast<std::size_t>(code)];
    if (state.answers[Down] == down)
        return;
    state.answers[Down] = down;
    if (!down) {
        state.answers[Release] = true;
        state.releasedAt = time;
        return;
    }
    const bool twice = state.clicked && time - state.pressedAt <= DOUBLE_CLICK_SECONDS;
    state.answers[Press] = true;
    state.answers[DoubleClick] = twice;
    state.clicked = !twice;
    state.pressedAt = time;
    state.holdsAt = time + HOLD_SECONDS;
}

void DigitalStates::end_update() {
    for (State& state : states) {
        if (!state.answers[Down] || time < state.holdsAt)
            continue;
        state.answers[HoldPress] = true;
        state.holdsAt = time + HOLD_REPEAT_SECONDS;
    }
    answer_any(ANY_KEY, ANY_KEY + 1, ANY_MOUSE - 1);
    answer_any(ANY_MOUSE, LEFT_MOUSE, MIDDLE_MOUSE);
    for (int pad = FIRST_PAD_CODE; pad < DIGITAL_CODES; pad += PAD_CODES)
        answer_any(pad + PAD_ANY_BUTTON, pad + PAD_FIRST_BUTTON, pad + PAD_FIRST_ZONE - 1);
}

// True to each question that any of the codes answers with yes.
void DigitalStates::answer_any(int any, int first, int last) {
    auto& answers = states[static_cast<std::size_t>(any)].answers;
    answers = {};
    for (int code = first; code <= last; ++code)
        for (std::size_t question = 0; question < QuestionCount; ++question)
            answers[question] |= states[static_cast<std::size_t>(code)].answers[question];
}

} // namespace quillon::input_sdl
