// SPDX-License-Identifier: MIT
#include "plugin_report.h"

#include "child.h"
#include "command.h"
#include "platform.h"
#include "plugin_folder.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"

#include <algorithm>
#include <iterator>

namespace fs = std::filesystem;

namespace tool {
namespace {

using Plugins = quillon::DSParray<quillon::cPlugin>;

// A module that a plug-in can serve.
struct Module {
    const char* keyword;
    const char* connect_entry_point;
    std::size_t entry_count;
    void** (*table)();
};

// In the order in which the library offers them.
constexpr Module MODULES[] = {
    {"GRAPHICS", "connect_graphics_interface", quillon::ENTRY_COUNT<quillon::GraphicsTable>,
     [] { return __mGraphics_instance()->interface; }},
    {"INPUT", "connect_input_interface", quillon::ENTRY_COUNT<quillon::InputTable>,
     [] { return __mInput_instance()->interface; }},
    {"SYSTEM", "connect_system_interface", quillon::ENTRY_COUNT<quillon::SystemTable>,
     [] { return __mSystem_instance()->interface; }},
    {"NET", "connect_network_interface", quillon::ENTRY_COUNT<quillon::NetworkTable>,
     [] { return __mNetwork_instance()->interface; }},
    {"AUDIO", "connect_sound_interface", quillon::ENTRY_COUNT<quillon::AudioTable>,
     [] { return __mAudio_instance()->interface; }},
};

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

std::string quoted(const std::string& name) {
    return "'" + name + "'";
}

// The library passes over them without a word.
std::vector<std::string> folders_named_as_libraries(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code ignored; // of links that lead nowhere
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        if (entry.path().extension() == platform::LIBRARY_EXTENSION && entry.is_directory(ignored))
            names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
}

// The list of plug-ins, with the inspector as its last.
const Plugins& loaded_plugins() {
    const auto inspector = static_cast<std::int16_t>(__mCore_get_plugin_count());
    {
        const platform::OutputCapture capture;
        __mCore_parse_folder_for_plugins(inspector_folder().string().c_str());
    }
    const Plugins* plugins = nullptr;
    __mCore_call_plugin_function(inspector, "give_plugins", &plugins);
    if (plugins == nullptr)
        throw Failure("cannot use the inspector in '" + inspector_folder().string() +
                      "'; install quillon again");
    return *plugins;
}

bool can_serve(const quillon::cPlugin& plugin, const Module& module) {
    return plugin.initialised && plugin.get_plugin_compatibility(module.keyword) &&
           platform::own_function(plugin.library, module.connect_entry_point) != nullptr;
}

bool fills_table(const quillon::cPlugin& plugin, const Module& module) {
    void** const table = module.table();
    return std::any_of(table, table + module.entry_count, [&plugin](void* entry) {
        return entry != nullptr && platform::holds(plugin.library, entry);
    });
}

// The plug-in whose functions are in the module's table. If the functions are from elsewhere, the
// first plug-in that could have filled it; null for an unconnected module.
const quillon::cPlugin* server_of(const Module& module,
                                  const std::vector<const quillon::cPlugin*>& plugins) {
    if (module.table() == nullptr)
        return nullptr;
    const quillon::cPlugin* first = nullptr;
    for (const quillon::cPlugin* plugin : plugins) {
        if (!can_serve(*plugin, module))
            continue;
        if (fills_table(*plugin, module))
            return plugin;
        if (first == nullptr)
            first = plugin;
    }
    return first;
}

// A folder of plug-ins after the opening.
class Outcome {
public:
    explicit Outcome(std::vector<const quillon::cPlugin*> all) : plugins(std::move(all)) {
        for (std::size_t i = 0; i < std::size(MODULES); ++i)
            servers[i] = server_of(MODULES[i], plugins);
    }

    LoadedPlugin describe(const quillon::cPlugin& plugin) const {
        LoadedPlugin description{platform::file_of(plugin.library).filename().string(),
                                 plugin.get_plugin_name(),
                                 plugin.get_plugin_purpose(),
                                 prerequisites_of(plugin),
                                 modules_of(plugin),
                                 plugin.initialised,
                                 ""};
        if (description.modules.empty())
            description.reason = why_not_connected(plugin, description);
        return description;
    }

