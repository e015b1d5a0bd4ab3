#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

using testing::ElementsAre;

namespace {

// Runs a program beside the tests and gives its exit code.
int run(const std::string& program) {
    const int status = std::system((std::string(PROGRAM_FOLDER "/") + program).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Sound is initialised before Both, and All not at all: the order of loading is what counts.
const std::vector<std::string> PLUGINS = {"input_and_system", "graphics", "refuses",
                                          "needs_graphics", "serves_nothing"};

} // namespace

TEST(Teardown, UnloadingShutsDownWhatWasInitialisedInLoadOrder) {
    const ScratchFolder folder;
    folder.add_plugins(PLUGINS);
    LoadedLibrary library;
    for (const char* name : {"__mCore_get_plugin_count", "__mGraphics_instance"})
        EXPORT_OF(library, __mCore_add_plugin_init_parameter)(name, library.address(name));
    EXPORT_OF(library, __mCore_open)();
    EXPORT_OF(library, __mCore_close)();
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), PLUGINS.size());
    std::filesystem::remove("events");
    library.unload();
    EXPECT_THAT(folder.events(),
                ElementsAre("Both: shutdown", "Both: plug-ins left 4", "Both: graphics gone",
                            "Graphics: shutdown", "Graphics: plug-ins left 3",
                            "Graphics: graphics gone", "Sound: shutdown", "Sound: plug-ins left 1",
                            "Sound: graphics gone"));
    EXPECT_FALSE(is_mapped("libquillon"));
    EXPECT_FALSE(is_mapped(folder.path()));
}

TEST(Teardown, AnOrdinaryExitShutsDownBeforeStaticObjectsDie) {
    const ScratchFolder folder;
    folder.add_plugins(PLUGINS);
    EXPECT_EQ(run("linked_host"), 0);
    std::vector<std::string> events = folder.events();
    std::erase_if(events, [](const std::string& event) {
        return event.find("shutdown") == std::string::npos;
    });
    EXPECT_THAT(events, ElementsAre("Both: shutdown", "Graphics: shutdown", "Sound: shutdown"));
}

TEST(Teardown, ThousandCyclesLeaveNothingBehind) {
    const ScratchFolder folder;
    folder.add_plugins({"all_five", "needs_graphics", "refuses"});
    EXPECT_EQ(run("reloading_host > /dev/null"), 0);
}
