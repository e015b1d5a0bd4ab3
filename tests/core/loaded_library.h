// SPDX-License-Identifier: MIT
// The shared library, loaded and unloaded by its path, with a folder of plug-ins of its own.
#pragma once

#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"
#include "quillon/core/worker.h"
#include "tests/scratch_folder.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>

// The export NAME of a loaded library.
#define EXPORT_OF(library, NAME) (library).function<decltype(NAME)>(#NAME)

class LoadedLibrary {
public:
    LoadedLibrary() : handle(dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL), dlclose) {
        if (handle == nullptr)
            throw std::runtime_error(dlerror());
    }

    void unload() { handle.reset(); }

    // Calls `observer` with the events of the fixtures that are initialised from now on.
    void observe(std::function<void(const std::string& event)> observer) const {
        static std::function<void(const std::string&)> current;
        current = std::move(observer);
        void (*const pass_on)(const std::string&) = [](const std::string& event) {
            current(event);
        };
        function<decltype(__mCore_add_plugin_init_parameter)>("__mCore_add_plugin_init_parameter")(
            "observer", reinterpret_cast<void*>(pass_on));
    }

    // The export of that name, as a function of the given type; see EXPORT_OF.
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle.get(), name));
    }

private:
    std::unique_ptr<void, int (*)(void*)> handle;
};

// Copies a fixture to `file`.
inline void copy_fixture(const std::filesystem::path& file, const std::string& name) {
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::copy(std::filesystem::path(FIXTURE_FOLDER) / (name + ".so"), file);
}

// Copies fixtures into the folder "plugin", under names that load in the given order.
inline void copy_fixtures(const std::vector<std::string>& names) {
    int number = 0;
    for (const std::string& name : names)
        copy_fixture("plugin/" + std::to_string(number++) + "_" + name + ".so", name);
}

// A host in a folder of its own, with fixtures in "plugin" that load in the given order.
struct Host : ScratchFolder, LoadedLibrary {
    explicit Host(const std::vector<std::string>& fixtures) { copy_fixtures(fixtures); }

    // The lines of the file "events", without those that have `unwanted` after the plug-in's name.
    static std::vector<std::string> events(const std::string& unwanted = "asked") {
        std::vector<std::string> lines;
        std::ifstream file("events");
        for (std::string line; std::getline(file, line);)
            if (unwanted.empty() || line.find(": " + unwanted) == std::string::npos)
                lines.push_back(line);
        return lines;
    }

    decltype(&__mCore_open) open = EXPORT_OF(*this, __mCore_open);
    decltype(&__mCore_parse_folder_for_plugins) scan =
        EXPORT_OF(*this, __mCore_parse_folder_for_plugins);
    decltype(&__mCore_get_plugin_count) plugin_count = EXPORT_OF(*this, __mCore_get_plugin_count);
    decltype(&__mCore_get_plugin_name) plugin_name = EXPORT_OF(*this, __mCore_get_plugin_name);
    decltype(&__mCore_get_plugin_purpose) plugin_purpose =
        EXPORT_OF(*this, __mCore_get_plugin_purpose);
    decltype(&__mCore_get_first_valid_plugin) first_plugin =
        EXPORT_OF(*this, __mCore_get_first_valid_plugin);
    decltype(&__mCore_get_plugin_function) plugin_function =
        EXPORT_OF(*this, __mCore_get_plugin_function);
};

// Whether a mapping of this process names `text`.
inline bool is_mapped(const std::string& text) {
    return text_of("/proc/self/maps").find(text) != std::string::npos;
}
