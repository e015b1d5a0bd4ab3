#include "quillon/core/end_of_life.h"

#include <cstdlib>

namespace quillon {
namespace {

constinit EndOfLifeEntry* latest = nullptr;

} // namespace

void register_for_end_of_life(EndOfLifeEntry& entry) {
    entry.earlier = latest;
    latest = &entry;
}

void run_end_of_life() {
    while (latest != nullptr) {
        EndOfLifeEntry& entry = *latest;
        latest = entry.earlier;
        entry.destroy(entry);
    }
}

void run_end_of_life_before_exit_handlers() {
    // Without memory for one more handler, an earlier one does the work.
    static_cast<void>(std::atexit(run_end_of_life));
}

} // namespace quillon
