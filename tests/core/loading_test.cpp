#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <fstream>

#include <dlfcn.h>
#include <sys/stat.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

namespace fs = std::filesystem;

void copy_fixture(const fs::path& file, const char* name) {
    fs::copy(fs::path(FIXTURE_FOLDER) / (std::string(name) + ".so"), file);
}

// Overwrites a byte of a sound plug-in's file.
void spoil(const fs::path& file, std::streamoff offset, char byte) {
    copy_fixture(file, "graphics");
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(offset).put(byte);
}

// With the file that `place` makes beside a sound plug-in.
void expect_refusal(const char* name, const std::function<void(const fs::path&)>& place) {
    SCOPED_TRACE(name);
    const ScratchFolder folder;
    folder.add_plugins({"graphics"});
    place("plugin/00_broken.so");
    LoadedLibrary library;
    CaptureStdout();
    EXPECT_TRUE(EXPORT_OF(library, __mCore_open)());
    EXPECT_EQ(GetCapturedStdout(), "ERROR: Attempt to load module 00_broken.so failed\n"
                                   "loading plugin: Graphics\n");
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), 1u);
    library.unload();
    EXPECT_FALSE(is_mapped("00_broken"));
}

} // namespace

TEST(Loading, RefusesWhatLacksSomethingAndGoesOn) {
    // The C library has a `shutdown` of its own, which is not the plug-in's.
    for (const char* fixture : {"without_initialize", "without_shutdown", "without_get_plugin_name",
                                "without_get_plugin_purpose", "without_get_plugin_compatibility",
                                "without_get_plugin_prereqs", "no_name", "no_purpose",
                                "missing_library", "missing_symbol"})
        expect_refusal(fixture, [&](const fs::path& file) { copy_fixture(file, fixture); });
}

TEST(Loading, RefusesWhatIsNoPluginFileAndGoesOn) {
    expect_refusal("text", [](const fs::path& file) { std::ofstream(file) << "just text\n"; });
    expect_refusal("empty", [](const fs::path& file) { std::ofstream(file).close(); });
    expect_refusal("pipe", [](const fs::path& file) { mkfifo(file.c_str(), 0600); });
    expect_refusal("dangling", [](const fs::path& file) { fs::create_symlink("nowhere", file); });
    expect_refusal("other architecture", [](const fs::path& file) { spoil(file, 18, 0x7F); });
    expect_refusal("other word size", [](const fs::path& file) { spoil(file, 4, 1); });
    for (const int length : {20, 500, 4096, 8192, 12288})
        expect_refusal("cut off", [length](const fs::path& file) {
            copy_fixture(file, "graphics");
            fs::resize_file(file, length);
        });
}

TEST(Loading, ARefusedFileIsNamedBeforeItIsReleased) {
    const ScratchFolder folder;
    folder.add_plugins({"says_farewell"});
    LoadedLibrary library;
    CaptureStdout();
    EXPORT_OF(library, __mCore_parse_folder_for_plugins)("plugin");
    EXPECT_EQ(GetCapturedStdout(),
              "ERROR: Attempt to load module 0_says_farewell.so failed\nfarewell\n");
}

TEST(Loading, MissingAndEmptyFoldersLoadNothingAndPrintNothing) {
    const ScratchFolder folder;
    LoadedLibrary library;
    CaptureStdout();
    EXPECT_TRUE(EXPORT_OF(library, __mCore_open)());
    fs::create_directory("plugin");
    EXPORT_OF(library, __mCore_parse_folder_for_plugins)("plugin");
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), 0u);
}

TEST(Loading, OnlyFilesWithTheExtensionInOrderOfNameAndNoneIsInitialised) {
    const ScratchFolder folder;
    const std::pair<fs::path, const char*> files[] = {
        {"b.so", "graphics"},   {"a.so", "tool"},   {"B.SO", "input_and_system"},
        {"c.so.1", "all_five"}, {"so", "all_five"}, {"nested/d.so", "all_five"},
    };
    for (const auto& [name, fixture] : files) {
        fs::create_directories(("plugin" / name).parent_path());
        copy_fixture("plugin" / name, fixture);
    }
    fs::create_directory("plugin/folder.so");
    LoadedLibrary library;
    CaptureStdout();
    EXPORT_OF(library, __mCore_parse_folder_for_plugins)("plugin");
    EXPECT_EQ(GetCapturedStdout(),
              "loading plugin: Both\nloading plugin: Tool\nloading plugin: Graphics\n");
    EXPECT_TRUE(folder.events("").empty());
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "note_argument"), nullptr) << "plug-ins do not see each other";
}

TEST(Loading, PathsUpToTheLimitLoad) {
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    const ScratchFolder folder;
    for (const std::string letter : {"x", "\u00E9"})
        for (const int length : {260, 261}) {
            // Three folders, as a single name cannot be that long.
            std::string inside;
            for (int i = 0; i < length - 5; ++i)
                inside += i % 90 == 89 ? "/" : letter;
            fs::create_directories(inside);
            copy_fixture(inside + "/p.so", "graphics");
            LoadedLibrary library;
            CaptureStdout();
            EXPORT_OF(library, __mCore_parse_folder_for_plugins)(inside.c_str());
            EXPECT_EQ(GetCapturedStdout(), length == 260
                                               ? "loading plugin: Graphics\n"
                                               : "ERROR: Attempt to load module p.so failed\n");
        }
    std::setlocale(LC_CTYPE, "C");
}
