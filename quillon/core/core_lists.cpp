// SPDX-License-Identifier: MIT
#include "quillon/core/core_lists.h"

#include "quillon/core/end_of_life.h"

#include <memory>

namespace quillon {
namespace {

constinit Lasting<DSPrefHashMap<void>> parameters;
constinit Lasting<PluginList> plugin_list;
constinit Lasting<DSPhashMap<void>> pointers;

// Built while the library loads, in this order, and so destroyed after the modules in reverse.
[[maybe_unused]] const bool BUILT = [] {
    run_end_of_life_before_exit_handlers();
    pluginInitParameters();
    plugins();
    uniquePointers();
    return true;
}();

} // namespace

// During `shutdown` the list still holds the plug-in. Its file is released after it has left the
// list, since static destructors in it may call exports.
PluginList::~PluginList() {
    for (std::uint32_t i = 0; i < count(); ++i) {
        const std::unique_ptr<LoadedPlugin> ending(plugin_at(i));
        if (ending != nullptr)
            ending->shut_down();
        remove(i, true);
        add(nullptr, i); // cannot fail: the capacity is there
    }
}

DSPrefHashMap<void>& pluginInitParameters() {
    return parameters.get();
}

PluginList& plugins() {
    return plugin_list.get();
}

DSPhashMap<void>& uniquePointers() {
    return pointers.get();
}

} // namespace quillon
