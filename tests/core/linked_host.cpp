// A host that links the library, opens it and returns from main. Its static object outlives the
// library's end: every export must still answer then.
#include "quillon/quillon.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "linked_host: after the end of life: %s\n", what);
    std::_Exit(1);
}

struct LateCaller {
    ~LateCaller() {
        require(__mCore_get_plugin_count() == 0, "there are plug-ins");
        require(std::strcmp(__mCore_get_plugin_name(0), "INVALID") == 0, "a plug-in has a name");
        require(__mGraphics_instance()->interface == nullptr, "graphics is connected");
        require(!__mInput_instance()->key_down(1), "a key is down");
        require(__mCore_get_unique_pointer(5) == nullptr, "a unique pointer is left");
    }
};

const LateCaller late_caller;

} // namespace

int main() {
    __mCore_store_unique_pointer(::operator new(16), 5);
    __mCore_open();
    return __mGraphics_instance()->interface == nullptr ? 1 : 0;
}
