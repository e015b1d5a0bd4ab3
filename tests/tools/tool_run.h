// The `quillon` command, run as a process of its own.
#pragma once

#include <string>

struct ToolRun {
    int code;
    std::string out;
    std::string error;
};

// `arguments` goes through the shell, and the current directory is the tool's. `environment` holds
// assignments, as the shell takes them before a command.
ToolRun run_tool(const std::string& arguments, const std::string& environment = "");
