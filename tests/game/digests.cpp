// SPDX-License-Identifier: MIT
// game_digests HEIGHT_MAP SCRIPT: plays a script and prints the digest of the tables, then that of
// every second. scripts/test-game-everywhere compares what different builds of it print.

#include "script.h"

#include <cinttypes>
#include <cstdio>

int main(int, char** words) {
    __mPhysics_open();
    std::printf("tables: %016" PRIx64 "\n", lantern::digest_of_tables());
    const lantern::Island island(words[1]);
    const lantern::Script script = lantern::read_script(words[2]);
    lantern::Simulation simulation(island, script.players);
    for (const lantern::Inputs& inputs : script.steps) {
        simulation.step(inputs);
        const std::uint32_t step = simulation.state().step;
        if (step % lantern::STEPS_PER_SECOND == 0)
            std::printf("step %u: %016" PRIx64 "\n", step, simulation.digest());
    }
}
