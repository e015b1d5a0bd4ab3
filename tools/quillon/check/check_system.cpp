// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "plugins/contracts/system.h"

#include <chrono>
#include <cmath>
#include <limits>

namespace tool {
namespace {

constexpr const char* SUBJECT = "SYSTEM";

double seconds_of_pause(const quillon::System& system, double seconds) {
    const auto start = std::chrono::steady_clock::now();
    system.pause(seconds);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

void check_system(const quillon::System& system) {
    check(SUBJECT, "tells a time that never falls", [&] {
        double last = system.get_time();
        expect(std::isfinite(last) && last >= 0, "get_time is not a number of 0 and above");
        for (int i = 0; i < 10'000; ++i) {
            const double now = system.get_time();
            expect(now >= last, "get_time falls");
            last = now;
        }
    });
    check(SUBJECT, "pauses as long as it is asked to, by its own time too", [&] {
        const auto start = std::chrono::steady_clock::now();
        const double before = system.get_time();
        expect(seconds_of_pause(system, 0.03) >= 0.03, "pause of 0.03 seconds is shorter");
        const double measured = system.get_time() - before;
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        expect(measured >= 0.03, "get_time counts less than the pause");
        expect(measured <= passed.count() + 0.001,
               "get_time counts more than the pause; its unit is the second");
    });
    check(SUBJECT, "returns at once from pauses of 0, less, and NaN", [&] {
        for (const double seconds : {0.0, -3.0, -1e300, std::numeric_limits<double>::quiet_NaN()})
            expect(seconds_of_pause(system, seconds) < 1,
                   "pause of " + std::to_string(seconds) + " does not return at once");
    });
}

} // namespace tool
