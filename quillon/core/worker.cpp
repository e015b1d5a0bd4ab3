#include "quillon/core/worker.h"

#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"

#include <chrono>
#include <thread>

namespace {

void pause_worker() {
    constexpr double PAUSE = 0.002;
    void** const interface = __mSystem_instance()->interface;
    auto* const table = reinterpret_cast<quillon::SystemTable*>(interface);
    if (table != nullptr && table->pause != nullptr)
        table->pause(PAUSE);
    else
        std::this_thread::sleep_for(std::chrono::duration<double>(PAUSE));
}

} // namespace

std::uint32_t __mGeneric_thread_func(quillon::cThread* thread) {
    const std::uint32_t result = thread->run();
    thread->threadState = 0;
    return result;
}

std::uint32_t __mGeneric_worker_loop(quillon::cThread* worker) {
    while (!worker->stopRequested) {
        if (worker->run() != 0)
            worker->work();
        pause_worker();
    }
    return 0;
}
