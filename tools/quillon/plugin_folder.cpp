// SPDX-License-Identifier: MIT
#include "plugin_folder.h"

#include "command.h"
#include "folder_of_links.h"
#include "platform.h"
#include "plugins/contracts/contract.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"

#include <deque>
#include <iostream>
#include <sstream>

namespace fs = std::filesystem;

namespace tool {
namespace {

constexpr const char* OPENED_FOLDER = "plugin"; // the one that __mCore_open opens

// The longest pattern FOLDER/* that the library lists.
constexpr std::size_t MAX_PATTERN = 259;

// A folder that was installed with the tool, or that is beside it in a build tree.
fs::path own_folder(const std::string& name) {
    const fs::path programs = platform::executable().parent_path();
    const fs::path installed = programs / INSTALLED_LIBRARIES / "quillon" / name;
    const fs::path built = programs / ".." / name;
    for (const fs::path& folder : {installed, built})
        if (fs::is_directory(folder))
            return fs::canonical(folder);
    throw Failure("found neither the folder '" + installed.lexically_normal().string() + "' nor '" +
                  built.lexically_normal().string() + "'; install quillon again");
}

// An empty current directory for as long as the object lives. It is removed at once, so that none
// stays behind however the process ends.
class EmptyDirectory {
public:
    EmptyDirectory() : before(fs::current_path()), folder(platform::make_scratch_folder()) {
        fs::current_path(folder);
        remove();
    }

    EmptyDirectory(const EmptyDirectory&) = delete;
    EmptyDirectory& operator=(const EmptyDirectory&) = delete;

    ~EmptyDirectory() {
        std::error_code ignored;
        fs::current_path(before, ignored);
        remove(); // Windows keeps a folder that is the current one
    }

private:
    void remove() const {
        std::error_code ignored;
        fs::remove(folder, ignored);
    }

    fs::path before;
    fs::path folder;
};

void open_here_or_apart(const fs::path& folder) {
    if (folder == OPENED_FOLDER) {
        __mCore_open();
        return;
    }
    __mCore_parse_folder_for_plugins(fs::absolute(folder).string().c_str());
    const EmptyDirectory apart;
    __mCore_open();
}

// The file in "ERROR: Attempt to load module FILE failed", which a plug-in's own words without a
// line's end may precede; empty in any other line.
std::string refused_file(const std::string& line) {
    constexpr std::string_view before = "ERROR: Attempt to load module ";
    constexpr std::string_view after = " failed";
    const std::size_t start = line.find(before);
    if (start == std::string::npos || !line.ends_with(after))
        return "";
    const std::string rest = line.substr(start + before.size());
    return rest.substr(0, rest.size() - after.size());
}

} // namespace

fs::path default_plugin_folder() {
    return fs::is_directory(OPENED_FOLDER) ? fs::path(OPENED_FOLDER) : own_folder(OPENED_FOLDER);
}

fs::path inspector_folder() {
    return own_folder("inspect");
}

void expect_listable(const fs::path& folder) {
    std::error_code failure;
    const fs::directory_iterator readable(folder, failure);
    if (failure)
        throw Failure("cannot list '" + folder.string() + "': " + failure.message() +
                      "; name a folder of plug-ins");
    if (folder != OPENED_FOLDER && fs::absolute(folder).string().size() + 2 > MAX_PATTERN)
        throw Failure("the path of '" + folder.string() +
                      "' is too long; move it nearer to the root");
}

// Plug-ins may look at the names until the library ends.
void choose_plugins(const std::vector<std::string>& choices) {
    static std::deque<std::string> names;
    for (const std::string& choice : choices) {
        const std::size_t sign = choice.find('=');
        names.push_back(choice.substr(sign + 1));
        quillon::choose_plugin(choice.substr(0, sign).c_str(), names.back().c_str());
    }
}

std::vector<std::string> open_plugins(const fs::path& folder) {
    expect_listable(folder);
    std::istringstream written;
    {
        const platform::OutputCapture capture;
        open_here_or_apart(folder);
        written.str(capture.text());
    }
    std::vector<std::string> refused;
    for (std::string line; std::getline(written, line);)
        if (const std::string file = refused_file(line); !file.empty())
            refused.push_back(file);
        else if (!line.starts_with("loading plugin: "))
            std::cerr << line << "\n";
    return refused;
}

void open_own_plugin(const std::string& name) {
    const std::string file = name + platform::LIBRARY_EXTENSION;
    const fs::path plugin = own_folder(OPENED_FOLDER) / file;
    const FolderOfLinks links({plugin});
    open_plugins(links.path());
}

} // namespace tool
