// SPDX-License-Identifier: MIT
// Hands the list of plug-ins to a host: a plug-in can look it up, while no export returns it. Its
// purpose keeps it out of the connecting passes.
#include "quillon/core/plugin.h"

namespace {

quillon::DSParray<quillon::cPlugin>* plugins;

} // namespace

const char* get_plugin_name() {
    return "inspector";
}

const char* get_plugin_purpose() {
    return "Inspector";
}

bool get_plugin_compatibility(const char*) {
    return false;
}

QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>* parameters) {
    plugins = static_cast<decltype(plugins)>(parameters->find(quillon::name_hash("Modules")));
    return plugins != nullptr;
}

void shutdown() {}

// Sets the `DSParray<cPlugin>*` that `list` points to, for __mCore_call_plugin_function.
QUILLON_PLUGIN_EXPORT void give_plugins(void* list) {
    *static_cast<decltype(plugins)*>(list) = plugins;
}
