// SPDX-License-Identifier: MIT
#include <quillon/core/plugin.h>

#include <chrono>
#include <iostream>
#include <thread>

namespace {

void pause(const double& seconds) {
    std::cout << "first plug-in: a pause of " << seconds << " seconds\n";
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

} // namespace

QUILLON_PLUGIN_SERVES("first plug-in", "SYSTEM")
QUILLON_PLUGIN_NEEDS_NOTHING()

bool initialize(quillon::DSPrefHashMap<void>*) {
    return true;
}

void shutdown() {}

void connect_system_interface(void** table) {
    quillon::as_table<quillon::SystemTable>(table).pause = pause;
}
