// SPDX-License-Identifier: MIT
#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>
#include <elf.h>
#include <fstream>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// A line per plug-in and refused file: "file [modules] reason", with "!" after the file of a
// plug-in that is not initialised.
std::vector<std::string> summary(const ToolRun& run) {
    std::vector<std::string> lines;
    const auto document = nlohmann::json::parse(run.out);
    for (const auto& plugin : document["plugins"]) {
        EXPECT_EQ(lines.size(), plugin["index"]);
        std::string line = plugin["file"].get<std::string>() + (plugin["initialised"] ? "" : "!");
        for (const std::string module : plugin["modules"])
            line.append(" ").append(module);
        const std::string reason = plugin["reason"];
        if (!reason.empty())
            line.append(": ").append(reason);
        lines.push_back(line);
    }
    for (const auto& file : document["refused"])
        lines.push_back("refused " + file["file"].get<std::string>() + ": " +
                        file["reason"].get<std::string>());
    return lines;
}

struct Outcome {
    const char* name;
    std::vector<std::string> fixtures;
    std::vector<std::string> lines;
};

const Outcome OUTCOMES[] = {
    {"InitializeSaysNo", {"refuses"}, {"0_refuses.so!: initialize said no"}},
    {"NoConnectEntryPoint",
     {"no_connect"},
     {"0_no_connect.so!: no connect entry point: connect_graphics_interface"}},
    {"NobodyOfThatName",
     {"needs_graphics"},
     {"0_needs_graphics.so!: waits for prerequisite 'Graphics', which no plug-in here is named"}},
    {"PrerequisiteNeverInitialised",
     {"refuses", "needs_idle", "serves_nothing"},
     {"0_refuses.so!: initialize said no",
      "1_needs_idle.so!: waits for prerequisite 'Idle', which is not initialised",
      "2_serves_nothing.so!: serves none of the five modules"}},
    {"OwnName",
     {"needs_itself"},
     {"0_needs_itself.so!: waits for prerequisite 'Self', its own name"}},
    {"OtherPurpose", {"tool"}, {"0_tool.so!: its purpose is not 'Module'"}},
    {"Taken",
     {"all_five", "input_and_system"},
     {"0_all_five.so GRAPHICS INPUT SYSTEM NET AUDIO",
      "1_input_and_system.so!: every module that it serves is taken: INPUT by 'All', SYSTEM by "
      "'All'"}},
};

TEST(Plugins, EachThatIsNotConnectedHasItsReason) {
    for (const Outcome& row : OUTCOMES) {
        SCOPED_TRACE(row.name);
        const ScratchFolder folder;
        fs::create_directory("plugin");
        copy_fixtures(row.fixtures);
        const ToolRun run = run_tool("plugins --json");
        EXPECT_EQ(0, run.code);
        EXPECT_EQ("", run.error);
        EXPECT_EQ(row.lines, summary(run));
    }
}

// A sound plug-in, for the caller to damage.
fs::path add_copy(const std::string& name) {
    fs::path file = "plugin/" + name + ".so";
    fs::copy(FIXTURE_FOLDER "/graphics.so", file);
    return file;
}

void add_changed(const std::string& name, std::streamoff offset, char byte) {
    std::fstream(add_copy(name), std::ios::in | std::ios::out).seekp(offset).put(byte);
}

std::size_t end_of_segments(const fs::path& file) {
    const std::string bytes = text_of(file);
    Elf64_Ehdr header;
    std::memcpy(&header, bytes.data(), sizeof header);
    std::size_t end = 0;
    for (std::size_t i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment;
        std::memcpy(&segment, &bytes[header.e_phoff + i * sizeof segment], sizeof segment);
        end = std::max<std::size_t>(end, segment.p_offset + segment.p_filesz);
    }
    return end;
}

