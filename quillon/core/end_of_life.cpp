// SPDX-License-Identifier: MIT
#include "quillon/core/end_of_life.h"

#include "quillon/platform/exit.h"

namespace quillon {
namespace {

constinit EndOfLifeEntry* latest = nullptr;
constinit bool has_begun = false;

} // namespace

void register_for_end_of_life(EndOfLifeEntry& entry) {
    entry.earlier = latest;
    latest = &entry;
}

void run_end_of_life() {
    has_begun = true;
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

} // namespace quillon
