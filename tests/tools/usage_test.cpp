// SPDX-License-Identifier: MIT
#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

using testing::HasSubstr;

TEST(Usage, HelpAndVersionEverywhere) {
    const ScratchFolder folder;
    for (const std::string command : {"", "plugins", "convert", "inputs"}) {
        SCOPED_TRACE(command);
        const ToolRun help = run_tool(command + " --help");
        EXPECT_EQ(0, help.code);
        EXPECT_THAT(help.out, HasSubstr("Usage: quillon " + command));
        const ToolRun version = run_tool(command + " --version");
        EXPECT_EQ(0, version.code);
        EXPECT_THAT(version.out, testing::MatchesRegex("quillon [0-9]+\\.[0-9]+\\.[0-9]+\n"));
        EXPECT_EQ("", help.error + version.error);
    }
}

TEST(Usage, ManualPageAndCompletionKnowEveryCommand) {
    const ScratchFolder folder;
    const std::string page = run_tool("help --man").out;
    EXPECT_THAT(page, HasSubstr(".SS quillon brush IN OUT [options]"));
    EXPECT_THAT(page, HasSubstr("\n.B \\-\\-json\n"));
    std::ofstream("completion") << run_tool("help --completion").out;
    const auto complete = [](const std::string& words) {
        const std::string script = "bash -c '. ./completion; COMP_WORDS=(quillon " + words +
                                   "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _quillon; "
                                   "echo ${COMPREPLY[@]}' > completed";
        EXPECT_EQ(0, std::system(script.c_str()));
        return text_of("completed");
    };
    EXPECT_EQ("check\n", complete("ch"));
    EXPECT_EQ("--radius\n", complete("brush in.png --ra"));
    EXPECT_EQ("\n", complete("brush in"));
}

TEST(Usage, MisuseIsAnErrorWithAHint) {
    const ScratchFolder folder;

    expect_failures(
        2, {
               {"", "quillon: A subcommand is required\nSee 'quillon --help'.\n"},
               {"plugin", "unknown word 'plugin'; did you mean 'plugins'?"},
               {"xyzzy", "quillon: unknown word 'xyzzy'\nSee 'quillon --help'.\n"},
               {"--versoin", "unknown word '--versoin'; did you mean '--version'?"},
               {"plugins --jsno", "quillon plugins: unknown word '--jsno'; did you mean '--json'?"},
               {"plugins one two", "quillon plugins: unknown word 'two'"},
               {"plugins --choose SOUND=x", "'SOUND=x' is not MODULE=NAME with GRAPHICS"},
               {"plugins --choose GRAPHICS=", "'GRAPHICS=' is not MODULE=NAME"},
               {"inputs --bind 'Left Contrl + S'", "'Left Contrl'; did you mean 'Left Control'?"},
               {"inputs --bind 'Space Or Mause X'", "'Mause X'; did you mean 'Mouse X'?"},
               {"inputs --frames 0", "Value 0 not in range"},
               {"convert in.png", "OUT is required\nSee 'quillon convert --help'."},
               {"mask in.png out.png", "one of --alpha, --channel and --key is required"},
               {"mask in.png out.png --alpha --channel 1", "--alpha excludes --channel"},
               {"mask in.png out.png --channel 4", "--channel: Value 4 not in range 0 to 3"},
               {"mask in.png out.png --key pinkish",
                "'pinkish' is no colour; 'quillon palette' lists"},
               {"mask in.png out.png --key 1#2", "'1#2' is no colour"},
               {"adjust in.png out.png --darken 256", "--darken: Value 256 not in range 0 to 255"},
               {"brush in.png out.png --at 3 --radius 1 --color RED", "--at = 3"},
               {"brush in.png out.png --at 3,4 --color RED", "--radius is required"},
               {"brush in.png out.png --at 3,4 --color RED --radius -1",
                "--radius: '-1' is not a number from 0 to 65535"},
               {"brush in.png out.png --at 3,4 --color 1#1e99#0# --radius 1", "is no colour"},
               {"adjust in.png out.png --multiply nan", "'nan' is not a number from 0 to 255"},
               {"normal-map in.png out.png --scale 1e9", "'1e9' is not a number from 0 to 10000"},
               {"adjust in.png out.png --multiply 2x", "'2x' is not a number from 0 to 255"},
               {"plugins --limit 0", "'0' is not a number from 0.01 to 3600"},
               {"plugins --limit inf", "'inf' is not a number from 0.01 to 3600"},
               {"convert in.png out.gif", "'out.gif' ends in none of .png, .jpg and .jpeg"},
               {"palette palette", "'palette' ends in none of .png, .jpg and .jpeg"},
           });
}

TEST(Usage, OutputThatCannotBeWrittenIsAFailure) {
    const ScratchFolder folder;
    expect_failures(1, {{"--help > /dev/full", "quillon: cannot write"}});
}
