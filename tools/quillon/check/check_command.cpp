// SPDX-License-Identifier: MIT
// `quillon check FILE`
#include "check/check.h"

#include "child.h"
#include "command.h"
#include "examination.h"
#include "folder_of_links.h"
#include "platform.h"
#include "table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

namespace fs = std::filesystem;

namespace tool {
namespace {

struct Arguments {
    std::string file;
    bool json = false;
    double limit = DEFAULT_LIMIT;
};

struct Result {
    std::string subject;
    std::string promise;
    std::string fault; // empty if it holds
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Result, subject, promise, fault)

// The last line is that of the check in which a child ended before its time.
std::vector<Result> results_of(const ChildReport& run) {
    std::vector<Result> results;
    for (const nlohmann::json& line : run.lines) {
        if (!results.empty() && line["is_begun"] == false)
            results.pop_back();
        results.push_back(line["result"]);
    }
    if (!run.fate.empty()) {
        // Past the last check there is only the end.
        if (run.lines.empty() || run.lines.back()["is_begun"] == false)
            results.push_back({"plug-in", "ends", run.reason()});
        results.back().fault = run.reason();
    }
    return results;
}

std::vector<Result> examine_and_check(const Arguments& arguments) {
    const fs::path file = platform::to_path(arguments.file);
    const FileVerdict verdict = examine_alone(file, arguments.limit);
    if (!verdict.reason.empty())
        return {{"plug-in", "loads", verdict.reason}};
    const FolderOfLinks scratch({});
    const ChildReport run =
        run_child({"check", fs::absolute(file).string(), scratch.path().string()}, arguments.limit);
    std::cerr << run.error;
    return results_of(run);
}

void print(const std::vector<Result>& results) {
    std::vector<Row> rows = {{"of", "promise", "holds", "what does not"}};
    for (const Result& result : results)
        rows.push_back({result.subject, result.promise, result.fault.empty() ? "yes" : "NO",
                        printable(result.fault)});
    print_table(rows);
}

ExitCode check_plugin(const Arguments& arguments) {
    const std::vector<Result> results = examine_and_check(arguments);
    if (arguments.json)
        std::cout << nlohmann::json(results).dump(2, ' ', false,
                                                  nlohmann::json::error_handler_t::replace)
                  << "\n";
    else
        print(results);
    const bool is_sound = std::ranges::all_of(results, &std::string::empty, &Result::fault);
    return is_sound ? SUCCESS : FAILED;
}

} // namespace

Action declare_check(CLI::App& app) {
    auto arguments = std::make_shared<Arguments>();
    app.add_option("FILE", arguments->file, "The plug-in's file")->required();
    app.add_flag("--json", arguments->json, "Print JSON for programs");
    add_limit(app, arguments->limit);
    app.footer("Exits with 0 only if everything holds.");
    return [arguments] { return check_plugin(*arguments); };
}

} // namespace tool
