#include "command.h"

namespace tool {

Action declare_convert(CLI::App& arguments);
Action declare_inputs(CLI::App& arguments);
Action declare_plugins(CLI::App& arguments);

namespace {

constexpr Command COMMANDS[] = {
    {"convert", "Load a picture and save it under another name", declare_convert},
    {"inputs", "Show live what is pressed and what bindings answer", declare_inputs},
    {"plugins", "List the plug-ins of a folder, and what is wrong with those that do not work",
     declare_plugins},
};

} // namespace

std::span<const Command> commands() {
    return COMMANDS;
}

} // namespace tool
