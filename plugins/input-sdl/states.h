// SPDX-License-Identifier: MIT
// The state of every input code, whatever device it comes from.
#pragma once

#include "quillon/input/codes.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon::input_sdl {

// The digital inputs: those that are down, and the edges that the current update shows.
//
// A code outside the tables is never down.
class DigitalStates {
public:
    enum Question : std::size_t { DOWN, PRESS, HOLD_PRESS, RELEASE, DOUBLE_CLICK, QUESTION_COUNT };

    // Ends the edges that have been visible long enough; `now` in seconds, never falling.
    void begin_update(double now);

    // Repeating the current state changes nothing.
    void set(int code, bool down);
    void release_all();

    // Finds the holds, then the three kinds of Any from their keys or buttons.
    void end_update();

    bool answer(Question question, std::uint16_t code) const {
        return code < states.size() && states[code].answers[question];
    }

private:
    struct State {
        std::array<bool, QUESTION_COUNT> answers{};
        double pressed_at = 0;
        double released_at = 0;
        double holds_at = 0;
        bool clicked = false; // its last press may become the first half of a double click
    };

    void answer_any(int any, int first, int last);

    std::array<State, DIGITAL_CODES> states{};
    double time = 0;
};

// The axes; a code outside the tables rests at 0.
class AnalogStates {
public:
    void begin_update() { previous = values; }

    void set(int code, float value) { values[static_cast<std::size_t>(code)] = value; }

    void add(int code, float change) { values[static_cast<std::size_t>(code)] += change; }

    float value(std::uint16_t code) const { return code < values.size() ? values[code] : 0; }

    // The change of the last update.
    float delta(std::uint16_t code) const {
        return code < values.size() ? values[code] - previous[code] : 0;
    }

private:
    std::array<float, ANALOG_CODES> values{};
    std::array<float, ANALOG_CODES> previous{};
};

} // namespace quillon::input_sdl
