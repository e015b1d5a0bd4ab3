// SPDX-License-Identifier: MIT
#include "quillon/core/plugin_registry.h"

#include "quillon/containers/name_hash.h"
#include "quillon/core/core_lists.h"

#include <limits>
#include <string_view>

using namespace quillon;

namespace quillon {
namespace {

constexpr const char* INVALID = "INVALID";

LoadedPlugin* plugin_at(std::int16_t index) {
    return index < 0 ? nullptr : plugins().plugin_at(static_cast<std::uint32_t>(index));
}

bool matches(const cPlugin& plugin, std::string_view purpose, const char* compatibility) {
    return plugin.get_plugin_purpose() == purpose &&
           (*compatibility == '\0' || plugin.get_plugin_compatibility(compatibility));
}

} // namespace
} // namespace quillon

void* __mCore_add_plugin_init_parameter(const char* name, void* value) {
    return pluginInitParameters().add(value, name_hash(name));
}

std::uint32_t __mCore_get_plugin_count() {
    return plugins().count();
}

std::int16_t __mCore_get_first_valid_plugin(const char* purpose, const char* compatibility) {
    // Further plug-ins have no index.
    constexpr std::uint32_t index_limit = std::numeric_limits<std::int16_t>::max() + 1;
    for (std::uint32_t i = 0; i < plugins().count() && i < index_limit; ++i) {
        const cPlugin* const plugin = plugins().get(i);
        if (plugin != nullptr && matches(*plugin, purpose, compatibility))
            return static_cast<std::int16_t>(i);
    }
    return -1;
}

const char* __mCore_get_plugin_name(std::int16_t index) {
    const cPlugin* const plugin = plugin_at(index);
    return plugin == nullptr ? INVALID : plugin->get_plugin_name();
}

const char* __mCore_get_plugin_purpose(std::int16_t index) {
    const cPlugin* const plugin = plugin_at(index);
    return plugin == nullptr ? INVALID : plugin->get_plugin_purpose();
}

bool __mCore_check_plugin_compatibility(std::int16_t index, const char* word) {
    const cPlugin* const plugin = plugin_at(index);
    return plugin != nullptr && plugin->get_plugin_compatibility(word);
}

void* __mCore_get_plugin_function(std::int16_t index, const char* name) {
    LoadedPlugin* const plugin = plugin_at(index);
    return plugin == nullptr ? nullptr : plugin->get_function(name);
}

void __mCore_call_plugin_function(std::int16_t index, const char* name, void* argument) {
    if (void* const function = __mCore_get_plugin_function(index, name))
        reinterpret_cast<void (*)(void*)>(function)(argument);
}

void* __mCore_store_unique_pointer(void* value, std::uint32_t key) {
    return uniquePointers().add(value, key);
}

void* __mCore_get_unique_pointer(std::uint32_t key) {
    return uniquePointers().find(key);
}
