// SPDX-License-Identifier: MIT
// What __mCore_open costs beside the bare loader calls on the same files: the calls alone, and in
// the whole process of a host that starts, loads the library, opens the plug-ins and ends at once.
#include "bench/core/bare_loader.h"
#include "quillon/core/plugin_registry.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A folder with `count` copies of the tiny plug-in, which is the current one for the time being.
class PluginFolder {
public:
    explicit PluginFolder(std::int64_t count) : before(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "quillon-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        folder = name;
        fs::create_directory(folder / "plugin");
        for (std::int64_t i = 0; i < count; ++i) {
            files.push_back("plugin/p" + std::to_string(i) + ".so");
            fs::copy(TINY_PLUGIN, folder / files.back());
        }
        fs::current_path(folder);
    }

    PluginFolder(const PluginFolder&) = delete;
    PluginFolder& operator=(const PluginFolder&) = delete;

    ~PluginFolder() {
        fs::current_path(before);
        fs::remove_all(folder);
    }

    std::vector<std::string> files;

private:
    fs::path before;
    fs::path folder;
};

// Times `work` in a child of its own: a host opens its plug-ins once, while a process that has
// loaded and closed hundreds of libraries before loads the next ones more slowly.
template <class Work>
void time_in_child(benchmark::State& state, Work work) {
    int ends[2];
    if (pipe(ends) != 0)
        std::abort();
    const pid_t child = fork();
    if (child == 0) {
        // Each load prints a line, which is not what is measured here.
        if (std::freopen("/dev/null", "w", stdout) == nullptr)
            _exit(1);
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        const double seconds = passed.count();
        _exit(write(ends[1], &seconds, sizeof seconds) == sizeof seconds ? 0 : 1);
    }
    double seconds = 0;
    if (read(ends[0], &seconds, sizeof seconds) != sizeof seconds)
        std::abort();
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    state.SetIterationTime(seconds);
}

void Open(benchmark::State& state) {
    const PluginFolder folder(state.range(0));
    void* const library = dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    auto* const open = reinterpret_cast<decltype(__mCore_open)*>(dlsym(library, "__mCore_open"));
    for (auto _ : state)
        time_in_child(state, [open] { open(); });
    dlclose(library);
}

void BareLoader(benchmark::State& state) {
    const PluginFolder folder(state.range(0));
    for (auto _ : state)
        time_in_child(state, [&] {
            for (const std::string& file : folder.files)
                load_bare(file.c_str());
        });
}

// Times a process of the host with these arguments; it starts in the folder and prints nothing.
void run_host(benchmark::State& state, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), START_HOST);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (auto _ : state) {
        pid_t host = 0;
        int status = 1;
        if (posix_spawn(&host, START_HOST, &quiet, nullptr, pointers.data(), environ) != 0 ||
            waitpid(host, &status, 0) != host || status != 0)
            std::abort();
    }
    posix_spawn_file_actions_destroy(&quiet);
}

void OpeningProcess(benchmark::State& state) {
    const PluginFolder folder(state.range(0));
    run_host(state, {LIBRARY_FILE});
}

void BareProcess(benchmark::State& state) {
    const PluginFolder folder(state.range(0));
    std::vector<std::string> arguments = folder.files;
    arguments.insert(arguments.begin(), LIBRARY_FILE);
    run_host(state, arguments);
}

} // namespace

#define QUILLON_BENCH(row)                                                                         \
    BENCHMARK(row)->Arg(1)->Arg(10)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond)

QUILLON_BENCH(BareLoader)->UseManualTime();
QUILLON_BENCH(Open)->UseManualTime();
QUILLON_BENCH(BareProcess)->UseRealTime();
QUILLON_BENCH(OpeningProcess)->UseRealTime();
