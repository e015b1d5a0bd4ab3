// SPDX-License-Identifier: MIT
// Options that are numbers.
#pragma once

#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tool {

// Declares an option that refuses everything but a number from `least` to `most`, NaN too.
CLI::Option* add_number(CLI::App& app, const std::string& name, double& value, double least,
                        double most, const std::string& help);

} // namespace tool
