#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

using testing::ElementsAre;

namespace {

long open_files() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

double resident_mebibytes() {
    long pages[2];
    std::ifstream("/proc/self/statm") >> pages[0] >> pages[1];
    return static_cast<double>(pages[1] * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

void run_cycles(int count) {
    for (int i = 0; i < count; ++i)
        EXPORT_OF(LoadedLibrary(), __mCore_open)();
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
        {"", "AaNnSIGggu All: shutdown: All Tool, answers"},
        {"scan", "AaNnSIGggu All: shutdown: All Tool Idle, answers"},
        {"initialize", "AaNnSIGggu All: shutdown: All Tool Idle"
                       " Idle: shutdown: INVALID INVALID Idle, answers"},
        {"throw", "aNnSIGggu All: shutdown: All Tool, answers"},
    };
    for (const auto& [mode, expected] : rows) {
        SCOPED_TRACE(mode);
        const Host folder({"all_five", "tool"});
        copy_fixture("late/idle.so", "serves_nothing");
        EXPECT_EQ(
            std::system((PROGRAM_FOLDER "/linked_host 2> trace " + std::string(mode)).c_str()), 0);
        EXPECT_EQ(text_of("trace"), expected);
    }
}

TEST(Teardown, ThousandCyclesLeaveNothing) {
    Host host({"all_five", "needs_graphics", "refuses"});
    host.unload();
    testing::internal::CaptureStdout();
    run_cycles(50);
    const long files = open_files();
    const double memory = resident_mebibytes();
    run_cycles(1000);
    const long more_files = open_files() - files;
    const double more_memory = resident_mebibytes() - memory;
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(more_files, 0);
    EXPECT_LT(more_memory, MOST_GROWTH);
    EXPECT_FALSE(is_mapped("libquillon"));
    EXPECT_FALSE(is_mapped(std::filesystem::current_path()));
}
