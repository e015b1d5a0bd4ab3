// SPDX-License-Identifier: MIT
// An allocator that counts what the JSON component takes.
#pragma once

#include "quillon/json/allocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <numeric>
#include <set>
#include <string>
#include <unordered_map>

namespace json_testing {

// In use from its construction to its destruction; create and destroy nested ones in order.
//
// Blocks that are still alive at its end fail the test.
class TrackingAllocator {
public:
    TrackingAllocator()
        : allocator{resize, release, this}, before(quillon::json::set_allocator(&allocator)) {}

    ~TrackingAllocator() {
        EXPECT_EQ("", report());
        quillon::json::set_allocator(before);
    }

    TrackingAllocator(const TrackingAllocator&) = delete;
    TrackingAllocator& operator=(const TrackingAllocator&) = delete;

    // Blocks alive.
    std::size_t blocks() const { return live.size(); }

    // Refuses the request number `number`, counted on from here at 1, and all that follow.
    void fail_from(std::size_t number) { refuse_after = requested + number - 1; }

    void fail_no_more() { refuse_after = NEVER; }

    // A line "tag: bytes" for every live block, in order; empty when nothing leaked.
    std::string report() const {
        std::multiset<std::string> lines;
        for (const auto& [block, info] : live)
            lines.insert(info.tag + ": " + std::to_string(info.bytes) + "\n");
        return std::accumulate(lines.begin(), lines.end(), std::string());
    }

private:
    static constexpr std::size_t NEVER = std::numeric_limits<std::size_t>::max();

    struct BlockInfo {
        std::size_t bytes;
        std::string tag;
    };

    static void* resize(void* state, void* block, std::size_t bytes, const char* tag) {
        auto* self = static_cast<TrackingAllocator*>(state);
        if (++self->requested > self->refuse_after)
            return nullptr;
        void* resized = std::malloc(bytes); // never the old place, nor zeros by luck
        if (resized == nullptr)
            return nullptr;
        std::memset(resized, 0xA5, bytes);
        if (block != nullptr) {
            std::memcpy(resized, block, std::min(bytes, self->live.at(block).bytes));
            release(state, block, tag);
        }
        self->live[resized] = {bytes, tag};
        return resized;
    }

    static void release(void* state, void* block, const char*) {
        if (static_cast<TrackingAllocator*>(state)->live.erase(block) == 0) {
            std::fputs("tracking allocator: a block was freed that is not alive\n", stderr);
            std::abort();
        }
        std::free(block);
    }

    quillon::json::Allocator allocator;
    const quillon::json::Allocator* before;
    std::unordered_map<void*, BlockInfo> live;
    std::size_t requested = 0;
    std::size_t refuse_after = NEVER;
};

} // namespace json_testing
