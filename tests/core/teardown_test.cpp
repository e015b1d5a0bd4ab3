#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

using testing::ElementsAre;

namespace {

// Runs a program of the build folder and returns its exit code.
int run(const std::string& program) {
    const int status = std::system((std::string(PROGRAM_FOLDER "/") + program).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

// Sound is initialised before Both, and two are not initialised: the order of loading counts.
TEST(Teardown, UnloadingShutsDownInitialisedPluginsAndKeepsTheIndices) {
    std::vector<std::string> seen;
    Host host({"input_and_system", "graphics", "refuses", "needs_graphics", "serves_nothing"});
    auto* const open = EXPORT_OF(host, __mCore_open);
    auto* const name = EXPORT_OF(host, __mCore_get_plugin_name);
    auto* const purpose = EXPORT_OF(host, __mCore_get_plugin_purpose);
    auto* const find = EXPORT_OF(host, __mCore_get_first_valid_plugin);
    auto* const function = EXPORT_OF(host, __mCore_get_plugin_function);
    auto* const scan = EXPORT_OF(host, __mCore_parse_folder_for_plugins);
    auto* const count = EXPORT_OF(host, __mCore_get_plugin_count);
    host.observe([&](const std::string& event) {
        if (!event.ends_with("shutdown"))
            return;
        scan("plugin");
        open();
        std::string names;
        for (std::uint32_t i = 0; i < count(); ++i)
            names += name(static_cast<std::int16_t>(i)) + std::string(" ");
        seen.push_back(names);
        const auto gone = static_cast<std::int16_t>(find("Module", "") - 1);
        EXPECT_STREQ(purpose(gone), "INVALID");
        EXPECT_EQ(function(gone, "note_argument"), nullptr);
    });
    open();
    EXPORT_OF(host, __mCore_close)();
    EXPECT_EQ(count(), 5u);
    std::filesystem::remove("events");
    host.unload();
    EXPECT_THAT(Host::events(),
                ElementsAre("Both: shutdown", "Graphics: shutdown", "Sound: shutdown"));
    EXPECT_THAT(seen, ElementsAre("Both Graphics Graphics Sound Idle ",
                                  "INVALID Graphics Graphics Sound Idle ",
                                  "INVALID INVALID INVALID Sound Idle "));
    EXPECT_FALSE(is_mapped("libquillon"));
    EXPECT_FALSE(is_mapped(std::filesystem::current_path()));
}

TEST(Teardown, AnOrdinaryExitShutsDownBeforeStaticObjectsDie) {
    const std::pair<const char*, const char*> rows[] = {
        {"linked_host", "All: shutdown, All Tool "},
        {"linked_host scan", "All: shutdown, All Tool Idle "},
        {"linked_host initialize",
         "All: shutdown, All Tool Idle Idle: shutdown, INVALID INVALID Idle "},
        {"linked_host throw", "All: shutdown, All Tool "},
    };
    for (const auto& [command, expected] : rows) {
        SCOPED_TRACE(command);
        const Host folder({"all_five", "tool"});
        copy_fixture("late/idle.so", "serves_nothing");
        EXPECT_EQ(run(command), 0);
        std::ifstream file("at_shutdown");
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), expected);
    }
}

TEST(Teardown, ThousandCyclesLeaveNothing) {
    const Host folder({"all_five", "needs_graphics", "refuses"});
    EXPECT_EQ(run("reloading_host > /dev/null"), 0);
}