    std::vector<ServedModule> describe_modules() const {
        std::vector<ServedModule> descriptions;
        for (std::size_t i = 0; i < std::size(MODULES); ++i) {
            const char* const name = servers[i] == nullptr ? "" : servers[i]->get_plugin_name();
            descriptions.push_back({MODULES[i].keyword, name, why_served(i)});
        }
        return descriptions;
    }

private:
    // The plug-ins that say yes to a module, before and after the one that serves it.
    std::string why_served(std::size_t module) const {
        std::vector<std::string> parts;
        bool is_before = true;
        for (const quillon::cPlugin* plugin : plugins) {
            if (plugin == servers[module])
                is_before = false;
            else if (plugin->get_plugin_compatibility(MODULES[module].keyword))
                parts.push_back(is_before
                                    ? quoted(plugin->get_plugin_name()) + " comes first, but " +
                                          why_passed_over(*plugin, MODULES[module])
                                    : "before " + quoted(plugin->get_plugin_name()));
        }
        if (MODULES[module].table() != nullptr)
            return parts.empty() ? "no other serves it" : joined(parts);
        return parts.empty() ? "no plug-in here serves it" : joined(parts);
    }

    std::string why_passed_over(const quillon::cPlugin& plugin, const Module& module) const {
        const std::string reason = describe(plugin).reason;
        return reason.empty() ? why_module_stayed_free(plugin, module) : reason;
    }

    static std::vector<std::string> prerequisites_of(const quillon::cPlugin& plugin) {
        quillon::DSParray<std::string> names(false);
        plugin.get_plugin_prereqs(names);
        std::vector<std::string> copies;
        for (std::uint32_t i = 0; i < names.count(); ++i)
            copies.push_back(names.get(i) == nullptr ? "" : *names.get(i));
        return copies;
    }

    std::vector<std::string> modules_of(const quillon::cPlugin& plugin) const {
        std::vector<std::string> keywords;
        for (std::size_t i = 0; i < std::size(servers); ++i)
            if (servers[i] == &plugin)
                keywords.emplace_back(MODULES[i].keyword);
        return keywords;
    }

    bool has_named(const std::string& name, bool initialised) const {
        return std::ranges::any_of(plugins, [&](const quillon::cPlugin* plugin) {
            return name == plugin->get_plugin_name() && plugin->initialised >= initialised;
        });
    }

    std::string why_unmet(const std::string& name, const quillon::cPlugin& plugin) const {
        if (name == plugin.get_plugin_name())
            return ", its own name";
        return has_named(name, false) ? ", which is not initialised"
                                      : ", which no plug-in here is named";
    }

    // The steps of the library's connecting, each with the reason if it ends there.
    std::string why_not_connected(const quillon::cPlugin& plugin,
                                  const LoadedPlugin& description) const {
        if (description.purpose != "Module")
            return "its purpose is not 'Module'";
        for (const std::string& name : description.prerequisites)
            if (!has_named(name, true))
                return "waits for prerequisite " + quoted(name) + why_unmet(name, plugin);
        std::vector<std::string> taken;
        for (std::size_t i = 0; i < std::size(servers); ++i) {
            const Module& module = MODULES[i];
            if (!plugin.get_plugin_compatibility(module.keyword))
                continue;
            if (module.table() == nullptr || was_asked_before(plugin, servers[i]))
                return why_module_stayed_free(plugin, module);
            // A plug-in that changes its answers is not recognised as the server of its module.
            const std::string server =
                servers[i] == nullptr ? "another" : quoted(servers[i]->get_plugin_name());
            taken.push_back(module.keyword + (" by " + server));
        }
        return taken.empty() ? "serves none of the five modules"
                             : "every module that it serves is taken: " + joined(taken);
    }

    // One with prerequisites may have come too late although its file comes first.
    bool was_asked_before(const quillon::cPlugin& plugin, const quillon::cPlugin* server) const {
        const auto position = [this](const quillon::cPlugin* sought) {
            return std::ranges::find(plugins, sought);
        };
        return server != nullptr && prerequisites_of(plugin).empty() &&
               position(&plugin) < position(server);
    }

    static std::string why_module_stayed_free(const quillon::cPlugin& plugin,
                                              const Module& module) {
        if (platform::own_function(plugin.library, module.connect_entry_point) == nullptr)
            return std::string("no connect entry point: ") + module.connect_entry_point;
        return plugin.initialised ? "was not asked to connect" : "initialize said no";
    }

    std::vector<const quillon::cPlugin*> plugins;
    const quillon::cPlugin* servers[std::size(MODULES)];
};

} // namespace

PluginReport report_on(const fs::path& folder) {
    PluginReport report;
    for (const std::string& file : open_plugins(folder))
        report.refused.push_back({file, ""});
    for (const std::string& name : folders_named_as_libraries(folder))
        report.refused.push_back({name, "a folder, not a file"});

    enter_stage("as it is asked what it is");
    const Plugins& list = loaded_plugins();
    std::vector<const quillon::cPlugin*> plugins;
    for (std::uint32_t i = 0; i + 1 < list.count(); ++i)
        plugins.push_back(list.get(i));
    const Outcome outcome(plugins);
    for (const quillon::cPlugin* plugin : plugins)
        report.loaded.push_back(outcome.describe(*plugin));
    report.modules = outcome.describe_modules();
    return report;
}

} // namespace tool
