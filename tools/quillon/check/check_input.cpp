// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "plugins/contracts/input.h"
#include "quillon/input/codes.h"

#include <cmath>

namespace tool {
namespace {

using quillon::Input;

constexpr const char* SUBJECT = "INPUT";

constexpr struct {
    const char* name;
    bool (*Input::*entry)(std::uint16_t code);
} KEYS[] = {{"key_down", &Input::key_down},
            {"key_press", &Input::key_press},
            {"key_hold_press", &Input::key_hold_press},
            {"key_release", &Input::key_release},
            {"key_double_click", &Input::key_double_click}};

constexpr struct {
    const char* name;
    float (*Input::*entry)(std::uint16_t code);
} AXES[] = {{"axis_value", &Input::axis_value}, {"axis_delta", &Input::axis_delta}};

// Absolute codes, beyond the last one too.
constexpr std::uint16_t CODES = 1024;

std::string call(const char* name, std::uint16_t code) {
    return std::string(name) + " of " + std::to_string(code);
}

} // namespace

void check_input(const Input& input) {
    check(SUBJECT, "answers the same until the next update", [&] {
        input.update();
        for (std::uint16_t code = 0; code < CODES; ++code) {
            for (const auto& [name, entry] : KEYS) {
                const bool is_so = (input.*entry)(code);
                expect(is_so == (input.*entry)(code), call(name, code) + " changes");
            }
            for (const auto& [name, entry] : AXES) {
                const float value = (input.*entry)(code);
                expect(std::isfinite(value), call(name, code) + " is not finite");
                expect(value == (input.*entry)(code), call(name, code) + " changes");
            }
        }
    });
    check(SUBJECT, "has nothing for codes and pads beyond the last", [&] {
        constexpr std::uint16_t beyond = 65535;
        for (const auto& [name, entry] : KEYS)
            expect(!(input.*entry)(beyond), call(name, beyond) + " is true");
        for (const auto& [name, entry] : AXES)
            expect((input.*entry)(beyond) == 0, call(name, beyond) + " is not 0");
        expect(input.key_label(beyond) == nullptr, "key_label of 65535 is not null");
        expect(input.pad_name(4) == nullptr, "pad_name of 4 is not null");
        expect(!input.rumble(4, 0.5F, 0.25F, 0.01F), "rumble of pad 4 is true");
    });
    check(SUBJECT, "opens a window, or says why not", [&] {
        const bool is_open = input.open_window("check", 64, 40);
        if (!is_open)
            expect(*input.last_error() != '\0', "open_window fails without a reason");
        else
            expect_failure(input, !input.open_window("check", 64, 40), "a second open_window");
        input.update();
        expect(!input.quit_requested(), "quit_requested is true though nobody asked");
    });
}

} // namespace tool