TEST(Plugins, EachRefusedFileHasItsReason) {
    const ScratchFolder folder;
    copy_fixtures({"graphics", "missing_library", "missing_symbol", "without_shutdown"});
    std::ofstream("plugin/a_text.so") << "not a library at all";
    fs::create_symlink("nothing", "plugin/b_dangling.so");
    fs::create_symlink("c_loop.so", "plugin/c_loop.so");
    add_changed("d_foreign", offsetof(Elf64_Ehdr, e_machine), EM_S390);
    add_changed("d_word_size", EI_CLASS, ELFCLASS32);
    add_changed("e_object", offsetof(Elf64_Ehdr, e_type), ET_REL);
    fs::resize_file(add_copy("f_start"), 4);
    fs::resize_file(add_copy("g_header"), 40);
    fs::resize_file(add_copy("h_segments"), sizeof(Elf64_Ehdr) + 1);
    fs::resize_file(add_copy("h_text"), end_of_segments(FIXTURE_FOLDER "/graphics.so") - 1);
    // Reading it from the start fails for every user, root too.
    fs::create_symlink("/proc/self/mem", "plugin/i_unreadable.so");
    fs::create_directory("plugin/j_folder.so");

    const ToolRun run = run_tool("plugins --json");
    EXPECT_EQ(1, run.code);
    EXPECT_THAT(summary(run),
                ElementsAre("0_graphics.so GRAPHICS",
                            HasSubstr("1_missing_library.so: missing dependency: "
                                      "libfixture_dependency.so: cannot open"),
                            HasSubstr("2_missing_symbol.so: missing symbol: "),
                            "refused 3_without_shutdown.so: missing entry point: shutdown",
                            "refused a_text.so: not a library",
                            "refused b_dangling.so: a link that leads nowhere, to 'nothing': "
                            "No such file or directory",
                            "refused c_loop.so: a link that leads nowhere, to 'c_loop.so': "
                            "Too many levels of symbolic links",
                            "refused d_foreign.so: wrong architecture",
                            "refused d_word_size.so: wrong architecture",
                            HasSubstr("e_object.so: does not load: "),
                            "refused f_start.so: cut off", "refused g_header.so: cut off",
                            "refused h_segments.so: cut off", "refused h_text.so: cut off",
                            "refused i_unreadable.so: cannot be read: Input/output error",
                            "refused j_folder.so: a folder, not a file"));

    const std::string table = run_tool("plugins").out;
    for (const char* text :
         {"plug-ins in plugin\n", "0      0_graphics.so          Graphics  Module",
          "-      3_without_shutdown.so  -", "refused      missing entry point: shutdown\n"})
        EXPECT_THAT(table, HasSubstr(text));
}

TEST(Plugins, OneThatWouldTakeTheHostAlongIsARowAmongTheOthers) {
    const ScratchFolder folder;
    copy_fixtures({"graphics", "crashes", "exits", "hangs", "throws", "throws_later", "no_name",
                   "foreign_layout", "input_and_system", "no_purpose", "leaves_process"});
    // A folder of temporary files that must be empty again.
    fs::create_directory("temporary");
    const ToolRun run = run_tool("plugins --json --limit 2", "TMPDIR=$PWD/temporary");
    EXPECT_EQ(1, run.code);
    EXPECT_THAT(
        summary(run),
        ElementsAre(
            "0_graphics.so GRAPHICS", "10_leaves_process.so AUDIO",
            "8_input_and_system.so INPUT SYSTEM",
            "refused 1_crashes.so: crashes (Aborted) in get_plugin_name",
            "refused 2_exits.so: ends the process with exit code 3 in get_plugin_name",
            "refused 3_hangs.so: does not come back within 2 seconds in initialize or a connect "
            "entry point",
            "refused 4_throws.so: throws 'a failure of Fixture' in get_plugin_name",
            "refused 5_throws_later.so: throws 'a failure of Fixture' in initialize or a connect "
            "entry point",
            "refused 6_no_name.so: get_plugin_name returns null",
            "refused 7_foreign_layout.so: built with debug containers (_GLIBCXX_DEBUG), not plain "
            "containers",
            "refused 9_no_purpose.so: get_plugin_purpose returns null"));
    EXPECT_TRUE(fs::is_empty("temporary"));
    EXPECT_THAT(run_tool("plugins --limit 2").out,
                HasSubstr("\n-      1_crashes.so           -         -        -              -"));
}

TEST(Plugins, KilledToolTakesAHangingPluginAlong) {
    const ScratchFolder folder;
    copy_fixtures({"hangs"});
    EXPECT_EQ(
        0,
        std::system(
            "exec > /dev/null; " TOOL_FILE " plugins & tool=$!;"
            "for i in $(seq 200); do"
            "  child=$(pgrep -P $tool -f 'child folder') && break; sleep 0.1; done;"
            "kill -KILL $tool; [ \"$child\" ] || exit 1;"
            "for i in $(seq 50); do"
            "  kill -0 $child 2> /dev/null || exit 0; sleep 0.1; done; kill -KILL $child; exit 1"));
}

