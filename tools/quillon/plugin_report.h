// SPDX-License-Identifier: MIT
// The files of a plug-in folder, with the outcome of loading each.
#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tool {

struct LoadedPlugin {
    std::string file;
    std::string name;
    std::string purpose;
    std::vector<std::string> prerequisites;
    std::vector<std::string> modules; // the keywords of those that it serves
    bool initialised;
    std::string reason; // why it serves none; empty if it does
};

struct RefusedFile {
    std::string file;
    std::string reason;
};

struct ServedModule {
    std::string module; // its keyword
    std::string plugin; // the name of the one that serves it; empty if none does
    std::string reason; // why that one, or why none
};

struct PluginReport {
    std::vector<LoadedPlugin> loaded; // by index
    std::vector<RefusedFile> refused;
    std::vector<ServedModule> modules; // all five
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(LoadedPlugin, file, name, purpose, prerequisites, modules,
                                   initialised, reason)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(RefusedFile, file, reason)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(ServedModule, module, plugin, reason)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(PluginReport, loaded, refused, modules)

// Opens the plug-ins of `folder`, once a process, and reports the outcome, without the reason of a
// refused file.
//
// Throws Failure as open_plugins does.
PluginReport report_on(const std::filesystem::path& folder);

} // namespace tool
