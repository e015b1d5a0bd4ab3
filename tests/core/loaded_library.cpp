// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include <fstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

std::function<void(const std::string&)> current_observer;

void pass_on(const std::string& event) {
    current_observer(event);
}

} // namespace

std::vector<std::string> Host::events(const std::string& unwanted) {
    std::vector<std::string> lines;
    std::ifstream file("events");
    for (std::string line; std::getline(file, line);)
        if (unwanted.empty() || line.find(": " + unwanted) == std::string::npos)
            lines.push_back(line);
    return lines;
}

LoadedLibrary::LoadedLibrary() : handle(dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL), dlclose) {
    if (handle == nullptr)
        throw std::runtime_error(dlerror());
}

void LoadedLibrary::observe(std::function<void(const std::string& event)> observer) const {
    current_observer = std::move(observer);
    auto* const add = EXPORT_OF(*this, __mCore_add_plugin_init_parameter);
    add("observer", reinterpret_cast<void*>(pass_on));
}

void copy_fixture(const fs::path& file, const std::string& name) {
    fs::create_directories(file.parent_path());
    fs::copy(fs::path(FIXTURE_FOLDER) / (name + ".so"), file);
}

void copy_fixtures(const std::vector<std::string>& names, const std::string& folder) {
    int number = 0;
    for (const std::string& name : names)
        copy_fixture(folder + "/" + std::to_string(number++) + "_" + name + ".so", name);
}

bool is_mapped(const std::string& text) {
    return text_of("/proc/self/maps").find(text) != std::string::npos;
}
