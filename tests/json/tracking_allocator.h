// An allocator that counts what the JSON component takes,.
#pragma once

#include "quillon/json/allocator.h"

#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

namespace json_testing {

// In use from its construction to its destruction; create and destroy nested ones in order.
//
// Blocks that are still alive at its end are no longer tracked, and stay allocated.
class TrackingAllocator {
public:
    static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

    TrackingAllocator();
    ~TrackingAllocator();
    TrackingAllocator(const TrackingAllocator&) = delete;
    TrackingAllocator& operator=(const TrackingAllocator&) = delete;

    // Blocks and bytes alive, in all or under one tag.
    std::size_t blocks() const { return live.size(); }

    std::size_t blocks(std::string_view tag) const;
    std::size_t bytes() const;

    // Requests for memory so far, refused ones included.
    std::size_t requests() const { return requested; }

    // Refuses the request number `number`, counted on from here at 1, and all that follow.
    void fail_from(std::size_t number);

    // One line "tag: blocks, bytes" for every tag with live blocks; empty when nothing leaked.
    std::string report() const;

private:
    struct block_info {
        std::size_t bytes;
        std::string_view tag;
    };

    static void* resize(void* state, void* block, std::size_t bytes, const char* tag);
    static void release(void* state, void* block, const char* tag);

    quillon::json::Allocator allocator;
    const quillon::json::Allocator* before;
    std::unordered_map<void*, block_info> live;
    std::size_t requested = 0;
    std::size_t refuse_after = never;
};

} // namespace json_testing
