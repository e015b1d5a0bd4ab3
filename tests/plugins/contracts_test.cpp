// SPDX-License-Identifier: MIT
// The macro that the Windows headers leave behind, and the headers of sockets, before ours.
#define interface struct
#include <sys/socket.h>
// clang-format off
#include "quillon/core/plugin.h"
#include "plugins/contracts/audio.h"
#include "plugins/contracts/graphics.h"
#include "plugins/contracts/input.h"
#include "plugins/contracts/last_error.h"
#include "plugins/contracts/network.h"
#include "plugins/contracts/system.h"
// clang-format on
#undef interface

#include "graphics_plugin.h"
#include "quillon/platform/loader.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;

namespace {

// The entries of a table, as the library has them.
template <typename Table>
void** entries_of(const Table& table) {
    return reinterpret_cast<void**>(const_cast<Table*>(&table));
}

// The reason, or the empty text for a contract that is served.
template <typename Table>
std::string reason_of(void** table) {
    auto* const module = __mGraphics_instance();
    module->interface = table;
    const auto result = contract<Table>(module);
    module->interface = nullptr;
    EXPECT_EQ(result.reason.empty(), static_cast<bool>(result));
    return result.reason;
}

struct GraphicsOfTomorrow : Graphics {
    static constexpr ContractIdentity IDENTITY = {"quillon.graphics", 2};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};
};

struct OwnEntries {
    void (*first)();
    int (*last[32])(int);
};

} // namespace

TEST(Contracts, ATableIsTypedOnlyUnderItsOwnContract) {
    void** const renderer = entries_of(graphics());
    const LoadedPlugin<Pictures> plugin(IMAGE_FILE, "connect_graphics_interface", {});
    void** const image = entries_of(*plugin.operator->());
    void* nameless[97] = {};
    void* foreign[97] = {reinterpret_cast<void*>(+[](ContractIdentity*) {})};
    EXPECT_EQ("", reason_of<Graphics>(renderer));
    EXPECT_EQ("", reason_of<Pictures>(renderer));
    EXPECT_EQ("", reason_of<Pictures>(image));
    EXPECT_EQ("no plug-in serves GRAPHICS", reason_of<Graphics>(nullptr));
    EXPECT_EQ("the plug-in that serves GRAPHICS names no contract", reason_of<Graphics>(nameless));
    EXPECT_EQ("the plug-in that serves GRAPHICS names no contract", reason_of<Graphics>(foreign));
    EXPECT_EQ("the plug-in that serves GRAPHICS does so under the contract 'quillon.pictures' "
              "version 1, not 'quillon.graphics' version 1",
              reason_of<Graphics>(image));
    EXPECT_EQ("the plug-in that serves GRAPHICS does so under the contract 'quillon.graphics' "
              "version 1, not 'quillon.graphics' version 2",
              reason_of<GraphicsOfTomorrow>(renderer));
}

TEST(Contracts, OwnEntriesFollowTheReservedOnes) {
    void* table[97] = {};
    serve(table, Graphics{});
    own_entries<OwnEntries, GraphicsTable>(table) = {.first = [] {}, .last = {}};
    EXPECT_EQ(nullptr, table[63]);
    EXPECT_NE(nullptr, table[64]);
    EXPECT_EQ(table + 97,
              reinterpret_cast<void**>(&own_entries<OwnEntries, GraphicsTable>(table) + 1));
}

TEST(Contracts, APluginIsWantedUnlessTheHostNamedAnother) {
    char choice[] = "image";
    DSPrefHashMap<void> parameters;
    EXPECT_TRUE(is_wanted(&parameters, "GRAPHICS", "graphics-gl"));
    parameters.add(choice, name_hash("GRAPHICS"));
    EXPECT_FALSE(is_wanted(&parameters, "GRAPHICS", "graphics-gl"));
    EXPECT_TRUE(is_wanted(&parameters, "GRAPHICS", "image"));
    EXPECT_TRUE(is_wanted(&parameters, "AUDIO", "audio-openal"));

    for (const char* file : {GRAPHICS_FILE, IMAGE_FILE}) {
        choice[0] = file == std::string(IMAGE_FILE) ? 'I' : 'i';
        auto* const initialize = reinterpret_cast<bool (*)(DSPrefHashMap<void>*)>(
            platform::find_function(platform::load_library(file), "initialize"));
        EXPECT_FALSE(initialize(&parameters)) << file;
    }
}

TEST(Contracts, AReasonIsJoinedAndCutAndKeptFromExceptions) {
    LastError error;
    EXPECT_FALSE(error.fail("cannot ", std::string("load"), ": ", "why"));
    EXPECT_STREQ("cannot load: why", error.text());
    error.fail(std::string(600, 'x'), "y");
    EXPECT_EQ(std::string(511, 'x'), error.text());
    EXPECT_FALSE(error.guard([] { throw std::runtime_error("thrown"); }));
    EXPECT_STREQ("thrown", error.text());
    EXPECT_FALSE(error.guard([] { throw 5; }));
    EXPECT_STREQ("unknown exception", error.text());
    EXPECT_TRUE(error.guard([] {}));
    EXPECT_STREQ("", error.text());
}
