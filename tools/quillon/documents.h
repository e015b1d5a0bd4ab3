// SPDX-License-Identifier: MIT
// The manual page and the completion of shells, made of the commands' own help.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace tool {

// A page of section 1, in the macros of man.
std::string man_page(const CLI::App& app);

// A script for bash: commands, their options, and files.
std::string bash_completion(const CLI::App& app);

} // namespace tool
