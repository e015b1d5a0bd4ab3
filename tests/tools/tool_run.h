// SPDX-License-Identifier: MIT
// The `quillon` command, run as a process of its own.
#pragma once

#include "tests/scratch_folder.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <sys/wait.h>

struct ToolRun {
    int code;
    std::string out;
    std::string error;
};

// `arguments` goes through the shell, and the current directory is the tool's. `environment` holds
// assignments, as the shell takes them before a command.
inline ToolRun run_tool(const std::string& arguments, const std::string& environment = "") {
    // A redirection among the arguments comes last and so wins.
    const std::string line = environment + " > tool.out 2> tool.err " TOOL_FILE " " + arguments;
    const int status = std::system(line.c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return {code, text_of("tool.out"), text_of("tool.err")};
}

struct FailingRun {
    std::string arguments;
    const char* error; // a part of what it says
};

// Expects each to end with `code`, to say why, and to print nothing else.
inline void expect_failures(int code, const std::vector<FailingRun>& runs) {
    for (const FailingRun& row : runs) {
        SCOPED_TRACE(row.arguments);
        const ToolRun run = run_tool(row.arguments);
        EXPECT_EQ(code, run.code);
        EXPECT_EQ("", run.out);
        EXPECT_THAT(run.error, testing::HasSubstr(row.error));
    }
}
