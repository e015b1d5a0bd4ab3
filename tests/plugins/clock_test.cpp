#include "quillon/core/interfaces.h"
#include "quillon/platform/loader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>

namespace {

quillon::SystemTable clock_table() {
    static void* const library = quillon::platform::load_library(CLOCK_FILE);
    auto* const connect = reinterpret_cast<void (*)(void**)>(
        quillon::platform::find_function(library, "connect_system_interface"));
    quillon::SystemTable table{};
    connect(reinterpret_cast<void**>(&table));
    return table;
}

std::chrono::duration<double> time_of_pause(double seconds) {
    const auto start = std::chrono::steady_clock::now();
    clock_table().pause(seconds);
    return std::chrono::steady_clock::now() - start;
}

} // namespace

TEST(Clock, SleepsAtLeastTheGivenSeconds) {
    for (const double seconds : {0.002, 0.05})
        EXPECT_GE(time_of_pause(seconds).count(), seconds);
}

// Any of these taken for a time would be hours.
TEST(Clock, WhatIsNoTimeReturns) {
    using Limits = std::numeric_limits<double>;
    for (const double seconds : {0.0, -1.0, -1e300, -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_LT(time_of_pause(seconds).count(), 60);
}
