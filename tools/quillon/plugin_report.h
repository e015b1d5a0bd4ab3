// What became of the files of a plug-in folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct LoadedPlugin {
    std::string file;
    std::string name;
    std::string purpose;
    std::vector<std::string> prerequisites;
    std::vector<std::string> modules; // keywords of those that it was connected to
    bool initialised;
    std::string reason; // why it was connected to none; empty if it was
};

struct RefusedFile {
    std::string file;
    std::string reason;
};

struct PluginReport {
    std::vector<LoadedPlugin> loaded; // by index
    std::vector<RefusedFile> refused;
};

// Opens the plug-ins of `folder`, once a process, and looks at what came of it.
//
// Throws Failure as open_plugins does.
PluginReport report_on(const std::filesystem::path& folder);

} // namespace tool
