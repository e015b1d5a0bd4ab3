// SPDX-License-Identifier: MIT
// The body of a thread that a host or a plug-in starts; the library starts none.
#pragma once

#include "quillon/export.h"

#include <cstdint>

namespace quillon {

// What a thread runs; hosts derive from it.
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

// Runs the thread, sets `threadState` to 0, and returns the result of the run.
QUILLON_API std::uint32_t __mGeneric_thread_func(quillon::cThread* thread);

// Asks the worker for work, does it, and pauses, until `stopRequested` is true; returns 0.
//
// Each pause is 0.002, in the unit of the system plug-in; 0.002 seconds by the platform's own means
// if no plug-in has a pause.
QUILLON_API std::uint32_t __mGeneric_worker_loop(quillon::cThread* worker);
}
