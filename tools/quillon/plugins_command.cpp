// `quillon plugins [FOLDER]`
#include "command.h"
#include "plugin_folder.h"
#include "plugin_report.h"
#include "plugins/contracts/contract.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <iostream>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace tool {
namespace {

using Row = std::vector<std::string>;

constexpr const char* NOTHING = "-";

// Names come from foreign code, and a line's end or an escape in one would break the table.
std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](char letter) { return static_cast<unsigned char>(letter) < ' '; }, '?');
    return text.empty() ? NOTHING : text;
}

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

void print_table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            std::cout << row[column] << std::string(widths[column] - row[column].size() + 2, ' ');
        std::cout << row.back() << "\n";
    }
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

// Plug-ins may look at the names until the library ends.
void choose(const std::vector<std::string>& choices) {
    static std::deque<std::string> names;
    for (const std::string& choice : choices) {
        const std::size_t sign = choice.find('=');
        names.push_back(choice.substr(sign + 1));
        quillon::choose_plugin(choice.substr(0, sign).c_str(), names.back().c_str());
    }
}

struct Arguments {
    std::string folder;
    std::vector<std::string> choices;
    bool json = false;
};

ExitCode list_plugins(const Arguments& arguments) {
    const fs::path folder =
        arguments.folder.empty() ? default_plugin_folder() : fs::path(arguments.folder);
    choose(arguments.choices);
    const PluginReport report = report_on(folder);
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
    app.footer("Exits with 0 only if no file was refused.");
    return [arguments] { return list_plugins(*arguments); };
}

} // namespace tool
