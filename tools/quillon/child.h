// SPDX-License-Identifier: MIT
// Work on foreign code, done by this program in a process of its own, so that whatever that code
// does ends that process alone.
//
// A child reports in lines of JSON on its standard output; what plug-ins print goes to its error
// stream.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tool {

// The first argument of a child; its kind and its arguments follow.
inline constexpr const char* CHILD_ARGUMENT = "--child";

inline constexpr double DEFAULT_LIMIT = 10; // seconds

struct ChildReport {
    std::vector<nlohmann::json> lines; // in order, without those that are read below
    std::string stage;                 // what it did last, as "in get_plugin_name"
    std::string fate;                  // how it ended if it did not reach its end; else empty
    std::string error;                 // what was written to its error stream

    // The fate and where it struck.
    std::string reason() const { return fate.empty() ? "" : fate + " " + stage; }
};

// Runs a child of that kind to its end, or ends it after `limit` seconds.
//
// Throws Failure if it cannot be started, and with the text of a Failure that the child met.
ChildReport run_child(std::vector<std::string> arguments, double limit);

// Declares the option --limit of a command that runs children.
void add_limit(CLI::App& app, double& limit);

// In a child: adds a line to the report, and says what is done next.
void report(const nlohmann::json& line);
void enter_stage(const std::string& stage);

// The text as it comes out of a report: what is not UTF-8 is the replacement character.
std::string valid_text(const std::string& text);

// In a child: does the work of the kind `arguments[0]`; returns the exit code.
int run_as_child(const std::vector<std::string>& arguments);

} // namespace tool
