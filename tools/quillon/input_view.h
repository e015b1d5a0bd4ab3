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

// The frames of a view, each as wide as the screen at most.
class InputView {
public:
    // 0 columns for a view that is as wide as it needs.
    InputView(std::span<const Binding> watched, int columns);

    // One frame: what is pressed by display name, a bar for each axis of the mouse and of the pads
    // that are plugged in, and a line for each binding. Ends with a line break.
    //
    // The travel of the mouse since the last frame fades over the next ones, as it is nearly always
    // over before it can be read.
    std::string frame(const quillon::Input& plugin);

private:
    std::string line(std::string_view label, const std::string& text) const;
    std::string axis_line(quillon::cInputAnalog axis, float value) const;
    std::string axis_lines(const quillon::Input& plugin);
    std::string bar(float value) const;

    std::span<const Binding> bindings;
    std::size_t columns;
    std::size_t name_width;
    std::size_t bar_half;
    std::array<float, 2> travel{}; // of the mouse, as shown
};

} // namespace tool
