// SPDX-License-Identifier: MIT
#include "examination.h"

#include "child.h"
#include "command.h"
#include "folder_of_links.h"
#include "platform.h"
#include "plugin_folder.h"
#include "quillon/core/abi.h"
#include "quillon/core/plugin_registry.h"

#include <algorithm>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace tool {
namespace {

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

template <typename Function>
Function* entry_point(const platform::LibraryFile& library, const char* name) {
    return reinterpret_cast<Function*>(platform::own_function(library.handle(), name));
}

std::string missing_entry_points(const platform::LibraryFile& library) {
    std::vector<std::string> missing;
    for (const char* name : quillon::ENTRY_POINTS)
        if (entry_point<void()>(library, name) == nullptr)
            missing.emplace_back(name);
    return missing.empty() ? "" : "missing entry point: " + joined(missing);
}

std::string null_text(const platform::LibraryFile& library) {
    for (const std::string name : {"get_plugin_name", "get_plugin_purpose"}) {
        enter_stage("in " + name);
        if (entry_point<const char*()>(library, name.c_str())() == nullptr)
            return name + " returns null";
    }
    return "";
}

// How the layouts of a plug-in that answers for them differ from this program's.
std::string abi_difference(const platform::LibraryFile& library) {
    enter_stage("in get_plugin_compatibility");
    const auto has = entry_point<bool(const char*)>(library, "get_plugin_compatibility");
    std::vector<std::string> differences;
    for (std::size_t i = 0; has("ABI") && i < std::size(quillon::OWN_ABI); ++i) {
        const quillon::AbiTrait& own = quillon::ABI_TRAITS[i][quillon::OWN_ABI[i]];
        const quillon::AbiTrait& other = quillon::ABI_TRAITS[i][1 - quillon::OWN_ABI[i]];
        if (!has(own.keyword.data()))
            differences.push_back(std::string(other.words) + ", not " + std::string(own.words));
    }
    return differences.empty() ? "" : "built with " + joined(differences);
}

std::vector<fs::path> files_without(const fs::path& folder, const std::set<std::string>& left_out) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (!left_out.contains(entry.path().filename().string()))
            files.push_back(entry.path());
    return files;
}

// The files of a folder that a host would load, in its order.
std::vector<std::string> library_names(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code ignored; // of links that lead nowhere
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == platform::LIBRARY_EXTENSION && !entry.is_directory(ignored))
            names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

class Examiner {
public:
    Examiner(fs::path examined, std::vector<std::string> chosen, double seconds)
        : folder(std::move(examined)), choices(std::move(chosen)), limit(seconds) {
        for (const std::string& name : library_names(folder)) {
            const FileVerdict verdict = examine_alone(folder / platform::to_path(name), limit);
            reasons[name] = verdict.reason;
            if (verdict.is_dangerous)
                left_out.insert(name);
        }
    }

    Examination examine_together() {
        ChildReport run = open_folder();
        if (!run.fate.empty())
            run = find_culprits();
        if (run.lines.empty())
            throw Failure("cannot open '" + folder.string() + "' without its plug-ins either: it " +
                          run.reason());
        Examination examination{run.lines.back().get<PluginReport>(), run.error};
        add_reasons(examination.report.refused);
        return examination;
    }

private:
    ChildReport open_folder() const {
        std::vector<std::string> arguments = {"folder", folder.string()};
        arguments.insert(arguments.end(), choices.begin(), choices.end());
        if (left_out.empty())
            return run_child(arguments, limit);
        const FolderOfLinks links(files_without(folder, left_out));
        arguments[1] = links.path().string();
        return run_child(arguments, limit);
    }

    // Opens the files one after the other together with all before them, and leaves out each with
    // which that does not end well.
    ChildReport find_culprits() {
        const std::set<std::string> known = left_out;
        for (const auto& [name, reason] : reasons)
            left_out.insert(name);
        ChildReport last = open_folder();
        for (const auto& [name, reason] : reasons) {
            if (known.contains(name))
                continue;
            left_out.erase(name);
            ChildReport run = open_folder();
            if (run.fate.empty()) {
                last = std::move(run);
                continue;
            }
            reasons[name] = run.reason();
            left_out.insert(name);
        }
        return last;
    }

    void add_reasons(std::vector<RefusedFile>& refused) const {
        for (const std::string& name : left_out)
            refused.push_back({name, ""});
        // The names in a report are UTF-8, and those of files need not be.
        std::map<std::string, std::string> reported;
        for (const auto& [name, reason] : reasons)
            reported[valid_text(name)] = reason;
        for (RefusedFile& file : refused)
            if (const auto reason = reported.find(valid_text(file.file));
                file.reason.empty() && reason != reported.end())
                file.reason = reason->second.empty()
                                  ? "it loads by itself, but did not in this folder's turn"
                                  : reason->second;
        std::ranges::sort(refused, {}, &RefusedFile::file);
    }

    fs::path folder;
    std::vector<std::string> choices;
    double limit;
    std::map<std::string, std::string> reasons; // by file name; empty for a sound one
    std::set<std::string> left_out;
};

} // namespace

FileVerdict examine_alone(const fs::path& file, double limit) {
    if (const std::string fault = platform::file_fault(file); !fault.empty())
        return {fault, false};
    const ChildReport run = run_child({"file", file.string()}, limit);
    if (!run.fate.empty())
        return {run.reason(), true};
    const nlohmann::json& verdict = run.lines.back();
    return {verdict["reason"], verdict["dangerous"]};
}

Examination examine(const fs::path& folder, const std::vector<std::string>& choices, double limit) {
    expect_listable(folder);
    return Examiner(folder, choices, limit).examine_together();
}

void examine_file(const std::vector<std::string>& arguments) {
    enter_stage("as it is loaded");
    // Stays loaded until the process ends: it holds the code of the exceptions that it throws.
    static const platform::LibraryFile library(platform::to_path(arguments.at(0)));
    std::string reason = library.reason();
    std::string difference;
    if (reason.empty())
        reason = missing_entry_points(library);
    if (reason.empty())
        reason = null_text(library);
    if (reason.empty())
        difference = abi_difference(library);
    report({{"reason", reason + difference}, {"dangerous", !difference.empty()}});
}

void examine_folder(const std::vector<std::string>& arguments) {
    enter_stage("in initialize or a connect entry point");
    choose_plugins({arguments.begin() + 1, arguments.end()});
    report(report_on(platform::to_path(arguments.at(0))));
}

} // namespace tool
