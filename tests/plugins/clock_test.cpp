#include "plugins/contracts/system.h"
#include "quillon/platform/loader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

TEST(Clock, MeasuresItsPausesAndReturnsWhereThereIsNone) {
    void* const library = quillon::platform::load_library(CLOCK_FILE);
    quillon::System table;
    reinterpret_cast<void (*)(void**)>(quillon::platform::find_function(
        library, "connect_system_interface"))(reinterpret_cast<void**>(&table));

    using Limits = std::numeric_limits<double>;
    for (const double seconds :
         {0.002, 0.05, 0.0, -1.0, -1e300, -Limits::infinity(), Limits::quiet_NaN()}) {
        SCOPED_TRACE(seconds);
        const auto start = std::chrono::steady_clock::now();
        const double before = table.get_time();
        table.pause(seconds);
        const double measured = table.get_time() - before;
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        EXPECT_FALSE(measured < seconds);
        EXPECT_LE(measured, passed.count() + 1e-6);
        // Any of the last as a time would be hours.
        EXPECT_LT(passed.count(), 60);
    }
    quillon::platform::release_library(library);
}
