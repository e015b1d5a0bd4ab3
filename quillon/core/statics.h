// What the core holds beside the modules.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/core/plugins.h"

namespace quillon {

// Plug-ins leave the list one by one as it dies, first loaded first, so that a `shutdown` that
// calls exports meets only plug-ins that are still loaded.
class PluginList : public DSParray<cPlugin> {
public:
    PluginList() = default;
    ~PluginList() override;
};

// What `initialize` of a plug-in receives; refers to its values.
DSPrefHashMap<void>& pluginInitParameters();

// Every plug-in that loaded, in the order of loading.
DSParray<cPlugin>& plugins();

// What hosts and plug-ins share by key; frees its values.
DSPhashMap<void>& uniquePointers();

} // namespace quillon
