// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <fstream>

#if !defined(_WIN32)
    #include <dlfcn.h>
    #include <sys/stat.h>
#endif

namespace {

namespace fs = std::filesystem;

#if defined(_WIN32)
constexpr const char* MISSING_SYMBOL = "missing_library"; // symbols are resolved at link time there
#else
constexpr const char* MISSING_SYMBOL = "missing_symbol";
#endif

// What a scan of `folder` prints.
std::string scan(const Host& host, const std::string& folder) {
    testing::internal::CaptureStdout();
    host.scan(folder.c_str());
    return testing::internal::GetCapturedStdout();
}

// With the file that `place` makes before a sound plug-in.
void expect_refusal(const char* name, const std::function<void(const fs::path&)>& place) {
    SCOPED_TRACE(name);
    Host host({"graphics"});
    place("plugin/00_broken" PLUGIN_EXTENSION);
    EXPECT_EQ(scan(host, "plugin"),
              "ERROR: Attempt to load module 00_broken" PLUGIN_EXTENSION " failed\n"
              "loading plugin: Graphics\n");
    EXPECT_EQ(host.plugin_count(), 1u);
    host.unload();
    EXPECT_FALSE(is_mapped("00_broken"));
}

} // namespace

TEST(Loading, RefusesPluginsThatLackSomethingAndGoesOn) {
    // The C library has a `shutdown` of its own, which is not the plug-in's.
    for (const char* fixture :
         {"without_initialize", "without_shutdown", "without_get_plugin_name",
          "without_get_plugin_purpose", "without_get_plugin_compatibility",
          "without_get_plugin_prereqs", "no_name", "no_purpose", "missing_library", MISSING_SYMBOL})
        expect_refusal(fixture, [&](const fs::path& file) { copy_fixture(file, fixture); });
}

TEST(Loading, RefusesFilesThatAreNoLibrariesAndGoesOn) {
    expect_refusal("text", [](const fs::path& file) { std::ofstream(file) << "just text\n"; });
    expect_refusal("empty", [](const fs::path& file) { std::ofstream(file).close(); });
#if !defined(_WIN32)
    expect_refusal("pipe", [](const fs::path& file) { mkfifo(file.c_str(), 0600); });
    expect_refusal("dangling", [](const fs::path& file) { fs::create_symlink("nowhere", file); });
#endif
    for (const int length : {20, 500, 4096, 8192, 12288})
        expect_refusal("cut off", [length](const fs::path& file) {
            copy_fixture(file, "graphics");
            fs::resize_file(file, length);
        });
}

TEST(Loading, APluginIsAskedForItsNameOnceAndReleasedAfterItsLine) {
    EXPECT_EQ(scan(Host({"tells_questions"}), "plugin"), "asked\nloading plugin: Asked\n");
    EXPECT_EQ(scan(Host({"says_farewell"}), "plugin"),
              "ERROR: Attempt to load module 0_says_farewell" PLUGIN_EXTENSION
              " failed\nfarewell\n");
}

TEST(Loading, OnlyFilesWithTheExtensionLoadInOrderOfNameAndNoneIsInitialised) {
    const Host host({});
    EXPECT_EQ(scan(host, "plugin"), "") << "there is no such folder";
    std::string upper_extension = PLUGIN_EXTENSION;
    std::ranges::transform(upper_extension, upper_extension.begin(), toupper);
    const std::pair<fs::path, const char*> files[] = {
        {"b" PLUGIN_EXTENSION, "graphics"},           {"a" PLUGIN_EXTENSION, "tool"},
        {"A0" + upper_extension, "input_and_system"}, {"c" PLUGIN_EXTENSION ".1", "all_five"},
        {&PLUGIN_EXTENSION[1], "all_five"},           {"nested/d" PLUGIN_EXTENSION, "all_five"},
    };
    for (const auto& [name, fixture] : files)
        copy_fixture("plugin" / name, fixture);
    fs::create_directory("plugin/folder" PLUGIN_EXTENSION);
    EXPECT_EQ(scan(host, "plugin"),
              "loading plugin: Both\nloading plugin: Tool\nloading plugin: Graphics\n");
    EXPECT_TRUE(Host::events("").empty());
#if !defined(_WIN32)
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "note_argument"), nullptr) << "plug-ins do not see each other";
#endif
}

// Windows itself takes no path that long.
#if !defined(_WIN32)
TEST(Loading, PathsUpToTheLimitLoad) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    for (const std::string letter : {"x", "\u00E9"})
        for (const int length : {260, 261}) {
            // Three folders, as a single name cannot be that long.
            std::string inside;
            for (int i = 0; i < length - 5; ++i)
                inside += i % 90 == 89 ? "/" : letter;
            const Host host({});
            copy_fixture(inside + "/p" PLUGIN_EXTENSION, "graphics");
            EXPECT_EQ(scan(host, inside), length == 260
                                              ? "loading plugin: Graphics\n"
                                              : "ERROR: Attempt to load module p" PLUGIN_EXTENSION
                                                " failed\n");
        }
    std::setlocale(LC_CTYPE, "C");
}
#endif
