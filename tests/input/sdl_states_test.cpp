// SPDX-License-Identifier: MIT
#include "plugins/contracts/input.h"
#include "plugins/input-sdl/states.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

using namespace quillon;
using quillon::input_sdl::DigitalStates;

constexpr int KEY = 16;

struct Step {
    double now;
    const char* changes;  // "+" is down and "-" up, in that order
    const char* expected; // down, press, hold press, release, click (twice)
};

// The initials of the questions that are answered with yes.
std::string answers(const DigitalStates& states, int code) {
    std::string yes;
    for (std::size_t question = 0; question < DigitalStates::QUESTION_COUNT; ++question)
        if (states.answer(static_cast<DigitalStates::Question>(question),
                          static_cast<std::uint16_t>(code)))
            yes += "DPHRC"[question];
    return yes;
}

void update(DigitalStates& states, double now, int code, const char* changes) {
    states.begin_update(now);
    for (; *changes != '\0'; ++changes)
        states.set(code, *changes == '+');
    states.end_update();
}

void play(std::initializer_list<Step> steps) {
    DigitalStates states;
    for (const Step& step : steps) {
        update(states, step.now, KEY, step.changes);
        EXPECT_EQ(step.expected, answers(states, KEY)) << step.now;
        EXPECT_EQ(step.expected, answers(states, ANY_KEY)) << step.now;
    }
}

TEST(SdlDigitalStates, EdgesLastOneUpdate) {
    play({{2, "+", "DP"},
          {2.01, "+", "D"},
          {2.02, "-", "R"},
          {2.03, "-", ""},
          {9, "+-", "PR"},
          {30, "+", "DP"},
          {30.4, "-+", "DPR"}});
}

TEST(SdlDigitalStates, HoldsRepeatFromTheTimeTheyAreSeen) {
    constexpr double held = 5 + HOLD_SECONDS;
    constexpr double repeated = held + 0.12 + HOLD_REPEAT_SECONDS;
    play({{5, "+", "DP"},
          {held - 0.01, "", "D"},
          {held + 0.1, "", "DH"},
          {held + 0.11, "", "D"},
          {repeated, "", "DH"},
          {repeated + 0.01, "", "D"},
          {60, "", "DH"},
          {70, "-", "R"},
          {70.5, "+", "DP"},
          {70.5 + HOLD_SECONDS / 2, "", "D"}});
}

TEST(SdlDigitalStates, DoubleClicksComeInPairs) {
    constexpr double quick = DOUBLE_CLICK_SECONDS * 0.9;
    play({{1, "+-", "PR"},
          {1 + quick, "+-", "PRC"},
          {1 + 2 * quick, "+-", "PR"},
          {1 + 3 * quick, "+-", "PRC"},
          {11, "+-", "PR"},
          {11 + quick, "+-", "PRC"}});
}

TEST(SdlDigitalStates, AnyAnswersForItsOwnKindOnly) {
    DigitalStates states;
    update(states, 0.1, LEFT_MOUSE, "+");
    EXPECT_EQ("", answers(states, ANY_KEY));
    EXPECT_EQ("DP", answers(states, ANY_MOUSE));
    update(states, 0.2, MOUSE_WHEEL_UP, "+");
    EXPECT_EQ("D", answers(states, ANY_MOUSE)) << "the wheel is no button";
    update(states, 0.3, FIRST_PAD_CODE + PAD_FIRST_ZONE, "+");
    EXPECT_EQ("", answers(states, FIRST_PAD_CODE)) << "an axis is no button";
    update(states, 0.4, FIRST_PAD_CODE + PAD_BUTTONS, "+");
    EXPECT_EQ("DP", answers(states, FIRST_PAD_CODE));
    update(states, 1.0, KEY, "+");
    update(states, 1.1, KEY + 1, "+");
    EXPECT_EQ("DP", answers(states, ANY_KEY)) << "each key is a press";
    update(states, 1.2, KEY, "-");
    EXPECT_EQ("DR", answers(states, ANY_KEY));
    EXPECT_EQ("", answers(states, DIGITAL_CODES)) << "no such code";
}

} // namespace
