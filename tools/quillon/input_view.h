// SPDX-License-Identifier: MIT
// The state of the inputs, as text.
#pragma once

#include "bindings.h"

#include "plugins/contracts/input.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace tool {

// The frames of a view.
class InputView {
public:
    explicit InputView(std::span<const Binding> watched) : bindings(watched) {}

    // One frame, no wider than `columns`, or as wide as it needs for 0: what is pressed by display
    // name, a bar for each axis of the mouse and of the pads that are plugged in, and a line for
    // each binding. Ends with a line break.
    //
    // The travel of the mouse since the last frame fades over the next ones, as it is nearly always
    // over before it can be read.
    std::string frame(const quillon::Input& plugin, int columns);

private:
    void fit(int screen_columns);
    std::string line(std::string_view label, const std::string& text) const;
    std::string axis_line(quillon::cInputAnalog axis, float value) const;
    std::string axis_lines(const quillon::Input& plugin);
    std::string bar(float value) const;

    std::span<const Binding> bindings;
    std::size_t columns = 0;
    std::size_t name_width = 0;
    std::size_t bar_half = 0;
    std::array<float, 2> travel{}; // of the mouse, as shown
};

} // namespace tool
