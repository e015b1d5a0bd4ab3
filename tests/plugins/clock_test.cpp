// SPDX-License-Identifier: MIT
#include "loaded_plugin.h"
#include "plugins/contracts/system.h"

#include <chrono>
#include <limits>

TEST(Clock, MeasuresItsPausesAndReturnsWhereThereIsNone) {
    const LoadedPlugin<quillon::System> clock(CLOCK_FILE, "connect_system_interface", {});
    using Limits = std::numeric_limits<double>;
    for (const double seconds :
         {0.002, 0.05, 0.0, -1.0, -1e300, -Limits::infinity(), Limits::quiet_NaN()}) {
        SCOPED_TRACE(seconds);
        const auto start = std::chrono::steady_clock::now();
        const double before = clock->get_time();
        clock->pause(seconds);
        const double measured = clock->get_time() - before;
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        EXPECT_FALSE(measured < seconds);
        EXPECT_LE(measured, passed.count() + 1e-6);
        // Any of the last as a time would be hours.
        EXPECT_LT(passed.count(), 60);
    }
}
