#include "quillon/containers/names.h"
#include "quillon/core/end_of_life.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugins.h"
#include "quillon/core/services.h"
#include "quillon/core/statics.h"
#include "quillon/platform/loader.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>

namespace quillon {
namespace {

struct ReleaseLibrary {
    void operator()(void* library) const { platform::release_library(library); }
};

// The plug-in in the file, or null, with a line that says so, if it does not load or lacks an entry
// point.
std::unique_ptr<cPlugin> load_plugin(const char* folder, const std::string& name) {
    const std::string path = std::string(folder) + "/" + name;
    std::unique_ptr<void, ReleaseLibrary> library(platform::load_library(path));
    void* entry_points[std::size(ENTRY_POINTS)];
    std::ranges::transform(ENTRY_POINTS, entry_points, [&library](const char* entry_point) {
        return platform::find_function(library.get(), entry_point);
    });
    if (std::ranges::find(entry_points, nullptr) != std::end(entry_points)) {
        std::printf("ERROR: Attempt to load module %s failed\n", name.c_str());
        return nullptr;
    }
    auto plugin = std::make_unique<cPlugin>(library.get(), entry_points);
    static_cast<void>(library.release());
    return plugin;
}

bool is_initialised(const std::string& name) {
    for (std::uint32_t i = 0; i < plugins().count(); ++i)
        if (plugins().get(i)->initialised && name == plugins().get(i)->get_plugin_name())
            return true;
    return false;
}

void connect_plugins() {
    for (bool again = true; again;) {
        again = false;
        for (std::uint32_t i = 0; i < plugins().count(); ++i)
            again |= plugins().get(i)->connect();
    }
}

} // namespace

cPlugin::cPlugin(void* loaded_library, void* const (&entry_points)[6])
    : library(loaded_library),
      initialize(reinterpret_cast<decltype(initialize)>(entry_points[0])),
      shutdown(reinterpret_cast<decltype(shutdown)>(entry_points[1])),
      get_plugin_name(reinterpret_cast<decltype(get_plugin_name)>(entry_points[2])),
      get_plugin_purpose(reinterpret_cast<decltype(get_plugin_purpose)>(entry_points[3])),
      get_plugin_compatibility(
          reinterpret_cast<decltype(get_plugin_compatibility)>(entry_points[4])),
      get_plugin_prereqs(reinterpret_cast<decltype(get_plugin_prereqs)>(entry_points[5])) {
    std::printf("loading plugin: %s\n", get_plugin_name());
}

void cPlugin::end() {
    if (initialised)
        shutdown();
    platform::release_library(library);
}

bool cPlugin::prerequisites_are_met() const {
    DSParray<std::string> names(false);
    get_plugin_prereqs(names);
    for (std::uint32_t i = 0; i < names.count(); ++i)
        if (names.get(i) == nullptr || !is_initialised(*names.get(i)))
            return false;
    return true;
}

bool cPlugin::serve(const Service& service) {
    if (service.interface() != nullptr || !get_plugin_compatibility(service.keyword))
        return false;
    void* const function = get_function(service.connect_entry_point);
    if (function == nullptr)
        return false;
    const std::size_t size = service.entry_count * sizeof(void*);
    service.interface() = static_cast<void**>(std::memset(::operator new(size), 0, size));
    reinterpret_cast<void (*)(void**)>(function)(service.interface());
    return true;
}

bool cPlugin::connect() {
    if (get_plugin_purpose() != std::string_view("Module") || !prerequisites_are_met())
        return false;
    bool changed = false;
    for (const Service& service : SERVICES)
        changed |= serve(service);
    return changed;
}

void* cPlugin::get_function(const char* name) {
    void* const function = platform::find_function(library, name);
    if (function == nullptr || initialised)
        return function;
    initialised = initialize(&pluginInitParameters());
    if (!initialised)
        return nullptr;
    run_end_of_life_before_exit_handlers();
    return function;
}

} // namespace quillon

bool __mCore_open() {
    using namespace quillon;
    pluginInitParameters().add(&plugins(), name_hash("Modules"));
    __mCore_parse_folder_for_plugins("plugin");
    connect_plugins();
    run_end_of_life_before_exit_handlers();
    return true;
}

void __mCore_close() {}

void __mCore_parse_folder_for_plugins(const char* folder) {
    using namespace quillon;
    DSParray<std::string> names(false);
    __mFileOps_instance()->collect_files(folder, names, platform::LIBRARY_EXTENSION);
    for (std::uint32_t i = 0; i < names.count(); ++i) {
        std::unique_ptr<cPlugin> plugin = load_plugin(folder, *names.get(i));
        if (plugin == nullptr)
            continue;
        plugins().add(plugin.get(), DSP_APPEND);
        static_cast<void>(plugin.release());
        run_end_of_life_before_exit_handlers();
    }
}
