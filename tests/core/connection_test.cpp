// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include <malloc.h>

#if defined(_WIN32)
    #define malloc_usable_size _msize
#endif

namespace {

const struct {
    const char* name; // of the prerequisite or the plug-in in question
    std::vector<std::string> plugins;
    const char* events;    // the plug-in's initial, then "+" for initialize or what is connected
    const char* connected; // initials of the modules with a table
} CONNECTIONS[] = {
    {"none", {}, "", ""},
    {"first of two", {"other_graphics", "graphics"}, "O+Og", "G"},
    {"free modules", {"graphics", "all_five"}, "G+GgA+AiAsAnAs", "GISNA"},
    {"later", {"needs_graphics", "graphics", "input_and_system"}, "G+GgB+BiBsS+Ss", "GISA"},
    {"prerequisite in other case", {"graphics", "needs_other_case"}, "G+Gg", "G"},
    {"prerequisite is itself", {"needs_itself"}, "", ""},
    {"second of three", {"graphics", "input_and_system", "needs_three"}, "G+GgB+BiBs", "GIS"},
    {"prerequisite is no module", {"tool", "needs_tool"}, "", ""},
    {"namesake refuses", {"refuses", "graphics", "needs_graphics"}, "G+G+GgS+Ss", "GA"},
    {"other purposes", {"tool", "module_in_lower_case"}, "", ""},
    {"initialize is called again", {"hesitates"}, "H+H+HiHg", "GI"},
    {"no connect entry point", {"no_connect", "graphics"}, "G+Gg", "G"},
};

std::string short_events() {
    std::string text;
    for (const std::string& event : Host::events()) {
        const std::size_t connect = event.find(": connect ");
        text += {event[0], connect == std::string::npos ? '+' : event[connect + 10]};
    }
    return text;
}

// Initials of the modules that have a table, which holds all its entries.
std::string connected_modules(const Host& host) {
    const std::tuple<char, void**, std::size_t> modules[] = {
        {'G', EXPORT_OF(host, __mGraphics_instance)()->interface, 97},
        {'I', EXPORT_OF(host, __mInput_instance)()->interface, 35},
        {'S', EXPORT_OF(host, __mSystem_instance)()->interface, 25},
        {'N', EXPORT_OF(host, __mNetwork_instance)()->interface, 26},
        {'A', EXPORT_OF(host, __mAudio_instance)()->interface, 14}};

    std::string initials;
    for (const auto& [initial, interface, entries] : modules)
        if (interface != nullptr) {
            initials += initial;
            EXPECT_GE(malloc_usable_size(interface), entries * sizeof(void*));
        }
    return initials;
}

} // namespace

TEST(Connection, HappensInThisOrder) {
    for (const auto& row : CONNECTIONS) {
        SCOPED_TRACE(row.name);
        const Host host(row.plugins);
        EXPECT_TRUE(host.open());
        EXPECT_EQ(short_events(), row.events);
        EXPECT_EQ(connected_modules(host), row.connected);
        EXPECT_EQ(host.plugin_count(), row.plugins.size());
    }
}

TEST(Connection, AConnectedModuleIsNotOfferedAgain) {
    const Host host({"graphics", "other_graphics"});
    host.open();
    const std::vector<std::string> events = Host::events("");
    EXPECT_EQ(std::ranges::count(events, "Graphics: asked GRAPHICS"), 1);
    EXPECT_EQ(std::ranges::count(events, "Other: asked GRAPHICS"), 0);
    EXPECT_EQ(std::ranges::count(events, "Other: asked AUDIO"), 2);
}

TEST(Connection, AThrowingConnectEntryPointLeavesTheModuleFree) {
    bool throws = true;
    const Host host({"graphics"});
    host.observe([&](const std::string& event) {
        if (throws && event == "Graphics: connect graphics")
            throw std::runtime_error(event);
    });
    EXPECT_THROW(host.open(), std::runtime_error);
    EXPECT_EQ(connected_modules(host), "");
    throws = false;
    host.open();
    EXPECT_EQ(connected_modules(host), "G");
}
