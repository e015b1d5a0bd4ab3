#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include <sys/stat.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

namespace fs = std::filesystem;

struct Refusal {
    const char* name;
    void (*place)(const fs::path& file);
};

void copy_fixture(const fs::path& file, const char* name) {
    fs::copy(fs::path(FIXTURE_FOLDER) / (std::string(name) + ".so"), file);
}

// Overwrites a byte of a sound plug-in's file.
void spoil(const fs::path& file, std::streamoff offset, char byte) {
    copy_fixture(file, "graphics");
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(offset).put(byte);
}

const Refusal REFUSALS[] = {
    {"WithoutInitialize", [](const fs::path& f) { copy_fixture(f, "without_initialize"); }},
    // The C library has a `shutdown` of its own, which is not the plug-in's.
    {"WithoutShutdown", [](const fs::path& f) { copy_fixture(f, "without_shutdown"); }},
    {"WithoutName", [](const fs::path& f) { copy_fixture(f, "without_get_plugin_name"); }},
    {"WithoutPurpose", [](const fs::path& f) { copy_fixture(f, "without_get_plugin_purpose"); }},
    {"WithoutCompatibility",
     [](const fs::path& f) { copy_fixture(f, "without_get_plugin_compatibility"); }},
    {"WithoutPrereqs", [](const fs::path& f) { copy_fixture(f, "without_get_plugin_prereqs"); }},
    {"MissingLibrary", [](const fs::path& f) { copy_fixture(f, "missing_library"); }},
    {"MissingSymbol", [](const fs::path& f) { copy_fixture(f, "missing_symbol"); }},
    {"NotALibrary", [](const fs::path& f) { std::ofstream(f) << "just text\n"; }},
    {"EmptyFile", [](const fs::path& f) { std::ofstream{f}; }},
    {"Pipe", [](const fs::path& f) { mkfifo(f.c_str(), 0600); }},
    {"DanglingLink", [](const fs::path& f) { fs::create_symlink("nowhere", f); }},
    {"OtherArchitecture", [](const fs::path& f) { spoil(f, 18, 0x7F); }},
    {"OtherWordSize", [](const fs::path& f) { spoil(f, 4, 1); }},
    {"Truncated",
     [](const fs::path& f) {
         copy_fixture(f, "graphics");
         fs::resize_file(f, 500);
     }},
};

class RefusedFile : public testing::TestWithParam<Refusal> {};

} // namespace

TEST_P(RefusedFile, GivesTheErrorLineAndTheScanGoesOn) {
    const ScratchFolder folder;
    folder.add_plugins({"graphics"});
    GetParam().place("plugin/00_broken.so");
    LoadedLibrary library;
    CaptureStdout();
    EXPECT_TRUE(EXPORT_OF(library, __mCore_open)());
    EXPECT_EQ(GetCapturedStdout(), "ERROR: Attempt to load module 00_broken.so failed\n"
                                   "loading plugin: Graphics\n");
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), 1u);
    library.unload();
    EXPECT_FALSE(is_mapped("00_broken"));
}

INSTANTIATE_TEST_SUITE_P(Loading, RefusedFile, testing::ValuesIn(REFUSALS),
                         [](const auto& row) { return row.param.name; });

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

TEST(Loading, OnlyFilesWithTheExtensionAreTouchedAndInOrderOfName) {
    const ScratchFolder folder;
    folder.add_plugins({});
    for (const char* name : {"b.so", "B.SO", "a.so", "c.so.1", "so", "nested/d.so"}) {
        fs::create_directories((fs::path("plugin") / name).parent_path());
        copy_fixture(fs::path("plugin") / name, "serves_nothing");
    }
    fs::create_directory("plugin/folder.so");
    LoadedLibrary library;
    CaptureStdout();
    EXPORT_OF(library, __mCore_parse_folder_for_plugins)("plugin");
    EXPECT_EQ(GetCapturedStdout(),
              "loading plugin: Idle\nloading plugin: Idle\nloading plugin: Idle\n");
    EXPECT_TRUE(folder.events().empty());
}

TEST(Loading, EveryPluginIsLoadedBeforeOneIsInitialised) {
    const ScratchFolder folder;
    folder.add_plugins({"graphics", "input_and_system"});
    LoadedLibrary library;
    CaptureStdout();
    EXPORT_OF(library, __mCore_parse_folder_for_plugins)("plugin");
    EXPECT_EQ(GetCapturedStdout(), "loading plugin: Graphics\nloading plugin: Both\n");
    EXPECT_TRUE(folder.events().empty());
}

TEST(Loading, PathsUpToTheLimitLoad) {
    const ScratchFolder folder;
    folder.add_plugins({});
    const std::string name = "p.so";
    for (const std::size_t length : {260u, 261u}) {
        // Two folders, as a single name cannot be that long.
        const std::string inside = std::string(200, 'x') + "/" + std::string(length - 206, 'y');
        fs::create_directories(inside);
        copy_fixture(fs::path(inside) / name, "graphics");
        ASSERT_EQ((inside + "/" + name).size(), length);
        LoadedLibrary library;
        CaptureStdout();
        EXPORT_OF(library, __mCore_parse_folder_for_plugins)(inside.c_str());
        EXPECT_EQ(GetCapturedStdout(), length == 260
                                           ? "loading plugin: Graphics\n"
                                           : "ERROR: Attempt to load module p.so failed\n");
    }
}
