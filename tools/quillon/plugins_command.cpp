// SPDX-License-Identifier: MIT
// `quillon plugins [FOLDER]`
#include "child.h"
#include "command.h"
#include "examination.h"
#include "platform.h"
#include "plugin_folder.h"
#include "table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace tool {
namespace {

std::string list_of(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words)
        list += (list.empty() ? "" : ", ") + word;
    return printable(list);
}

std::vector<Row> rows_of(const PluginReport& report) {
    std::vector<Row> rows = {
        {"index", "file", "name", "purpose", "prerequisites", "modules", "initialised", "reason"}};
    for (const LoadedPlugin& plugin : report.loaded)
        rows.push_back({std::to_string(rows.size() - 1), printable(plugin.file),
                        printable(plugin.name), printable(plugin.purpose),
                        list_of(plugin.prerequisites), list_of(plugin.modules),
                        plugin.initialised ? "yes" : "no", printable(plugin.reason)});
    for (const RefusedFile& file : report.refused)
        rows.push_back({NOTHING, printable(file.file), NOTHING, NOTHING, NOTHING, NOTHING,
                        "refused", printable(file.reason)});
    return rows;
}

std::vector<Row> module_rows_of(const PluginReport& report) {
    std::vector<Row> rows = {{"module", "plug-in", "why"}};
    for (const ServedModule& module : report.modules)
        rows.push_back({module.module, printable(module.plugin), printable(module.reason)});
    return rows;
}

void print_json(const fs::path& folder, const PluginReport& report) {
    nlohmann::ordered_json document = {{"folder", folder.string()},
                                       {"plugins", nlohmann::json::array()},
                                       {"refused", nlohmann::json::array()},
                                       {"modules", nlohmann::json::array()}};
    for (const LoadedPlugin& plugin : report.loaded)
        document["plugins"].push_back({{"index", document["plugins"].size()},
                                       {"file", plugin.file},
                                       {"name", plugin.name},
                                       {"purpose", plugin.purpose},
                                       {"prerequisites", plugin.prerequisites},
                                       {"modules", plugin.modules},
                                       {"initialised", plugin.initialised},
                                       {"reason", plugin.reason}});
    for (const RefusedFile& file : report.refused)
        document["refused"].push_back({{"file", file.file}, {"reason", file.reason}});
    for (const ServedModule& module : report.modules)
        document["modules"].push_back(
            {{"module", module.module}, {"plugin", module.plugin}, {"reason", module.reason}});
    // Names that are not UTF-8 get the replacement character instead of ending the tool.
    using ErrorHandler = nlohmann::json::error_handler_t;
    std::cout << document.dump(2, ' ', false, ErrorHandler::replace) << "\n";
}

constexpr const char* KEYWORDS[] = {"GRAPHICS", "INPUT", "SYSTEM", "NET", "AUDIO"};

// Why a text is not MODULE=NAME; empty if it is.
std::string choice_fault(const std::string& text) {
    const std::string keyword = text.substr(0, text.find('='));
    const bool is_known = std::ranges::find(KEYWORDS, keyword) != std::end(KEYWORDS);
    return is_known && keyword.size() + 1 < text.size()
               ? ""
               : "'" + text + "' is not MODULE=NAME with GRAPHICS, INPUT, SYSTEM, NET or AUDIO";
}

struct Arguments {
    std::string folder;
    std::vector<std::string> choices;
    bool json = false;
    double limit = DEFAULT_LIMIT;
};

ExitCode list_plugins(const Arguments& arguments) {
    const fs::path folder =
        arguments.folder.empty() ? default_plugin_folder() : platform::to_path(arguments.folder);
    const Examination examination = examine(folder, arguments.choices, arguments.limit);
    const PluginReport& report = examination.report;
    std::cerr << examination.printed;
    if (arguments.json) {
        print_json(folder, report);
    } else {
        std::cout << "plug-ins in " << folder.string() << "\n";
        print_table(rows_of(report));
        std::cout << "\n";
        print_table(module_rows_of(report));
    }
    return report.refused.empty() ? SUCCESS : FAILED;
}

} // namespace

Action declare_plugins(CLI::App& app) {
    auto arguments = std::make_shared<Arguments>();
    app.add_option("FOLDER", arguments->folder,
                   "The folder; without it ./plugin, else the plug-ins that came with this tool");
    app.add_option(
           "--choose", arguments->choices,
           "The plug-in that is to serve a module, as a host chooses it: MODULE=NAME; may be "
           "repeated")
        ->allow_extra_args(false)
        ->check(choice_fault);
    app.add_flag("--json", arguments->json, "Print JSON for programs");
    add_limit(app, arguments->limit);
    app.footer("Exits with 0 only if no file was refused.");
    return [arguments] { return list_plugins(*arguments); };
}

} // namespace tool
