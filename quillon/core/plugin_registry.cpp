#include "quillon/containers/names.h"
#include "quillon/core/plugins.h"
#include "quillon/core/statics.h"

#include <limits>
#include <string_view>

namespace quillon {
namespace {

cPlugin* plugin_at(std::int16_t index) {
    return index < 0 ? nullptr : plugins().get(static_cast<std::uint32_t>(index));
}

bool matches(const cPlugin& plugin, std::string_view purpose, const char* compatibility) {
    return plugin.get_plugin_purpose() == purpose &&
           (*compatibility == '\0' || plugin.get_plugin_compatibility(compatibility));
}

constexpr const char* INVALID = "INVALID";

} // namespace
} // namespace quillon

void* __mCore_add_plugin_init_parameter(const char* name, void* value) {
    return quillon::pluginInitParameters().add(value, quillon::name_hash(name));
}

std::uint32_t __mCore_get_plugin_count() {
    return quillon::plugins().count();
}

std::int16_t __mCore_get_first_valid_plugin(const char* purpose, const char* compatibility) {
    // Further plug-ins have no index.
    constexpr std::uint32_t INDEX_LIMIT = std::numeric_limits<std::int16_t>::max() + 1;
    for (std::uint32_t i = 0; i < quillon::plugins().count() && i < INDEX_LIMIT; ++i)
        if (quillon::matches(*quillon::plugins().get(i), purpose, compatibility))
            return static_cast<std::int16_t>(i);
    return -1;
}

const char* __mCore_get_plugin_name(std::int16_t index) {
    const quillon::cPlugin* plugin = quillon::plugin_at(index);
    return plugin == nullptr ? quillon::INVALID : plugin->get_plugin_name();
}

const char* __mCore_get_plugin_purpose(std::int16_t index) {
    const quillon::cPlugin* plugin = quillon::plugin_at(index);
    return plugin == nullptr ? quillon::INVALID : plugin->get_plugin_purpose();
}

bool __mCore_check_plugin_compatibility(std::int16_t index, const char* word) {
    const quillon::cPlugin* plugin = quillon::plugin_at(index);
    return plugin != nullptr && plugin->get_plugin_compatibility(word);
}

void* __mCore_get_plugin_function(std::int16_t index, const char* name) {
    quillon::cPlugin* plugin = quillon::plugin_at(index);
    return plugin == nullptr ? nullptr : plugin->get_function(name);
}

void __mCore_call_plugin_function(std::int16_t index, const char* name, void* argument) {
    if (void* const function = __mCore_get_plugin_function(index, name))
        reinterpret_cast<void (*)(void*)>(function)(argument);
}

void* __mCore_store_unique_pointer(void* value, std::uint32_t key) {
    return quillon::uniquePointers().add(value, key);
}

void* __mCore_get_unique_pointer(std::uint32_t key) {
    return quillon::uniquePointers().find(key);
}
