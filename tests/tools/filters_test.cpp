// The commands over the bitmap exports: the pixels that they write are those of the exports.
#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

// A current directory with the image plug-in and two pictures.
class FilterCommands : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory("plugin");
        fs::copy(PLUGIN_FOLDER "/image.so", "plugin");
        for (const char* picture : {"lake.png", "hills.png"})
            fs::copy(SOURCE_FOLDER "/examples/data/" + std::string(picture), ".");
    }

    // What `quillon average` tells of the picture that a command makes.
    static std::string average_after(const std::string& command) {
        const ToolRun made = run_tool(command);
        EXPECT_EQ(0, made.code) << made.error;
        EXPECT_THAT(made.out, HasSubstr("-> out.png: "));
        const std::string told = run_tool("average out.png").out;
        return told.substr(told.rfind(' ') + 1);
    }

    const ScratchFolder folder;
};

} // namespace

TEST_F(FilterCommands, WriteWhatTheExportsGive) {
    const struct {
        const char* command;
        const char* average;
    } cases[] = {
        {"adjust lake.png out.png --multiply 0", "0#0#0#1#\n"},
        {"adjust lake.png out.png --darken 255", "0#0#0#1#\n"},
        {"adjust lake.png out.png --brighten 255", "1#1#1#1#\n"},
        {"mask lake.png out.png --alpha", "1#1#1#1#\n"},
        {"mask lake.png out.png --channel 3", "1#1#1#1#\n"},
        {"mask lake.png out.png --key 0.1#0.9#0.7#1#", "1#1#1#1#\n"},
        {"brush lake.png out.png --at -4,7 --radius 900 --color white", "1#1#1#1#\n"},
        {"brush lake.png out.png --at 4,7 --radius 900 --deviation 2 --color -1#-1#-1#",
         "0#0#0#1#\n"},
        {"normal-map hills.png out.png --scale 0", "0.502#0.502#1#1#\n"},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.average, average_after(row.command)) << row.command;
    // A normal map that tiles leans to no side, and to the viewer.
    EXPECT_THAT(average_after("normal-map hills.png out.png --scale 4"),
                testing::MatchesRegex("0\\.(49.|5)#0\\.(49.|5)#0\\.9..#1#\n"));
}

TEST_F(FilterCommands, PaletteListsAndDraws) {
    const ToolRun list = run_tool("palette");
    EXPECT_EQ(0, list.code);
    EXPECT_THAT(list.out, HasSubstr("\nINVISIBLE                  1#1#1#0#"));
    EXPECT_THAT(list.out, HasSubstr("\nHealth                     1#0#0#1#"));
    EXPECT_THAT(list.out, HasSubstr("\nTURQUOISE                  0.1#0.187#0.175#0.8# "));
    EXPECT_THAT(run_tool("palette palette.png").out, HasSubstr("palette.png: 1016 x "));
    EXPECT_GT(fs::file_size("palette.png"), 50'000U);
}

TEST_F(FilterCommands, MisuseIsAnErrorWithAHint) {
    const struct {
        const char* arguments;
        const char* error;
    } cases[] = {
        {"mask lake.png out.png", "one of --alpha, --channel and --key is required"},
        {"mask lake.png out.png --alpha --channel 1", "--alpha excludes --channel"},
        {"mask lake.png out.png --channel 4", "--channel: Value 4 not in range 0 to 3"},
        {"mask lake.png out.png --key pinkish", "'pinkish' is no colour; 'quillon palette' lists"},
        {"mask lake.png out.png --key 1#2", "'1#2' is no colour"},
        {"adjust lake.png out.png --darken 256", "--darken: Value 256 not in range 0 to 255"},
        {"brush lake.png out.png --at 3 --radius 1 --color RED", "--at = 3"},
        {"brush lake.png out.png --at 3,4 --color RED", "--radius is required"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.arguments);
        const ToolRun run = run_tool(row.arguments);
        EXPECT_EQ(2, run.code);
        EXPECT_THAT(run.error, HasSubstr(row.error));
        EXPECT_FALSE(fs::exists("out.png"));
    }
}

TEST_F(FilterCommands, FilesThatCannotBeWrittenAreFailures) {
    for (const char* command : {"palette no/out.png", "adjust lake.png no/out.png --darken 1"}) {
        const ToolRun run = run_tool(command);
        EXPECT_EQ(1, run.code);
        EXPECT_THAT(run.error, HasSubstr("cannot save 'no/out.png': No such file"));
    }
}
