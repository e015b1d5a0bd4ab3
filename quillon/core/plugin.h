// SPDX-License-Identifier: MIT
// The interface of a plug-in: its entry points, the tables that it fills, the containers it uses.
//
// A plug-in is a shared library in the folder "plugin" of a host. It defines the six entry points
// below, and a connect entry point for each module that it serves. It links no library: one that
// links this library, to call its exports, keeps it loaded until the process exits.
//
// Shutdown
//   `shutdown` runs once for each plug-in whose `initialize` returned true, when the library is
//   unloaded or the process exits in the ordinary way.
//   Static objects that exist when `initialize` and the connect entry points have returned are
//   still alive then. Function-local statics that are first used later may be gone; tables are.
//   On Windows that needs this header: a plug-in without it is shut down after its static objects.
//   Plug-ins keep their indices. One that is gone answers "INVALID", null and false.
//
// Calls into the library, which every function of a plug-in may make
//   While a plug-in is being initialised, __mCore_get_plugin_function returns null for it.
//   __mCore_open changes nothing and returns true inside __mCore_open and once the library ends.
//   __mCore_parse_folder_for_plugins loads nothing once the library ends.
//
// Exceptions, which propagate to the host; the plug-ins that are initialised are shut down later
//   get_plugin_name or _purpose, during a scan: the file is not added and stays mapped.
//   initialize: the plug-in is not initialised; the next call of one of its functions asks again.
//   A connect entry point: the module stays unconnected, and its table is freed.
//   shutdown: std::terminate.
//
// The names below are global. `shutdown` is also a call of the sockets interface: both headers may
// be included, in any order, since the entry point is an overload of its own under the same symbol.
// A plug-in that calls sockets itself reaches its own entry point under that name, so it leaves
// such calls to a library.
#pragma once

#include "quillon/core/abi.h"
// The check of the compiler comes first.
#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/containers/name_hash.h"
#include "quillon/core/interfaces.h"
#include "quillon/core/own_library.h"
#include "quillon/core/plugin_registry.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>

#if defined(_WIN32)
    #define QUILLON_PLUGIN_VISIBLE __declspec(dllexport)
#else
    #define QUILLON_PLUGIN_VISIBLE __attribute__((visibility("default")))
#endif
#define QUILLON_PLUGIN_EXPORT extern "C" QUILLON_PLUGIN_VISIBLE

// The six that every plug-in defines. The last four are called before `initialize`, many times.

// True if the plug-in is ready; after false it may be called again. `parameters` holds the host's
// values by name_hash of their names.
QUILLON_PLUGIN_EXPORT bool initialize(quillon::DSPrefHashMap<void>* parameters);
QUILLON_PLUGIN_VISIBLE void shutdown() __asm__("shutdown");
// Texts that stay valid as long as the plug-in is loaded; with a null it is refused. Only the
// purpose "Module" is connected.
QUILLON_PLUGIN_EXPORT const char* get_plugin_name();
QUILLON_PLUGIN_EXPORT const char* get_plugin_purpose();
// True for the keywords "GRAPHICS", "INPUT", "SYSTEM", "NET", "AUDIO" of the modules that it
// serves. QUILLON_PLUGIN_SERVES also answers the keywords of quillon/core/abi.h.
QUILLON_PLUGIN_EXPORT bool get_plugin_compatibility(const char* word);
// Appends to the empty list the names, made with `new`, of plug-ins that must be initialised first.
// The list lives until the plug-in has been offered the modules.
QUILLON_PLUGIN_EXPORT void get_plugin_prereqs(quillon::DSParray<std::string>& names);

// One for each module that it serves: writes the plug-in's functions into the cleared table.
QUILLON_PLUGIN_EXPORT void connect_graphics_interface(void** table);
QUILLON_PLUGIN_EXPORT void connect_input_interface(void** table);
QUILLON_PLUGIN_EXPORT void connect_system_interface(void** table);
QUILLON_PLUGIN_EXPORT void connect_network_interface(void** table);
QUILLON_PLUGIN_EXPORT void connect_sound_interface(void** table);

#if defined(_WIN32)
// The seventh entry point, optional and already defined: the library's end of life, which calls
// `shutdown`, comes before the end of the static objects that exist when it is called.
//
// Exit handlers of a DLL are its own here, and a plug-in's run before the library's. Null removes
// the handler: the DLL may outlive the library.
//
// It is emitted and exported by hand, as -fno-keep-inline-dllexport, which CMake sets for hidden
// inline functions, leaves it out.
__asm__(".section .drectve\n\t.ascii \" -export:call_before_end_of_plugin\"\n\t.text");

extern "C" __attribute__((used)) inline void call_before_end_of_plugin(void (*function)()) {
    static constinit decltype(function) end_of_life = nullptr;
    end_of_life = function;
    if (function == nullptr)
        return;
    static_cast<void>(std::atexit([] {
        if (end_of_life != nullptr)
            end_of_life();
    }));
}
#endif

namespace quillon {

// The block that a connect entry point receives, as the table of the module:
// `as_table<GraphicsTable>(table).load_bitmap = load`.
template <typename Table>
Table& as_table(void** table) {
    detail::report_other_library(get_plugin_name());
    return *reinterpret_cast<Table*>(table);
}

// Appends a copy of `name`; leaks nothing when memory runs out.
inline void add_name(DSParray<std::string>& names, const char* name) {
    names.make_room_for_one();
    names.add(new std::string(name), DSP_APPEND);
}

} // namespace quillon

// Defines get_plugin_name, get_plugin_purpose and get_plugin_compatibility of a plug-in of purpose
// "Module". Arguments: its name, then the keyword of each module that it serves.
#define QUILLON_PLUGIN_SERVES(name, ...)                                                           \
    const char* get_plugin_name() {                                                                \
        return name;                                                                               \
    }                                                                                              \
    const char* get_plugin_purpose() {                                                             \
        return "Module";                                                                           \
    }                                                                                              \
    bool get_plugin_compatibility(const char* word) {                                              \
        const std::initializer_list<std::string_view> keywords = {__VA_ARGS__};                    \
        return quillon::is_own_abi(word) ||                                                        \
               std::find(keywords.begin(), keywords.end(), word) != keywords.end();                \
    }

// Defines get_plugin_prereqs with the names of the plug-ins that must be initialised first.
#define QUILLON_PLUGIN_NEEDS(...)                                                                  \
    void get_plugin_prereqs(quillon::DSParray<std::string>& names) {                               \
        for (const char* name : std::initializer_list<const char*>{__VA_ARGS__})                   \
            quillon::add_name(names, name);                                                        \
    }

// Defines get_plugin_prereqs of a plug-in that needs no other.
#define QUILLON_PLUGIN_NEEDS_NOTHING()                                                             \
    void get_plugin_prereqs(quillon::DSParray<std::string>&) {}
