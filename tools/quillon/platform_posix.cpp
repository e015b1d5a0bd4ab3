// SPDX-License-Identifier: MIT
#include "platform.h"

#include "command.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

const char* plain_reason(const std::string& loader_text) {
    if (loader_text.find("undefined symbol") != std::string::npos)
        return "missing symbol: ";
    if (loader_text.find("cannot open shared object file") != std::string::npos)
        return "missing dependency: ";
    return "does not load: ";
}

} // namespace

std::vector<std::string> begin_program(int argc, char** argv) {
    return {argv, argv + argc};
}

fs::path executable() {
    return fs::read_symlink("/proc/self/exe");
}

int output_columns() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

bool output_is_terminal() {
    return isatty(STDOUT_FILENO) == 1;
}

OutputCapture::OutputCapture() : kept(std::tmpfile()), output(dup(STDOUT_FILENO)) {
    if (kept == nullptr || output < 0)
        throw Failure(
            "cannot set the standard output aside; is the folder for temporary files full?");
    std::fflush(stdout);
    dup2(fileno(kept.get()), STDOUT_FILENO);
}

OutputCapture::~OutputCapture() {
    std::fflush(stdout);
    dup2(output, STDOUT_FILENO);
    close(output);
}

std::string OutputCapture::text() const {
    std::fflush(stdout);
    std::string written;
    char block[4096];
    for (off_t position = 0;;) {
        const ssize_t count = pread(fileno(kept.get()), block, sizeof(block), position);
        if (count <= 0)
            return written;
        written.append(block, static_cast<std::size_t>(count));
        position += count;
    }
}

void* LibraryFile::load(const fs::path& file, std::string& reason) {
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const std::string text = dlerror();
        reason = plain_reason(text) + text;
    }
    return library;
}

LibraryFile::~LibraryFile() {
    if (library != nullptr)
        dlclose(library);
}

fs::path file_of(void* library) {
    const link_map* map = nullptr;
    return dlinfo(library, RTLD_DI_LINKMAP, &map) == 0 ? fs::path(map->l_name) : fs::path();
}

void* own_function(void* library, const char* name) {
    void* const function = dlsym(library, name);
    return function != nullptr && holds(library, function) ? function : nullptr;
}

bool holds(void* library, void* address) {
    const link_map* map = nullptr;
    Dl_info info{};
    void* holder = nullptr;
    return dlinfo(library, RTLD_DI_LINKMAP, &map) == 0 &&
           dladdr1(address, &info, &holder, RTLD_DL_LINKMAP) != 0 && holder == map;
}

} // namespace tool::platform
