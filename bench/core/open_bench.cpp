// What __mCore_open costs beside the bare loader calls on the same files.
#include "quillon/core/plugins.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <dlfcn.h>

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

template <class Work>
void time_one(benchmark::State& state, Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(passed.count());
}

void Open(benchmark::State& state) {
    const PluginFolder folder(state.range(0));
    // Each load prints a line, which is not what is measured here.
    std::FILE* const quiet = std::freopen("/dev/null", "w", stdout);
    for (auto _ : state) {
        void* const library = dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        auto* const open =
            reinterpret_cast<decltype(__mCore_open)*>(dlsym(library, "__mCore_open"));
        time_one(state, [open] { open(); });
        dlclose(library);
    }
    benchmark::DoNotOptimize(quiet);
    state.SetComplexityN(state.range(0));
}

void BareLoader(benchmark::State& state) {
    constexpr const char* NAMES[] = {"initialize",
                                     "shutdown",
                                     "get_plugin_name",
                                     "get_plugin_purpose",
                                     "get_plugin_compatibility",
                                     "get_plugin_prereqs"};
    const PluginFolder folder(state.range(0));
    std::vector<void*> handles(folder.files.size());
    for (auto _ : state) {
        time_one(state, [&] {
            for (std::size_t i = 0; i < handles.size(); ++i) {
                handles[i] = dlopen(folder.files[i].c_str(), RTLD_NOW | RTLD_LOCAL);
                for (const char* name : NAMES)
                    benchmark::DoNotOptimize(dlsym(handles[i], name));
            }
        });
        for (void* handle : handles)
            dlclose(handle);
    }
    state.SetComplexityN(state.range(0));
}

} // namespace

BENCHMARK(BareLoader)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Arg(500)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(Open)->Arg(1)->Arg(10)->Arg(100)->Arg(500)->UseManualTime()->Unit(
    benchmark::kMicrosecond);
