// SPDX-License-Identifier: MIT
#include "child.h"

#include "check/check.h"
#include "command.h"
#include "examination.h"
#include "number_option.h"
#include "platform.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <exception>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>

namespace tool {
namespace {

using Work = void (*)(const std::vector<std::string>& arguments);

// Removes the folder `arguments[0]` as soon as no program holds a library in it any more.
void remove_when_free(const std::vector<std::string>& arguments) {
    std::error_code failure;
    for (int attempt = 0; attempt < 200; ++attempt) {
        std::filesystem::remove_all(platform::to_path(arguments.at(0)), failure);
        if (!failure)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

const std::map<std::string, Work> KINDS = {{"file", examine_file},
                                           {"folder", examine_folder},
                                           {"check", check_file},
                                           {"remove", remove_when_free}};

// Names that are not UTF-8 get the replacement character.
std::string text_of(const nlohmann::json& line) {
    return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string in_quotes(const std::string& text) {
    return "'" + text + "'";
}

// Sorts a line of the report; true for the last one.
bool read_line(const nlohmann::json& line, ChildReport& report) {
    if (line.contains("failure"))
        throw Failure(line["failure"].get<std::string>());
    if (line.contains("stage"))
        report.stage = line["stage"];
    else if (line.contains("throws"))
        report.fate = "throws " + line["throws"].get<std::string>();
    else if (!line.contains("end"))
        report.lines.push_back(line);
    return line.contains("end");
}

} // namespace

ChildReport run_child(std::vector<std::string> arguments, double limit) {
    arguments.insert(arguments.begin(), CHILD_ARGUMENT);
    const platform::ProcessRun run = platform::run_self(arguments, limit);
    ChildReport result;
    result.error = run.error;
    bool has_ended = false;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);)
        if (const auto parsed = nlohmann::json::parse(line, nullptr, false); parsed.is_object())
            has_ended |= read_line(parsed, result);
    if (result.fate.empty() && !run.fate.empty())
        result.fate = run.fate;
    // After the end an exit code is that of a tool which watches the process, as a leak checker.
    else if (result.fate.empty() && !has_ended)
        result.fate = "ends the process with exit code " + std::to_string(run.exit_code);
    return result;
}

void add_limit(CLI::App& app, double& limit) {
    add_number(app, "--limit", limit, 0.01, 3600,
               "Seconds after which a process of plug-ins counts as hanging")
        ->capture_default_str();
}

void report(const nlohmann::json& line) {
    platform::write_report(text_of(line) + "\n");
}

std::string valid_text(const std::string& text) {
    return nlohmann::json::parse(text_of(text));
}

void enter_stage(const std::string& stage) {
    report({{"stage", stage}});
}

int run_as_child(const std::vector<std::string>& arguments) {
    platform::prepare_child();
    try {
        const auto kind = KINDS.find(arguments.empty() ? "" : arguments.front());
        if (kind == KINDS.end())
            throw Failure("this is for the tool itself; see 'quillon --help'");
        kind->second({arguments.begin() + 1, arguments.end()});
        enter_stage("as it is shut down or unloaded");
        report({{"end", true}});
        return SUCCESS;
    } catch (const Failure& failure) {
        report({{"failure", failure.what()}});
    } catch (const std::exception& exception) {
        report({{"throws", in_quotes(exception.what())}});
    } catch (...) {
        report({{"throws", "an exception"}});
    }
    return FAILED;
}

} // namespace tool
