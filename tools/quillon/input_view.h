// The state of the inputs, as text.
#pragma once

#include "bindings.h"

#include "plugins/contracts/input.h"

#include <span>
#include <string>

namespace tool {

// One frame: what is pressed by display name, a bar for each axis of the mouse and of the pads that
// are plugged in, and a line for each binding. Ends with a line break.
std::string input_view(const quillon::Input& plugin, std::span<const Binding> bindings);

} // namespace tool
