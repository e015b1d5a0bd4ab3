#include "quillon/core/statics.h"

#include "quillon/core/end_of_life.h"

#include <memory>

namespace quillon {
namespace {

constinit Lasting<DSPrefHashMap<void>> parameters;
constinit Lasting<PluginList> plugin_list;
constinit Lasting<DSPhashMap<void>> pointers;

// Built while the library loads, in this order, and so destroyed after the modules in reverse.
[[maybe_unused]] const bool built = [] {
    run_end_of_life_before_exit_handlers();
    pluginInitParameters();
    plugins();
    uniquePointers();
    return true;
}();

} // namespace

PluginList::~PluginList() {
    while (const std::unique_ptr<cPlugin> first{get(0)})
        remove(0, true);
}

DSPrefHashMap<void>& pluginInitParameters() {
    return parameters.get();
}

DSParray<cPlugin>& plugins() {
    return plugin_list.get();
}

DSPhashMap<void>& uniquePointers() {
    return pointers.get();
}

} // namespace quillon
