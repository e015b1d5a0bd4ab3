// SPDX-License-Identifier: MIT
#include "quillon/core/end_of_life.h"

#include "quillon/core/raised_flag.h"
#include "quillon/platform/exit.h"

namespace quillon {
namespace {

constinit EndOfLifeEntry* latest = nullptr;
constinit bool has_begun = false;
constinit bool is_running = false;

} // namespace

void register_for_end_of_life(EndOfLifeEntry& entry) {
    entry.earlier = latest;
    latest = &entry;
}

void run_end_of_life() {
    // A plug-in that an entry releases may call this from an exit handler of its own.
    if (is_running)
        return;
    has_begun = true;
    const RaisedFlag under_way(is_running);
    while (latest != nullptr) {
        EndOfLifeEntry& entry = *latest;
        latest = entry.earlier;
        entry.destroy(entry);
    }
}

bool end_of_life_has_begun() {
    return has_begun;
}

void run_end_of_life_before_exit_handlers() {
    // Without memory for one more handler, an earlier one does the work.
    platform::call_at_unload_or_exit(run_end_of_life);
}

void run_end_of_life_before_end_of(void* plugin_library) {
    platform::call_before_end_of(plugin_library, run_end_of_life);
}

void forget_end_of_life_in(void* plugin_library) {
    platform::call_before_end_of(plugin_library, nullptr);
}

} // namespace quillon
