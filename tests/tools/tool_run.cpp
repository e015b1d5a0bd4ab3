// SPDX-License-Identifier: MIT
#include "tool_run.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

std::string bytes_of(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

ToolRun run_tool(const std::string& arguments, const std::string& environment) {
    // A redirection among the arguments comes last and so wins.
    const std::string line = environment + " > tool.out 2> tool.err " TOOL_FILE " " + arguments;
    const int status = std::system(line.c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return {code, bytes_of("tool.out"), bytes_of("tool.err")};
}

void expect_failures(int code, const std::vector<FailingRun>& runs) {
    for (const FailingRun& row : runs) {
        SCOPED_TRACE(row.arguments);
        const ToolRun run = run_tool(row.arguments);
        EXPECT_EQ(code, run.code);
        EXPECT_EQ("", run.out);
        EXPECT_THAT(run.error, testing::HasSubstr(row.error));
    }
}
