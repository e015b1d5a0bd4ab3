#include "platform.h"

#include "command.h"

#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <link.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

// The beginning that files of every word size and byte order share.
struct ElfStart {
    unsigned char identity[EI_NIDENT];
    ElfW(Half) type;
    ElfW(Half) machine;
};

ElfStart elf_start(const fs::path& file) {
    ElfStart start{};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(&start), sizeof(start));
    return start;
}

bool same_machine(const ElfStart& a, const ElfStart& b) {
    return a.identity[EI_CLASS] == b.identity[EI_CLASS] &&
           a.identity[EI_DATA] == b.identity[EI_DATA] && a.machine == b.machine;
}

const char* plain_reason(const fs::path& file, const std::string& loader_text) {
    if (!fs::is_regular_file(file))
        return "not a file";
    const ElfStart start = elf_start(file);
    if (std::memcmp(start.identity, ELFMAG, SELFMAG) != 0)
        return "not a library";
    if (!same_machine(start, elf_start(executable())))
        return "wrong architecture";
    if (loader_text.find("undefined symbol") != std::string::npos)
        return "missing symbol";
    if (loader_text.find("cannot open shared object file") != std::string::npos)
        return "missing dependency";
    return "does not load";
}

} // namespace

fs::path executable() {
    return fs::read_symlink("/proc/self/exe");
}

void OutputCapture::CloseFile::operator()(std::FILE* file) const {
    std::fclose(file);
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

LibraryFile::LibraryFile(const fs::path& file)
    // A pipe would keep the loader waiting.
    : library(fs::is_regular_file(file) ? dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL) : nullptr) {
    if (library != nullptr)
        return;
    const char* const loader_text = dlerror();
    const std::string text = loader_text == nullptr ? "" : loader_text;
    why_not = plain_reason(file, text) + (text.empty() ? "" : ": " + text);
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
