// SPDX-License-Identifier: MIT
#include "command.h"

namespace tool {

Action declare_adjust(CLI::App& arguments);
Action declare_average(CLI::App& arguments);
Action declare_brush(CLI::App& arguments);
Action declare_check(CLI::App& arguments);
Action declare_convert(CLI::App& arguments);
Action declare_inputs(CLI::App& arguments);
Action declare_mask(CLI::App& arguments);
Action declare_normal_map(CLI::App& arguments);
Action declare_palette(CLI::App& arguments);
Action declare_plugins(CLI::App& arguments);

namespace {

constexpr Command COMMANDS[] = {
    {"convert", "Load a picture and save it under another name", declare_convert},
    {"inputs", "Show live which inputs are pressed and how bindings answer", declare_inputs},
    {"normal-map", "Turn a height map into a map of its normals", declare_normal_map},
    {"brush", "Add a colour through a soft round brush", declare_brush},
    {"mask", "Make a mask of alpha, of a channel or of a key colour", declare_mask},
    {"adjust", "Scale, lower or raise the brightness", declare_adjust},
    {"average", "Print the average colour", declare_average},
    {"palette", "Print or draw the named colours, gradients and materials", declare_palette},
    {"plugins", "List the plug-ins of a folder, and what is wrong with those that do not work",
     declare_plugins},
    {"check", "Check a plug-in against the contracts of the modules that it serves", declare_check},
};

} // namespace

std::span<const Command> commands() {
    return COMMANDS;
}

} // namespace tool
