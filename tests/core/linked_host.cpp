// SPDX-License-Identifier: MIT
// A host that links the library, opens it and returns from main. Its argument says what happens
// meanwhile: the folder "late" is scanned ("scan"), or its plug-in initialised as well
// ("initialize"), or an exception leaves the open ("throw").
//
// It has an allocator of its own, which writes down in which order the library frees its modules.
// Its static object outlives the library's end: every export must still answer then.
#include "quillon/quillon.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

// Blocks of the library and their letters: a unique pointer, tables in capitals, some views.
constinit std::array<const void*, 10> blocks{};
constexpr char LETTERS[] = "uGISNAggna";

constinit bool throws = false; // out of the last connect entry point
std::string trace;             // the letters as they are freed, and the plug-ins at each `shutdown`

void observe(const std::string& event) {
    if (throws && event.ends_with("connect sound"))
        throw std::runtime_error(event);
    if (event.find("shutdown") == std::string::npos)
        return;
    trace += " " + event + ":";
    for (std::uint32_t i = 0; i < __mCore_get_plugin_count(); ++i)
        trace += std::string(" ") + __mCore_get_plugin_name(static_cast<std::int16_t>(i));
}

// Windows ends a program's static objects before the libraries that it links.
#if !defined(_WIN32)
const struct LateCaller {
    ~LateCaller() {
        const bool answers = __mCore_open() && __mCore_get_plugin_count() == 0 &&
                             __mCore_get_plugin_name(0) == std::string_view("INVALID") &&
                             __mGraphics_instance()->interface == nullptr &&
                             !__mInput_instance()->key_down(1) &&
                             __mCore_get_unique_pointer(5) == nullptr;
        std::fprintf(stderr, "%s, %s", trace.c_str(), answers ? "answers" : "does not answer");
    }
} LATE_CALLER;
#endif

} // namespace

// Not inlined, as gcc warns of a block that comes from `malloc` and ends in `operator delete`.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    for (std::size_t i = 0; i < blocks.size(); ++i)
        if (block != nullptr && blocks[i] == block) {
            trace += LETTERS[i];
            blocks[i] = nullptr;
        }
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    throws = mode == "throw";
    void* const shared = ::operator new(16);
    __mCore_store_unique_pointer(shared, 5);
    __mCore_add_plugin_init_parameter("observer", reinterpret_cast<void*>(observe));
    try {
        __mCore_open();
    } catch (const std::runtime_error&) {
        // Plug-ins that were connected are shut down at the end all the same.
    }
    if (mode == "scan" || mode == "initialize")
        __mCore_parse_folder_for_plugins("late");
    if (mode == "initialize")
        __mCore_get_plugin_function(2, "note_argument");
    const auto& g = *__mGraphics_instance();
    const auto& network = *__mNetwork_instance();
    const auto& audio = *__mAudio_instance();
    blocks = {shared,
              g.interface,
              __mInput_instance()->interface,
              __mSystem_instance()->interface,
              network.interface,
              audio.interface,
              &*g.view0,
              &*g.view6,
              &*network.view0,
              &*audio.view1};
}
