// SPDX-License-Identifier: MIT
// Serves SYSTEM: the time since the start, and pauses.
#include "plugins/contracts/system.h"
#include "quillon/core/plugin.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// A day: a pause that is asked for by mistake must end too, and the system's clocks can count it.
constexpr double MAX_SECONDS = 24 * 60 * 60;

constinit Clock::time_point start{};

double get_time() {
    return Seconds(Clock::now() - start).count();
}

void pause(const double& seconds) {
    if (seconds > 0)
        std::this_thread::sleep_for(Seconds(std::min(seconds, MAX_SECONDS)));
}

} // namespace

QUILLON_PLUGIN_SERVES("clock", "SYSTEM")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>* parameters) {
    start = Clock::now();
    return quillon::is_wanted(parameters, "SYSTEM", "clock");
}

void shutdown() {}

void connect_system_interface(void** table) {
    quillon::serve<quillon::System>(
        table, {.last_error = [] { return ""; }, .get_time = get_time, .pause = pause});
}
