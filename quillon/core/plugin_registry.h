// SPDX-License-Identifier: MIT
// The host's interface to plug-ins: loading, connection, queries. Plug-ins include plugin.h.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/export.h"

#include <cstdint>
#include <string>

namespace quillon {

// The functions that make a shared library a plug-in, in the order of cPlugin's fields.
QUILLON_LOCAL inline constexpr const char* ENTRY_POINTS[] = {"initialize",
                                                             "shutdown",
                                                             "get_plugin_name",
                                                             "get_plugin_purpose",
                                                             "get_plugin_compatibility",
                                                             "get_plugin_prereqs"};

// A loaded plug-in file, which the library makes and destroys.
//
// The list of them, a DSParray<cPlugin>, is what a plug-in's `initialize` finds under the key of
// "Modules". Its users may read the fields and call the entry points.
// While the library ends, the list holds null at the position of a plug-in that is gone.
class cPlugin {
public:
    cPlugin(const cPlugin&) = delete;
    cPlugin& operator=(const cPlugin&) = delete;

    // The library's own part, which derives from this one, shuts down and releases.
    virtual ~cPlugin() = default;

    void* library = nullptr;  // the loader's handle
    bool initialised = false; // `initialize` has returned true
    // The entry points of the file; quillon/core/plugin.h has their contracts.
    bool (*initialize)(DSPrefHashMap<void>* parameters) = nullptr;
    void (*shutdown)() = nullptr;
    const char* (*get_plugin_name)() = nullptr;
    const char* (*get_plugin_purpose)() = nullptr;
    bool (*get_plugin_compatibility)(const char* word) = nullptr;
    void (*get_plugin_prereqs)(DSParray<std::string>& names) = nullptr;

protected:
    cPlugin() = default;
};

} // namespace quillon

extern "C" {

// Loads the plug-ins of the folder "plugin" below the current directory and connects them.
//
// Each plug-in is offered the modules GRAPHICS, INPUT, SYSTEM, NET and AUDIO, in passes, until a
// whole pass connects nothing; one whose prerequisites are not initialised waits for the next pass.
// Always true: a module that no plug-in serves keeps a null `interface`.
// Call it once: a second call loads the folder's plug-ins a second time.
QUILLON_API bool __mCore_open();

// Does nothing: plug-ins are shut down when the library is unloaded or the process exits.
QUILLON_API void __mCore_close();

// Loads every file of `folder` with the platform's library extension and the six entry points.
//
// Prints a line on standard output for each plug-in and for each file that is refused.
// Plug-ins that are added after __mCore_open are never connected.
QUILLON_API void __mCore_parse_folder_for_plugins(const char* folder);

// Stores `value` under `name` in the map that every plug-in's `initialize` receives, and returns
// it.
//
// The first value under a name stays; null is not stored.
// The map does not own the value.
QUILLON_API void* __mCore_add_plugin_init_parameter(const char* name, void* value);

// The number of plug-ins that were loaded, those that are gone included.
QUILLON_API std::uint32_t __mCore_get_plugin_count();

// The index of the first plug-in of exactly that purpose that is compatible with the word; -1 if
// there is none.
//
// An empty word matches without a call of the plug-in.
QUILLON_API std::int16_t __mCore_get_first_valid_plugin(const char* purpose,
                                                        const char* compatibility);

// The plug-in's own text, which it owns; "INVALID" for an invalid index.
QUILLON_API const char* __mCore_get_plugin_name(std::int16_t index);
QUILLON_API const char* __mCore_get_plugin_purpose(std::int16_t index);

// The plug-in's answer to a word; false for an invalid index.
QUILLON_API bool __mCore_check_plugin_compatibility(std::int16_t index, const char* word);

// A function that the plug-in itself exports; initialises the plug-in first if necessary.
//
// Null for an invalid index, for an unknown name, if `initialize` returns false and while it runs.
QUILLON_API void* __mCore_get_plugin_function(std::int16_t index, const char* name);

// Calls that function, if there is one, with `argument`; its result is dropped.
QUILLON_API void __mCore_call_plugin_function(std::int16_t index, const char* name, void* argument);

// Shares `value` under `key` between the host and all plug-ins, and returns it.
//
// The first value under a key stays; null is not stored. A value that is not stored stays the
// caller's.
// A stored value is freed by `operator delete` when the library ends, without a destructor: it must
// come from `operator new`.
QUILLON_API void* __mCore_store_unique_pointer(void* value, std::uint32_t key);

// The value under `key`, or null.
QUILLON_API void* __mCore_get_unique_pointer(std::uint32_t key);
}
