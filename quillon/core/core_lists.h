// SPDX-License-Identifier: MIT
// The three lists that the core holds beside the modules.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/core/loaded_plugin.h"

namespace quillon {

// Owns the plug-ins, each of which is a LoadedPlugin.
//
// The destructor shuts them down and releases them, first loaded first. The others keep their
// positions: one that is gone leaves a null.
class PluginList : public DSParray<cPlugin> {
public:
    PluginList() = default;
    PluginList(const PluginList&) = delete;
    PluginList& operator=(const PluginList&) = delete;

    ~PluginList() override;

    // The plug-in at `position`; null if it is gone, and beyond the end.
    LoadedPlugin* plugin_at(std::uint32_t position) const {
        return static_cast<LoadedPlugin*>(get(position));
    }
};

// What `initialize` of a plug-in receives; refers to its values.
DSPrefHashMap<void>& pluginInitParameters();

// Every plug-in that loaded, in the order of loading.
PluginList& plugins();

// What hosts and plug-ins share by key; frees its values.
DSPhashMap<void>& uniquePointers();

} // namespace quillon
