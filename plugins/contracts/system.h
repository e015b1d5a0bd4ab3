// SPDX-License-Identifier: MIT
// The contract of a clock.
#pragma once

#include "contract.h"

#include <array>
#include <cstddef>

namespace quillon {

// The table of SYSTEM under this contract.
struct System {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modSystem;
    static constexpr const char* SERVICE = "SYSTEM";
    static constexpr ContractIdentity IDENTITY = {"quillon.system", 1};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest call that can fail failed, in one line; empty if it succeeded.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    // Seconds since the plug-in was initialised; never falls. For any thread.
    double (*get_time)() = nullptr;

    void* reserved_3_to_10[8] = {}; // null

    // Sleeps for that many seconds, at most a day; returns at once for 0, less, and NaN.
    // For any thread; __mGeneric_worker_loop calls this.
    void (*pause)(const double& seconds) = nullptr;

    void* reserved_12_to_19[8] = {};                       // null
    void* own_20_to_24[OWN_ENTRY_COUNT<SystemTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(System) == sizeof(SystemTable));
static_assert(offsetof(System, pause) == offsetof(SystemTable, pause));
static_assert(offsetof(System, own_20_to_24) == FIRST_OWN_ENTRY<SystemTable> * sizeof(void*));

} // namespace quillon
