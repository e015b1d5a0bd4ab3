// SPDX-License-Identifier: MIT
#include "quillon/core/worker.h"

#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"

#include <chrono>
#include <thread>

using namespace quillon;

namespace quillon {
namespace {

void pause_worker() {
    constexpr double seconds = 0.002;
    if (auto* const pause = entry_of(__mSystem_instance()->interface, &SystemTable::pause))
        pause(seconds);
    else
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

} // namespace
} // namespace quillon

std::uint32_t __mGeneric_thread_func(cThread* thread) {
    const std::uint32_t result = thread->run();
    thread->threadState = 0;
    return result;
}

std::uint32_t __mGeneric_worker_loop(cThread* worker) {
    while (!worker->stopRequested) {
        if (worker->run() != 0)
            worker->work();
        pause_worker();
    }
    return 0;
}
