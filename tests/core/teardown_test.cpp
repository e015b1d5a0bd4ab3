#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

// Runs a program beside the tests and returns its exit code.
int run(const std::string& program) {
    const int status = std::system((std::string(PROGRAM_FOLDER "/") + program).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

// Sound is initialised before Both, and two are not initialised: the order of loading is what
// counts.
TEST(Teardown, UnloadingShutsDownWhatWasInitialisedAndKeepsThePlaces) {
    const ScratchFolder folder;
    folder.add_plugins(
        {"input_and_system", "graphics", "refuses", "needs_graphics", "serves_nothing"});
    std::vector<std::string> seen;
    LoadedLibrary library;
    auto* const open = EXPORT_OF(library, __mCore_open);
    auto* const count = EXPORT_OF(library, __mCore_get_plugin_count);
    auto* const name = EXPORT_OF(library, __mCore_get_plugin_name);
    auto* const purpose = EXPORT_OF(library, __mCore_get_plugin_purpose);
    auto* const find = EXPORT_OF(library, __mCore_get_first_valid_plugin);
    auto* const function = EXPORT_OF(library, __mCore_get_plugin_function);
    auto* const graphics = EXPORT_OF(library, __mGraphics_instance);
    library.observe([&](const std::string& event) {
        if (!event.ends_with("shutdown"))
            return;
        std::string names;
        open();
        for (std::int16_t i = 0; i < static_cast<std::int16_t>(count()); ++i)
            names += std::string(names.empty() ? "" : " ") + name(i);
        seen.push_back(names);
        EXPECT_EQ(graphics()->interface, nullptr);
        const auto gone = static_cast<std::int16_t>(find("Module", "") - 1);
        EXPECT_STREQ(purpose(gone), "INVALID");
        EXPECT_EQ(function(gone, "note_argument"), nullptr);
    });
    open();
    EXPORT_OF(library, __mCore_close)();
    EXPECT_EQ(count(), 5u);
    std::filesystem::remove("events");
    library.unload();
    EXPECT_THAT(folder.events(),
                ElementsAre("Both: shutdown", "Graphics: shutdown", "Sound: shutdown"));
    EXPECT_THAT(seen, ElementsAre("Both Graphics Graphics Sound Idle",
                                  "INVALID Graphics Graphics Sound Idle",
                                  "INVALID INVALID INVALID Sound Idle"));
    EXPECT_FALSE(is_mapped("libquillon"));
    EXPECT_FALSE(is_mapped(folder.path()));
}

TEST(Teardown, AnOrdinaryExitShutsDownBeforeStaticObjectsDie) {
    const struct {
        const char* command;
        std::vector<std::string> events;
    } rows[] = {
        {"linked_host", {"All: shutdown", "All Tool "}},
        {"linked_host scan", {"All: shutdown", "All Tool Idle "}},
        {"linked_host initialize",
         {"All: shutdown", "All Tool Idle ", "Idle: shutdown", "INVALID INVALID Idle "}},
        {"linked_host throw", {"All: shutdown", "All Tool "}},
    };

    for (const auto& [command, expected] : rows) {
        SCOPED_TRACE(command);
        const ScratchFolder folder;
        folder.add_plugins({"all_five", "tool"});
        folder.add_plugins({"serves_nothing"}, "late");
        EXPECT_EQ(run(command), 0);
        std::vector<std::string> events = folder.events();
        std::erase_if(events, [](const std::string& event) {
            return event.find("connect") != event.npos || event.find("initialize") != event.npos;
        });
        EXPECT_THAT(events, ElementsAreArray(expected));
    }
}

TEST(Teardown, ThousandCyclesLeaveNothingBehind) {
    const ScratchFolder folder;
    folder.add_plugins({"all_five", "needs_graphics", "refuses"});
    EXPECT_EQ(run("reloading_host > /dev/null"), 0);
}
