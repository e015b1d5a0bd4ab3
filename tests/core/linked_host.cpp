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

// The library's blocks by a letter each: tables in capitals, views, a unique pointer.
struct Block {
    const void* address;
    char letter;
};

constinit Block blocks[32] = {};
constinit std::size_t block_count = 0;
constinit char freed[64] = {}; // the letters in order, and a "." for each `shutdown`
constinit std::size_t freed_count = 0;
constinit bool throws = false; // out of the last connect entry point

void watch(char letter, const void* address) {
    blocks[block_count++] = {address, letter};
}

void note_freed(const void* address) {
    for (Block& block : blocks)
        if (address != nullptr && block.address == address) {
            freed[freed_count++] = block.letter;
            block.address = nullptr;
        }
}

void watch_modules() {
    const auto& graphics = *__mGraphics_instance();
    const auto& network = *__mNetwork_instance();
    const auto& audio = *__mAudio_instance();
    watch('G', graphics.interface);
    watch('I', __mInput_instance()->interface);
    watch('S', __mSystem_instance()->interface);
    watch('N', network.interface);
    watch('A', audio.interface);
    for (const auto* view :
         {&graphics.view0, &graphics.view2, &graphics.view4, &graphics.view5, &graphics.view6})
        watch('g', view->get());
    for (const auto* view : {&graphics.view1, &graphics.view3})
        watch('g', view->get());
    for (const auto* view : {&network.view0, &network.view1})
        watch('n', view->get());
    for (const auto* view : {&audio.view0, &audio.view1})
        watch('a', view->get());
}

void observe(const std::string& event) {
    if (throws && event.ends_with("connect sound"))
        throw std::runtime_error(event);
    if (!event.ends_with("shutdown"))
        return;
    freed[freed_count++] = '.';
    std::ofstream events("events", std::ios::app);
    for (std::uint32_t i = 0; i < __mCore_get_plugin_count(); ++i)
        events << __mCore_get_plugin_name(static_cast<std::int16_t>(i)) << ' ';
    events << '\n';
}

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "linked_host: after the end of life: %s (%s)\n", what, freed);
    std::_Exit(1);
}

struct LateCaller {
    ~LateCaller() {
        require(__mCore_get_plugin_count() == 0, "there are plug-ins");
        require(__mCore_get_plugin_name(0) == std::string_view("INVALID"), "a plug-in has a name");
        require(__mGraphics_instance()->interface == nullptr, "graphics is connected");
        require(!__mInput_instance()->key_down(1), "a key is down");
        require(__mCore_get_unique_pointer(5) == nullptr, "a unique pointer is left");
        require(__mCore_open() && __mCore_get_plugin_count() == 0, "it opens again");
        // Without a connected module there is no table of it.
        const char* const order = throws ? "aaNnnSIGgggggggu." : "AaaNnnSIGgggggggu.";
        require(std::string_view(freed).starts_with(order), "freed in another order");
    }
};

const LateCaller late_caller;

} // namespace

void* operator new(std::size_t size) {
    if (void* const block = std::malloc(size))
        return block;
    throw std::bad_alloc();
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
    void* const shared = ::operator new(16);
    __mCore_store_unique_pointer(shared, 5);
    watch('u', shared);
    __mCore_add_plugin_init_parameter("observer", reinterpret_cast<void*>(observe));
    throws = mode == "throw";
    try {
        __mCore_open();
    } catch (const std::runtime_error&) {
        // What was connected is shut down at the end all the same.
    }
    if (mode == "scan" || mode == "initialize")
        __mCore_parse_folder_for_plugins("late");
    if (mode == "initialize")
        __mCore_get_plugin_function(2, "note_argument");
    watch_modules();
}
