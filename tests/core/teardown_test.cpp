// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include <gmock/gmock.h>

#include <cstdlib>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

const fs::path PROGRAMS = fs::absolute(PROGRAM_FOLDER).make_preferred();

// Runs a program of the build folder and returns its status.
int run(const std::string& command) {
    return std::system((PROGRAM_RUNNER + (PROGRAMS / command).string()).c_str());
}

} // namespace

// Sound is initialised before Both, and two are not initialised: the order of loading counts.
TEST(Teardown, UnloadingShutsDownInitialisedPluginsAndKeepsTheIndices) {
    std::vector<std::string> seen;
    Host host({"input_and_system", "graphics", "refuses", "needs_graphics", "serves_nothing"});
    host.observe([&](const std::string& event) {
        if (!event.ends_with("shutdown"))
            return;
        host.scan("plugin");
        host.open();
        std::string names;
        for (std::uint32_t i = 0; i < host.plugin_count(); ++i)
            names += host.plugin_name(static_cast<std::int16_t>(i)) + std::string(" ");
        seen.push_back(names);
        const auto gone = static_cast<std::int16_t>(host.first_plugin("Module", "") - 1);
        EXPECT_STREQ(host.plugin_purpose(gone), "INVALID");
        EXPECT_EQ(host.plugin_function(gone, "note_argument"), nullptr);
    });
    host.open();
    EXPORT_OF(host, __mCore_close)();
    EXPECT_EQ(host.plugin_count(), 5u);
    fs::remove("events");
    host.unload();
    EXPECT_THAT(Host::events(),
                ElementsAre("Both: shutdown", "Graphics: shutdown", "Sound: shutdown"));
    EXPECT_THAT(seen, ElementsAre("Both Graphics Graphics Sound Idle ",
                                  "INVALID Graphics Graphics Sound Idle ",
                                  "INVALID INVALID INVALID Sound Idle "));
    EXPECT_FALSE(is_mapped("libquillon"));
    EXPECT_FALSE(is_mapped(fs::current_path().string()));
}

TEST(Teardown, AnOrdinaryExitShutsDownBeforeStaticObjectsDie) {
    struct Row {
        const char* mode;
        std::vector<std::string> shutdowns;
        const char* trace; // where an operator new of the program is the library's too
    };

    const Row rows[] = {
        {"", {"All: shutdown"}, "AaNnSIGggu All: shutdown: All Tool, answers"},
        {"scan", {"All: shutdown"}, "AaNnSIGggu All: shutdown: All Tool Idle, answers"},
        {"initialize",
         {"All: shutdown", "Idle: shutdown"},
         "AaNnSIGggu All: shutdown: All Tool Idle Idle: shutdown: INVALID INVALID Idle, answers"},
        {"throw", {"All: shutdown"}, "aNnSIGggu All: shutdown: All Tool, answers"},
    };
    for (const auto& [mode, shutdowns, trace] : rows) {
        SCOPED_TRACE(mode);
        const Host folder({"all_five"});
        copy_fixture(fs::path(u8"plugin/1_\u20AC" PLUGIN_EXTENSION), "tool");
        copy_fixture("late/idle" PLUGIN_EXTENSION, "serves_nothing");
        EXPECT_EQ(run("linked_host 2> trace " + std::string(mode)), 0);
        std::vector<std::string> events = Host::events();
        std::erase_if(
            events, [](const auto& event) { return event.find("shutdown") == std::string::npos; });
        EXPECT_EQ(events, shutdowns);
#if !defined(_WIN32)
        EXPECT_EQ(text_of("trace"), trace);
#endif
    }
}

// These look at /proc, and link what is in reach at run time.
#if !defined(_WIN32)
TEST(Teardown, ThousandCyclesLeaveNothing) {
    const Host folder({"all_five", "needs_graphics", "refuses"});
    EXPECT_EQ(run("reloading_host > /dev/null"), 0);
}

// A plug-in that links the shared library reaches its host's modules only if the host does so too.
TEST(Teardown, SecondLibraryInAProcessIsReported) {
    const Host folder({"graphics", "brings_library"});
    const std::string report = "quillon: Guest: this plug-in is connected by another library";
    EXPECT_EQ(run("linked_host 2> output"), 0);
    EXPECT_THAT(text_of("output"), Not(HasSubstr(report)));
    EXPECT_EQ(run("static_host 2> output"), 0);
    EXPECT_THAT(text_of("output"), testing::StartsWith(report));
}
#endif
