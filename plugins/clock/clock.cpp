// Serves SYSTEM: entry 11 sleeps the given number of seconds.
#include "quillon/core/plugin.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

// A day: what is asked for by mistake must end too, and the system's clocks can count it.
constexpr double MAX_SECONDS = 24 * 60 * 60;

// Returns at once for 0, less, and what is no number; sleeps MAX_SECONDS for more.
void pause(const double& seconds) {
    if (seconds > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, MAX_SECONDS)));
}

} // namespace

QUILLON_PLUGIN_SERVES("clock", "SYSTEM")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>*) {
    return true;
}

void shutdown() {}

void connect_system_interface(void** table) {
    quillon::as_table<quillon::SystemTable>(table).pause = pause;
}
