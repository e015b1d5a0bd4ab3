// A host that links the library, opens it and returns from main. Its argument says what happens
// meanwhile: the folder "late" is scanned ("scan"), or its plug-in initialised as well
// ("initialize"), or an exception leaves the open ("throw").
//
// Its static object outlives the library's end: every export must still answer then. It has an
// allocator of its own, which writes down in which order the library frees its modules.
#include "quillon/quillon.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

// The library's blocks, each with a letter: tables in capitals, views, a unique pointer.
constinit struct {
    const void* address;
    char letter;
} blocks[32] = {};

constinit std::size_t block_count = 0;
constinit char freed[64] = {}; // the letters in order, and a "." for each `shutdown`
constinit std::size_t freed_count = 0;
constinit bool throws = false; // out of the last connect entry point

template <typename... Blocks>
void watch(char letter, const Blocks&... addresses) {
    ((blocks[block_count++] = {addresses, letter}), ...);
}

void note_freed(const void* address) {
    for (auto& block : blocks)
        if (address != nullptr && block.address == address) {
            freed[freed_count++] = block.letter;
            block.address = nullptr;
        }
}

void watch_modules() {
    const auto& g = *__mGraphics_instance();
    const auto& network = *__mNetwork_instance();
    const auto& audio = *__mAudio_instance();
    watch('G', g.interface);
    watch('I', __mInput_instance()->interface);
    watch('S', __mSystem_instance()->interface);
    watch('N', network.interface);
    watch('A', audio.interface);
    watch('g', &*g.view0, &*g.view1, &*g.view2, &*g.view3, &*g.view4, &*g.view5, &*g.view6);
    watch('n', &*network.view0, &*network.view1);
    watch('a', &*audio.view0, &*audio.view1);
}

void observe(const std::string& event) {
    if (throws && event.ends_with("connect sound"))
        throw std::runtime_error(event);
    if (event.find("shutdown") == event.npos)
        return;
    freed[freed_count++] = '.';
    std::ofstream names("at_shutdown", std::ios::app);
    names << event << ", ";
    for (std::uint32_t i = 0; i < __mCore_get_plugin_count(); ++i)
        names << __mCore_get_plugin_name(static_cast<std::int16_t>(i)) << ' ';
}

struct LateCaller {
    ~LateCaller() {
        // A module that is not connected has no table.
        const char* const order = throws ? "aaNnnSIGgggggggu." : "AaaNnnSIGgggggggu.";
        const bool in_order = std::string_view(freed).starts_with(order);
        const bool answers = __mCore_open() && __mCore_get_plugin_count() == 0 &&
                             __mCore_get_plugin_name(0) == std::string_view("INVALID") &&
                             __mGraphics_instance()->interface == nullptr &&
                             !__mInput_instance()->key_down(1) &&
                             __mCore_get_unique_pointer(5) == nullptr;
        if (in_order && answers)
            return;
        std::fprintf(stderr, "linked_host: after the end: freed %s, answers %d\n", freed, answers);
        std::_Exit(1);
    }
};

const LateCaller late_caller;

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size);
    return block != nullptr ? block : throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    note_freed(block);
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
    watch('u', shared);
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
    watch_modules();
}
