// What a thread of a host or a plug-in runs; the library starts none.
#pragma once

#include "quillon/export.h"

#include <cstdint>

namespace quillon {

// The object behind a thread, which a host derives from.
class cThread {
public:
    // A thread's whole run; or for a worker, whether there is work (not 0).
    virtual std::uint32_t run() = 0;

    // A worker's work. A plain thread has none.
    virtual void work() {}

    std::uint32_t threadState = 0; // 0 once the run has ended
    bool stopRequested = false;    // ends a worker before its next pass

protected:
    ~cThread() = default;
};

} // namespace quillon

extern "C" {

// Runs the thread, marks its end in `threadState` and gives the run's result.
QUILLON_API std::uint32_t __mGeneric_thread_func(quillon::cThread* thread);

// Asks the worker for work, does it, and pauses, until `stopRequested` is true; gives 0.
//
// The pause is 0.002, by the system plug-in's measure; the platform's own 0.002 seconds where no
// plug-in has one.
QUILLON_API std::uint32_t __mGeneric_worker_loop(quillon::cThread* worker);
}
