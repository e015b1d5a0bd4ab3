// SPDX-License-Identifier: MIT
#include "quillon/core/loaded_plugin.h"

#include "quillon/core/core_lists.h"
#include "quillon/core/end_of_life.h"
#include "quillon/core/raised_flag.h"
#include "quillon/core/services.h"
#include "quillon/platform/loader.h"

#include <cstring>
#include <new>
#include <string_view>
#include <utility>

namespace quillon {
namespace {

template <typename Function>
void resolve(Function*& field, void* function) {
    field = reinterpret_cast<Function*>(function);
}

bool is_initialised(const std::string& name) {
    for (std::uint32_t i = 0; i < plugins().count(); ++i) {
        const cPlugin* plugin = plugins().get(i);
        if (plugin != nullptr && plugin->initialised && name == plugin->get_plugin_name())
            return true;
    }
    return false;
}

bool are_initialised(const DSParray<std::string>& names) {
    for (std::uint32_t i = 0; i < names.count(); ++i)
        if (names.get(i) == nullptr || !is_initialised(*names.get(i)))
            return false;
    return true;
}

void** new_table(std::size_t entry_count) {
    const std::size_t size = entry_count * sizeof(void*);
    return static_cast<void**>(std::memset(::operator new(size), 0, size));
}

// The end of life precedes that of the plug-in's static objects when the scope is left, also by an
// exception.
struct EndOfLifeBefore {
    explicit EndOfLifeBefore(void* plugin_library) : library(plugin_library) {}

    EndOfLifeBefore(const EndOfLifeBefore&) = delete;
    EndOfLifeBefore& operator=(const EndOfLifeBefore&) = delete;

    ~EndOfLifeBefore() { run_end_of_life_before_end_of(library); }

    void* library;
};

} // namespace

LoadedPlugin::LoadedPlugin(void* loaded_library, const EntryPoints& functions) {
    library = loaded_library;
    resolve(initialize, functions[INITIALIZE]);
    resolve(shutdown, functions[SHUTDOWN]);
    resolve(get_plugin_name, functions[GET_PLUGIN_NAME]);
    resolve(get_plugin_purpose, functions[GET_PLUGIN_PURPOSE]);
    resolve(get_plugin_compatibility, functions[GET_PLUGIN_COMPATIBILITY]);
    resolve(get_plugin_prereqs, functions[GET_PLUGIN_PREREQS]);
}

LoadedPlugin::~LoadedPlugin() {
    shut_down();
    forget_end_of_life_in(library);
    platform::release_library(library);
}

bool LoadedPlugin::connect() {
    if (get_plugin_purpose() != std::string_view("Module"))
        return false;
    // Lives until the services have been offered: `initialize` may read the names.
    DSParray<std::string> prerequisites(false);
    get_plugin_prereqs(prerequisites);
    if (!are_initialised(prerequisites))
        return false;
    bool changed = false;
    for (const Service& service : SERVICES)
        changed |= connect_service(service);
    return changed;
}

void* LoadedPlugin::get_function(const char* name) {
    void* const function = platform::find_function(library, name);
    return function != nullptr && make_initialised() ? function : nullptr;
}

void LoadedPlugin::shut_down() {
    if (!initialised)
        return;
    shutdown();
    initialised = false;
}

// An `initialize` that asks for a function of its own plug-in gets here a second time.
bool LoadedPlugin::make_initialised() {
    if (initialised || initialising)
        return initialised;
    const RaisedFlag under_way(initialising);
    initialised = initialize(&pluginInitParameters());
    if (initialised) {
        run_end_of_life_before_exit_handlers();
        run_end_of_life_before_end_of(library);
    }
    return initialised;
}

bool LoadedPlugin::connect_service(const Service& service) {
    if (service.interface() != nullptr || !get_plugin_compatibility(service.keyword))
        return false;
    void* const function = get_function(service.connect_entry_point);
    if (function == nullptr)
        return false;
    void**& table = service.interface();
    table = new_table(service.entry_count);
    const EndOfLifeBefore static_objects(library);
    try {
        reinterpret_cast<void (*)(void**)>(function)(table);
    } catch (...) {
        ::operator delete(std::exchange(table, nullptr));
        throw;
    }
    return true;
}

} // namespace quillon
