#include "plugins/input-sdl/input_sdl.h"
#include "plugins/input-sdl/states.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace quillon::input_sdl;

constexpr int KEY = 16;
constexpr int OTHER_KEY = 17;

// One update at `now` in which the keys change as told: "+" is down and "-" up, in that order.
void update(DigitalStates& states, double now, int code = KEY, const char* changes = "") {
    states.begin_update(now);
    for (; *changes != '\0'; ++changes)
        states.set(code, *changes == '+');
    states.end_update();
}

// The initials of the questions that are answered with yes.
std::string answers(const DigitalStates& states, int code = KEY) {
    std::string yes;
    for (std::size_t question = 0; question < DigitalStates::QuestionCount; ++question)
        if (states.answer(static_cast<DigitalStates::Question>(question),
                          static_cast<std::uint16_t>(code)))
            yes += "DPHRC"[question];
    return yes;
}

TEST(SdlDigitalStates, EdgesLastOneUpdate) {
    DigitalStates states;

    const struct {
        double now;
        const char* changes;
        const char* expected;
    } updates[] = {
        {1.0, "", ""},       {2.0, "+", "DP"},  {2.01, "", "D"}, {2.02, "-", "R"},
        {2.03, "", ""},      {9.0, "+-", "PR"}, {9.9, "", ""},   {20.0, "+", "DP"},
        {20.1, "+", "D"},    {20.2, "-", "R"},  {20.3, "-", ""}, {30.0, "+", "DP"},
        {30.4, "-+", "DPR"},
    };

    for (const auto& step : updates) {
        update(states, step.now, KEY, step.changes);
        EXPECT_EQ(step.expected, answers(states)) << step.now;
        EXPECT_EQ(step.expected, answers(states)) << "asked again at " << step.now;
        EXPECT_EQ(step.expected, answers(states, quillon::ANY_KEY)) << step.now;
    }
}

TEST(SdlDigitalStates, HoldsRepeatFromTheTimeTheyAreSeen) {
    DigitalStates states;
    update(states, 5, KEY, "+");

    const struct {
        double after;
        const char* expected;
    } updates[] = {
        {HOLD_SECONDS - 0.01, "D"},
        {HOLD_SECONDS + 0.01, "DH"},
        {HOLD_SECONDS + 0.02, "D"},
        {HOLD_SECONDS + 0.12 + HOLD_REPEAT_SECONDS, "DH"},
        {HOLD_SECONDS + 0.13 + HOLD_REPEAT_SECONDS, "D"},
        {60, "DH"}, // a long frame is one repeat
        {60.01, "D"},
    };

    for (const auto& step : updates) {
        update(states, 5 + step.after);
        EXPECT_EQ(step.expected, answers(states)) << step.after;
    }
    update(states, 70, KEY, "-");
    update(states, 70.1, KEY, "+");
    update(states, 70.1 + HOLD_SECONDS / 2);
    EXPECT_EQ("D", answers(states)) << "a new press holds anew";
}

TEST(SdlDigitalStates, DoubleClicksComeInPairs) {
    DigitalStates states;
    const double quick = DOUBLE_CLICK_SECONDS * 0.9;

    const struct {
        double since_last;
        const char* expected;
    } presses[] = {
        {1, "PR"}, {quick, "PRC"}, {quick, "PR"},  {quick, "PRC"},
        {5, "PR"}, {5, "PR"},      {quick, "PRC"},
    };

    double now = 0;
    for (const auto& press : presses) {
        update(states, now += press.since_last, KEY, "+-");
        EXPECT_EQ(press.expected, answers(states)) << now;
    }
}

TEST(SdlDigitalStates, AnyAnswersForItsOwnKindOnly) {
    DigitalStates states;
    update(states, 0.1, quillon::LEFT_MOUSE, "+");
    EXPECT_EQ("", answers(states, quillon::ANY_KEY));
    EXPECT_EQ("DP", answers(states, quillon::ANY_MOUSE));
    update(states, 0.2, quillon::MOUSE_WHEEL_UP, "+");
    EXPECT_EQ("D", answers(states, quillon::ANY_MOUSE)) << "the wheel is no button";
    update(states, 0.3, quillon::FIRST_PAD_CODE + quillon::PAD_BUTTONS, "+");
    update(states, 0.4, quillon::FIRST_PAD_CODE + 45 + quillon::PAD_FIRST_ZONE, "+");
    EXPECT_EQ("D", answers(states, quillon::FIRST_PAD_CODE)) << "button 16 is down";
    EXPECT_EQ("", answers(states, quillon::FIRST_PAD_CODE + 45)) << "an axis is no button";
    update(states, 0.9, KEY, "+");
    update(states, 1.0, OTHER_KEY, "+");
    EXPECT_EQ("DP", answers(states, quillon::ANY_KEY)) << "each key is a press";
    update(states, 1.1, KEY, "-");
    EXPECT_EQ("DR", answers(states, quillon::ANY_KEY));
    EXPECT_EQ("", answers(states, quillon::DIGITAL_CODES)) << "no such code";
}

} // namespace
