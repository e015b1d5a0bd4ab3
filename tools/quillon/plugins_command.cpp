// `quillon plugins [FOLDER]`
#include "command.h"
#include "plugin_folder.h"
#include "plugin_report.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace tool {
namespace {

constexpr std::size_t COLUMNS = 8;
using Row = std::array<std::string, COLUMNS>;

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

void print_table(const PluginReport& report) {
    const std::vector<Row> rows = rows_of(report);
    std::array<std::size_t, COLUMNS> widths{};
    for (const Row& row : rows)
        for (std::size_t column = 0; column < COLUMNS; ++column)
            widths[column] = std::max(widths[column], row[column].size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < COLUMNS; ++column)
            std::cout << row[column] << std::string(widths[column] - row[column].size() + 2, ' ');
        std::cout << row.back() << "\n";
    }
}

void print_json(const fs::path& folder, const PluginReport& report) {
    nlohmann::ordered_json document = {{"folder", folder.string()},
                                       {"plugins", nlohmann::json::array()},
                                       {"refused", nlohmann::json::array()}};
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
    // Names that are not UTF-8 get the replacement character instead of ending the tool.
    using ErrorHandler = nlohmann::json::error_handler_t;
    std::cout << document.dump(2, ' ', false, ErrorHandler::replace) << "\n";
}

struct Arguments {
    std::string folder;
    bool json = false;
};

ExitCode list_plugins(const Arguments& arguments) {
    const fs::path folder =
        arguments.folder.empty() ? default_plugin_folder() : fs::path(arguments.folder);
    const PluginReport report = report_on(folder);
    if (arguments.json) {
        print_json(folder, report);
    } else {
        std::cout << "plug-ins in " << folder.string() << "\n";
        print_table(report);
    }
    return report.refused.empty() ? SUCCESS : FAILED;
}

} // namespace

Action declare_plugins(CLI::App& app) {
    auto arguments = std::make_shared<Arguments>();
    app.add_option("FOLDER", arguments->folder,
                   "The folder; without it ./plugin, else the plug-ins that came with this tool");
    app.add_flag("--json", arguments->json, "Print JSON for programs");
    app.footer("Exits with 0 only if no file was refused.");
    return [arguments] { return list_plugins(*arguments); };
}

} // namespace tool
