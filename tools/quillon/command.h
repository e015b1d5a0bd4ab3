// SPDX-License-Identifier: MIT
// The parts of the commands of `quillon`. A further command is a file with a `declare` function
// and its row in commands.cpp.
#pragma once

#include <functional>
#include <span>
#include <stdexcept>

namespace CLI {
class App;
}

namespace tool {

enum ExitCode { SUCCESS = 0, FAILED = 1, MISUSED = 2 };

// Runs the command, once its arguments are parsed.
using Action = std::function<ExitCode()>;

struct Command {
    const char* name;
    const char* summary;
    // Declares the arguments; the action owns the variables that they are parsed into.
    Action (*declare)(CLI::App& arguments);
};

std::span<const Command> commands();

// Ends a command with FAILED; the text says what failed, on what, and what to do.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tool
