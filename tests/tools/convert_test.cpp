#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

// A current directory with the image plug-in and a picture.
class Convert : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory("plugin");
        fs::copy(PLUGIN_FOLDER "/image.so", "plugin");
        fs::copy(SOURCE_FOLDER "/examples/data/lake.png", ".");
    }

    static std::string bytes(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const ScratchFolder folder;
};

} // namespace

TEST_F(Convert, PngToPngKeepsEveryPixelAndJpegIsThereAndBack) {
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
        EXPECT_EQ(0, run.code);
        EXPECT_EQ("", run.error);
        EXPECT_THAT(run.out, MatchesRegex(step.from + " -> " + step.to +
                                          ": 320 x 200 pixels in [0-9]+\\.[0-9] ms\n"));
        EXPECT_THAT(bytes(step.to), testing::StartsWith(step.start));
    }
    // The writer gives the same bytes for the same pixels.
    EXPECT_EQ(bytes("once.png"), bytes("twice.png"));
}

TEST_F(Convert, FailureTellsTheFileAndTheReason) {
    std::ofstream("text.png") << "hello";

    const struct {
        const char* arguments;
        const char* error;
    } cases[] = {
        {"nothing.png out.png", "quillon convert: cannot load 'nothing.png': No such file"},
        {"text.png out.png", "cannot load 'text.png': neither a PNG nor a JPEG file"},
        {"lake.png no/such/out.png", "cannot save 'no/such/out.png': No such file"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.arguments);
        const ToolRun run = run_tool(std::string("convert ") + row.arguments);
        EXPECT_EQ(1, run.code);
        EXPECT_EQ("", run.out);
        EXPECT_THAT(run.error, HasSubstr(row.error));
        EXPECT_FALSE(fs::exists("out.png"));
    }
    fs::remove("plugin/image.so");
    EXPECT_THAT(run_tool("convert lake.png out.png").error,
                HasSubstr("no plug-in in 'plugin' serves GRAPHICS"));
}
