#include "tool_run.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

namespace {

std::string take_file(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    std::filesystem::remove(name);
    return text;
}

} // namespace

ToolRun run_tool(const std::string& arguments, const std::string& environment) {
    // A redirection among the arguments stands last and so wins.
    const std::string line = environment + " > tool.out 2> tool.err " TOOL_FILE " " + arguments;
    const int status = std::system(line.c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return {code, take_file("tool.out"), take_file("tool.err")};
}
