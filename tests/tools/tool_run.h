// SPDX-License-Identifier: MIT
// The `quillon` command, run as a process of its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// All bytes of a file.
std::string bytes_of(const std::filesystem::path& file);

struct ToolRun {
    int code;
    std::string out;
    std::string error;
};

// `arguments` goes through the shell, and the current directory is the tool's. `environment` holds
// assignments, as the shell takes them before a command.
ToolRun run_tool(const std::string& arguments, const std::string& environment = "");

struct FailingRun {
    std::string arguments;
    const char* error; // a part of what it says
};

// Expects each to end with `code`, to say why, and to print nothing else.
void expect_failures(int code, const std::vector<FailingRun>& runs);
