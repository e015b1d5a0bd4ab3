// What the plug-in knows of every code, apart from where it comes from.
#pragma once

#include "quillon/input/codes.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon::input_sdl {

// The digital inputs: which are down, and which edges the current update shows.
//
// A code outside the tables is never down.
class DigitalStates {
public:
    enum Question : std::size_t { Down, Press, HoldPress, Release, DoubleClick, QuestionCount };

    // Ends the edges that have been visible long enough; `now` in seconds, never falling.
    void begin_update(double now);

    // Repeating what is known already changes nothing.
    void set(int code, bool down);

    // Finds the holds, then answers for the three kinds of Any from their keys or buttons.
    void end_update();

    bool answer(Question question, std::uint16_t code) const {
        return code < states.size() && states[code].answers[question];
    }

private:
    struct State {
        std::array<bool, QuestionCount> answers{};
        double pressedAt = 0;
        double releasedAt = 0;
        double holdsAt = 0;
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

    // What the last update changed.
    float delta(std::uint16_t code) const {
        return code < values.size() ? values[code] - previous[code] : 0;
    }

private:
    std::array<float, ANALOG_CODES> values{};
    std::array<float, ANALOG_CODES> previous{};
};

} // namespace quillon::input_sdl