TEST(Plugins, EachModuleSaysWhoServesItAndWhy) {
    const ScratchFolder folder;
    copy_fixtures({"refuses", "graphics", "all_five", "input_and_system", "no_connect"});
    fs::copy(PLUGIN_FOLDER "/clock.so", "plugin/0_clock.so");

    const auto modules_of = [](const std::string& command) {
        std::vector<std::string> lines;
        const auto document = nlohmann::json::parse(run_tool(command).out);
        for (const auto& row : document["modules"])
            lines.push_back(row["module"].get<std::string>() + " " +
                            row["plugin"].get<std::string>() + ": " +
                            row["reason"].get<std::string>());
        return lines;
    };
    EXPECT_THAT(modules_of("plugins --json"),
                ElementsAre("GRAPHICS Graphics: 'Graphics' comes first, but initialize said no, "
                            "before 'All', before 'Mute'",
                            "INPUT All: before 'Both'", "SYSTEM clock: before 'All', before 'Both'",
                            "NET All: no other serves it", "AUDIO All: no other serves it"));
    EXPECT_EQ("SYSTEM All: 'clock' comes first, but initialize said no, before 'Both'",
              modules_of("plugins --json --choose SYSTEM=All")[2]);
    EXPECT_THAT(run_tool("plugins").out,
                HasSubstr("\n\nmodule    plug-in   why\nGRAPHICS  Graphics"));
    fs::remove_all("plugin");
    fs::create_directory("plugin");
    EXPECT_EQ("AUDIO : no plug-in here serves it", modules_of("plugins --json")[4]);
}

TEST(Plugins, AnyNameIsPrinted) {
    const ScratchFolder folder;
    copy_fixtures({"odd_name"});
    fs::create_symlink("\xFE", "plugin/\xFD.so");
    const auto document = nlohmann::json::parse(run_tool("plugins --json").out);
    EXPECT_EQ("a\n\"b\\\uFFFD", document["plugins"][0]["name"]);
    EXPECT_EQ("\uFFFD.so", document["refused"][0]["file"]);
    EXPECT_EQ("a link that leads nowhere, to '\uFFFD': No such file or directory",
              document["refused"][0]["reason"]);
    EXPECT_THAT(run_tool("plugins").out, HasSubstr(" a?\"b\\\uFFFD "));
    EXPECT_THAT(run_tool("check --json plugin/\xFD.so").out, HasSubstr("nowhere, to '\uFFFD'"));
}

TEST(Plugins, GivenFolderIsTheOnlyOneOpened) {
    const ScratchFolder folder;
    copy_fixtures({"graphics"});
    fs::rename("plugin", "elsewhere");
    copy_fixtures({"all_five"});
    for (const std::string name : {"elsewhere", "./elsewhere/", "$PWD/elsewhere"})
        EXPECT_THAT(summary(run_tool("plugins --json " + name)),
                    ElementsAre("0_graphics.so GRAPHICS"));
}

TEST(Plugins, WithoutAFolderTheOnesThatCameWithTheTool) {
    const ScratchFolder folder;
    // What the input plug-in's display libraries leak at exit is not the tool's.
    const ToolRun run = run_tool("plugins", "ASAN_OPTIONS=detect_leaks=0");
    EXPECT_EQ(0, run.code);
    EXPECT_THAT(run.out, HasSubstr("plug-ins in " PLUGIN_FOLDER "\n"));
    EXPECT_THAT(run.out, HasSubstr("clock.so"));
}

TEST(Plugins, FolderThatCannotBeListedIsAFailure) {
    const ScratchFolder folder;
    std::ofstream("file") << "";
    const std::string deep = std::string(120, 'a') + "/" + std::string(120, 'b');
    fs::create_directories(deep);

    expect_failures(1, {{"plugins nothing", "quillon plugins: cannot list 'nothing': No such file"},
                        {"plugins file", "cannot list 'file': Not a directory"},
                        {"plugins " + deep, "is too long"}});
}

} // namespace
