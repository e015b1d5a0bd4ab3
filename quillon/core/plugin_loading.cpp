// SPDX-License-Identifier: MIT
#include "quillon/containers/name_hash.h"
#include "quillon/core/core_lists.h"
#include "quillon/core/end_of_life.h"
#include "quillon/core/loaded_plugin.h"
#include "quillon/core/matching_names.h"
#include "quillon/core/plugin_registry.h"
#include "quillon/core/raised_flag.h"
#include "quillon/platform/loader.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

using namespace quillon;

namespace quillon {
namespace {

EntryPoints entry_points_of(void* library) {
    EntryPoints functions;
    std::ranges::transform(ENTRY_POINTS, functions.begin(), [library](const char* name) {
        return platform::find_function(library, name);
    });
    return functions;
}

const char* text_of(void* function) {
    return reinterpret_cast<const char* (*)()>(function)();
}

// The plug-in's name; null if it lacks an entry point, a name or a purpose.
const char* name_of(const EntryPoints& functions) {
    if (std::ranges::find(functions, nullptr) != functions.end())
        return nullptr;
    const char* const name = text_of(functions[GET_PLUGIN_NAME]);
    return text_of(functions[GET_PLUGIN_PURPOSE]) == nullptr ? nullptr : name;
}

struct ReleaseLibrary {
    void operator()(void* library) const { platform::release_library(library); }
};

// The plug-in in the file, or null if it is refused; prints a line in either case.
std::unique_ptr<LoadedPlugin> load_plugin(const char* folder, const std::string& name) {
    void* const library = platform::load_library(std::string(folder) + "/" + name);
    const EntryPoints functions = entry_points_of(library);
    // Not guarded yet: an exception of the plug-in may need the code of its type in the library.
    const char* const plugin_name = name_of(functions);
    std::unique_ptr<void, ReleaseLibrary> guard(library);
    if (plugin_name == nullptr) {
        std::printf("ERROR: Attempt to load module %s failed\n", name.c_str());
        return nullptr;
    }
    auto plugin = std::make_unique<LoadedPlugin>(library, functions);
    static_cast<void>(guard.release());
    std::printf("loading plugin: %s\n", plugin_name);
    return plugin;
}

void connect_plugins() {
    for (bool again = true; again;) {
        again = false;
        for (std::uint32_t i = 0; i < plugins().count(); ++i)
            again |= plugins().plugin_at(i)->connect();
    }
}

} // namespace
} // namespace quillon

bool __mCore_open() {
    static constinit bool is_opening = false;
    if (is_opening || end_of_life_has_begun())
        return true;
    const RaisedFlag under_way(is_opening);
    const EndOfLifeComesFirst after_all_plugins;
    DSParray<cPlugin>& list = plugins();
    pluginInitParameters().add(&list, name_hash("Modules"));
    __mCore_parse_folder_for_plugins("plugin");
    connect_plugins();
    return true;
}

void __mCore_close() {}

void __mCore_parse_folder_for_plugins(const char* folder) {
    if (end_of_life_has_begun())
        return;
    for (const std::string& name : matching_names(folder, platform::LIBRARY_EXTENSION)) {
        std::unique_ptr<LoadedPlugin> plugin = load_plugin(folder, name);
        if (plugin == nullptr)
            continue;
        plugins().make_room_for_one();
        plugins().add(plugin.release(), DSP_APPEND);
        run_end_of_life_before_exit_handlers();
    }
}
