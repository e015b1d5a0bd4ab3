// SPDX-License-Identifier: MIT
// A loaded plug-in: connection, initialisation, shutdown.
#pragma once

#include "quillon/core/plugin_registry.h"

#include <array>
#include <iterator>

namespace quillon {

struct Service;

// The plug-in's functions under the names of ENTRY_POINTS, in that order.
using EntryPoints = std::array<void*, std::size(ENTRY_POINTS)>;

// Positions in ENTRY_POINTS.
enum EntryPoint : std::size_t {
    INITIALIZE,
    SHUTDOWN,
    GET_PLUGIN_NAME,
    GET_PLUGIN_PURPOSE,
    GET_PLUGIN_COMPATIBILITY,
    GET_PLUGIN_PREREQS
};

// Owns the loaded file.
class LoadedPlugin final : public cPlugin {
public:
    LoadedPlugin(void* loaded_library, const EntryPoints& functions);
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    ~LoadedPlugin() override;

    // Offers the plug-in every free module; true if one was connected.
    bool connect();

    // The plug-in's own export of that name; initialises the plug-in first if necessary.
    // Null if there is no such export, if `initialize` returns false and while it runs.
    void* get_function(const char* name);

    // Calls `shutdown` if the plug-in is initialised. Does nothing when it is called again.
    void shut_down();

private:
    bool make_initialised();
    bool connect_service(const Service& service);

    bool initialising = false;
};

} // namespace quillon
