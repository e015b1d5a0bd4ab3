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

TEST_F(Convert, PngToPngKeepsEveryPixelAndTellsTheSize) {
    const ToolRun run = run_tool("convert lake.png once.png");
    EXPECT_EQ(0, run.code) << run.error;
    EXPECT_THAT(run.out,
                MatchesRegex("lake.png -> once.png: 320 x 200 pixels in [0-9]+\\.[0-9] ms\n"));
    EXPECT_EQ("", run.error);
    // The writer gives the same bytes for the same pixels.
    ASSERT_EQ(0, run_tool("convert once.png twice.png").code);
    EXPECT_EQ(bytes("once.png"), bytes("twice.png"));
}

TEST_F(Convert, PngToJpegAndBack) {
    ASSERT_EQ(0, run_tool("convert lake.png lake.jpg").code);
    EXPECT_THAT(bytes("lake.jpg"), testing::StartsWith("\xff\xd8\xff"));
    const ToolRun back = run_tool("convert lake.jpg back.png");
    EXPECT_THAT(back.out, HasSubstr("lake.jpg -> back.png: 320 x 200 pixels"));
    EXPECT_THAT(bytes("back.png"), testing::StartsWith("\x89PNG"));
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
}

TEST_F(Convert, NoGraphicsPluginIsAFailure) {
    fs::remove("plugin/image.so");
    const ToolRun run = run_tool("convert lake.png out.png");
    EXPECT_EQ(1, run.code);
    EXPECT_THAT(run.error, HasSubstr("no plug-in in 'plugin' serves GRAPHICS"));
}
