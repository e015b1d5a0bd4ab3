#include "loaded_library.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <dlfcn.h>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() : before(fs::current_path()) {
    std::string name = (fs::temp_directory_path() / "quillon-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no scratch folder " + name);
    folder = name;
    fs::current_path(folder);
}

ScratchFolder::~ScratchFolder() {
    fs::current_path(before);
    fs::remove_all(folder);
}

void ScratchFolder::add_plugins(const std::vector<std::string>& fixtures,
                                const char* inside) const {
    fs::create_directories(folder / inside);
    int number = 0;
    for (const std::string& name : fixtures)
        fs::copy(fs::path(FIXTURE_FOLDER) / (name + ".so"),
                 folder / inside / (std::to_string(number++) + "_" + name + ".so"));
}

std::vector<std::string> ScratchFolder::events(const std::string& unwanted) {
    std::vector<std::string> lines;
    std::ifstream file("events");
    for (std::string line; std::getline(file, line);)
        if (unwanted.empty() || line.find(": " + unwanted) == std::string::npos)
            lines.push_back(line);
    return lines;
}

namespace {

std::function<void(const std::string&)> current_observer;

void pass_on(const std::string& event) {
    current_observer(event);
}

} // namespace

LoadedLibrary::LoadedLibrary() : handle(dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr)
        throw std::runtime_error(dlerror());
}

void LoadedLibrary::unload() {
    if (handle != nullptr)
        dlclose(handle);
    handle = nullptr;
}

void LoadedLibrary::observe(std::function<void(const std::string& event)> observer) const {
    current_observer = std::move(observer);
    EXPORT_OF(*this, __mCore_add_plugin_init_parameter)
    ("observer", reinterpret_cast<void*>(pass_on));
}

void* LoadedLibrary::address(const char* name) const {
    void* const found = dlsym(handle, name);
    if (found == nullptr)
        throw std::runtime_error(dlerror());
    return found;
}

bool is_mapped(const std::string& text) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}
