// The shared library, loaded and unloaded by its path, with a folder of plug-ins of its own.
#pragma once

#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"
#include "quillon/core/worker.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// A fresh folder that is the current one as long as the object lives.
class ScratchFolder {
public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    // Copies fixtures into `inside`, as 0_NAME, 1_NAME, ... so that they load in the given order.
    void add_plugins(const std::vector<std::string>& fixtures, const char* inside = "plugin") const;

    // The lines of the file "events", without those that have `unwanted` after the plug-in's name.
    static std::vector<std::string> events(const std::string& unwanted = "asked");

    std::string path() const { return folder.string(); }

private:
    std::filesystem::path before;
    std::filesystem::path folder;
};

class LoadedLibrary {
public:
    LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    ~LoadedLibrary() { unload(); }

    void unload();

    // Calls `observer` with the events of the fixtures that are initialised from now on.
    void observe(std::function<void(const std::string& event)> observer) const;

    void* address(const char* name) const;

    // The loaded library's export, as a function of the given type; see EXPORT_OF.
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(address(name));
    }

private:
    void* handle;
};

// The export NAME of a loaded library.
#define EXPORT_OF(library, NAME) (library).function<decltype(NAME)>(#NAME)

// Whether a mapping of this process names `text`.
bool is_mapped(const std::string& text);
