// SPDX-License-Identifier: MIT
// The shared library, loaded and unloaded by its path, with a folder of plug-ins of its own.
#pragma once

#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"
#include "quillon/core/worker.h"
#include "quillon/platform/loader.h"
#include "tests/scratch_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#if defined(_WIN32)
    #include <windows.h>

    #include <psapi.h>

    #undef interface
#endif

// On Windows they lack a drive, which is that of the folder in which the test starts.
inline const std::filesystem::path LIBRARY = std::filesystem::absolute(LIBRARY_FILE);
inline const std::filesystem::path FIXTURES = std::filesystem::absolute(FIXTURE_FOLDER);

// The export NAME of a loaded library.
#define EXPORT_OF(library, NAME) (library).function<decltype(NAME)>(#NAME)

class LoadedLibrary {
public:
    LoadedLibrary()
        : handle(quillon::platform::load_library(LIBRARY.string()),
                 quillon::platform::release_library) {
        if (handle == nullptr)
            throw std::runtime_error(LIBRARY.string() + " does not load");
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
        return reinterpret_cast<Function*>(quillon::platform::find_function(handle.get(), name));
    }

private:
    std::unique_ptr<void, void (*)(void*)> handle;
};

// Copies a fixture to `file`.
inline void copy_fixture(const std::filesystem::path& file, const std::string& name) {
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::copy(FIXTURES / (name + PLUGIN_EXTENSION), file);
}

// Copies fixtures into the folder "plugin", under names that load in the given order.
inline void copy_fixtures(const std::vector<std::string>& names) {
    int number = 0;
    for (const std::string& name : names)
        copy_fixture("plugin/" + std::to_string(number++) + "_" + name + PLUGIN_EXTENSION, name);
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
#if defined(_WIN32)
inline bool is_mapped(const std::string& text) {
    HMODULE modules[1024];
    DWORD size = 0;
    K32EnumProcessModules(GetCurrentProcess(), modules, sizeof modules, &size);
    return std::any_of(modules, modules + size / sizeof *modules, [&text](HMODULE module) {
        wchar_t file[MAX_PATH] = {};
        GetModuleFileNameW(module, file, MAX_PATH);
        return std::filesystem::path(file).string().find(text) != std::string::npos;
    });
}
#else
inline bool is_mapped(const std::string& text) {
    return text_of("/proc/self/maps").find(text) != std::string::npos;
}
#endif
