// SPDX-License-Identifier: MIT
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

namespace {

// FNV-1a over 64-bit words.
class Digest {
public:
    void add(double value) { sum = (sum ^ std::bit_cast<std::uint64_t>(value)) * 0x100000001b3; }

    std::uint64_t value() const { return sum; }

private:
    std::uint64_t sum = 0xcbf29ce484222325;
};

// Where there is no MPFR, on a foreign processor or system, this shows that the entries are those
// which were compared with it.
TEST(ExactTables, EveryEntryIsTheSameEverywhere) {
    __init_trig_tables();
    Digest digest;
    for (std::int32_t i = 0; i < 72000; ++i) {
        digest.add(cosTD(i / 200.0));
        digest.add(sinTD(i / 200.0));
        digest.add(tanTD(i / 200.0));
    }
    for (std::int32_t i = 0; i <= 20000; ++i) {
        digest.add(acosT((i + 0.5) / 10000.0 - 1.0));
        digest.add(asinT((i + 0.5) / 10000.0 - 1.0));
    }
    for (std::int32_t i = 0; i <= 1000000; ++i) {
        digest.add(atanT((i + 0.5) / 50000.0));
        digest.add(atanT(-(i + 0.5) / 50000.0));
    }
    EXPECT_EQ(0xeb34d6e2b631f6dbU, digest.value());
    __clear_trig_tables();
}

} // namespace
