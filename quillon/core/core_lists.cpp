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

// A `shutdown` still finds its own plug-in and the later ones. The file is released after that,
// when nobody finds the plug-in any more.
PluginList::~PluginList() {
    for (std::uint32_t i = 0; i < count(); ++i) {
        const std::unique_ptr<LoadedPlugin> ending(plugin_at(i));
        if (ending != nullptr)
            ending->shut_down();
        remove(i, true);
        add(nullptr, i); // cannot fail: there was an element
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
