// SPDX-License-Identifier: MIT
// The commands over pictures: what they write is what the exports make.
#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>

#include <fstream>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

// A current directory with the image plug-in and two pictures.
class Pictures : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory("plugin");
        fs::copy(PLUGIN_FOLDER "/image.so", "plugin");
        for (const char* picture : {"lake.png", "hills.png"})
            fs::copy(SOURCE_FOLDER "/examples/data/" + std::string(picture), ".");
    }

    // What `quillon average` says of the picture that a command makes.
    static std::string average_after(const std::string& command) {
        const ToolRun made = run_tool(command);
        EXPECT_THAT(made.out, HasSubstr("-> out.png: ")) << made.error;
        const std::string line = run_tool("average out.png").out;
        return line.substr(line.rfind(' ') + 1);
    }

    const ScratchFolder folder;
};

} // namespace

TEST_F(Pictures, PngToPngKeepsEveryPixelAndJpegIsThereAndBack) {
    const struct {
        std::string from;
        std::string to;
        const char* start;
    } steps[] = {{"lake.png", "once.png", "\x89PNG"},
                 {"once.png", "twice.png", "\x89PNG"},
                 {"twice.png", "lake.jpg", "\xff\xd8\xff"},
                 {"lake.jpg", "back.png", "\x89PNG"}};

    for (const auto& step : steps) {
        const ToolRun run = run_tool("convert " + step.from + " " + step.to);
        EXPECT_EQ("", run.error);
        EXPECT_THAT(run.out, MatchesRegex(step.from + " -> " + step.to +
                                          ": 320 x 200 pixels in [0-9]+\\.[0-9] ms\n"));
        EXPECT_THAT(text_of(step.to), testing::StartsWith(step.start));
    }
    // The same pixels make the same bytes.
    EXPECT_EQ(text_of("once.png"), text_of("twice.png"));
}

TEST_F(Pictures, FailureSaysTheFileAndTheReason) {
    std::ofstream("text.png") << "hello";
    expect_failures(
        1, {{"convert nothing.png out.png",
             "quillon convert: cannot load 'nothing.png': No such file"},
            {"convert text.png out.png", "cannot load 'text.png': neither a PNG nor a JPEG file"},
            {"convert lake.png no/out.png", "cannot save 'no/out.png': No such file"}});
    fs::remove("plugin/image.so");
    expect_failures(1, {{"convert lake.png out.png --plugins plugin",
                         "no plug-in in 'plugin' serves GRAPHICS; 'quillon plugins plugin' says"}});
    EXPECT_FALSE(fs::exists("out.png"));
}

TEST_F(Pictures, WriteWhatTheExportsMake) {
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
    // The normals of a height map that tiles average to one that faces the viewer.
    EXPECT_THAT(average_after("normal-map hills.png out.png --scale 4"),
                testing::MatchesRegex("0\\.(49.|5)#0\\.(49.|5)#0\\.9..#1#\n"));
}

TEST_F(Pictures, OnlyThePluginsOfTheGivenFolderRun) {
    copy_fixtures({"crashes"});
    EXPECT_EQ(0, run_tool("convert lake.png out.png").code);
    fs::remove("plugin/0_crashes.so");
    EXPECT_EQ(0, run_tool("convert lake.png out.png --plugins ./plugin").code);
}

TEST_F(Pictures, PaletteListsAndDraws) {
    const ToolRun list = run_tool("palette");
    EXPECT_THAT(list.out, HasSubstr("\nINVISIBLE                  1#1#1#0#"));
    EXPECT_THAT(list.out, HasSubstr("\nHealth                     1#0#0#1#"));
    EXPECT_THAT(list.out, HasSubstr("\nTURQUOISE                  0.1#0.187#0.175#0.8# "));
    EXPECT_THAT(run_tool("palette palette.png").out, HasSubstr("palette.png: 1224 x 1168 pixels"));
    EXPECT_GT(fs::file_size("palette.png"), 50'000U);
}
