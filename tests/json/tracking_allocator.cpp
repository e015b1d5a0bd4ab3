#include "tracking_allocator.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace json_testing {

TrackingAllocator::TrackingAllocator()
    : allocator{resize, release, this}, before(quillon::json::set_allocator(&allocator)) {}

TrackingAllocator::~TrackingAllocator() {
    quillon::json::set_allocator(before);
}

std::size_t TrackingAllocator::blocks(std::string_view tag) const {
    return static_cast<std::size_t>(std::count_if(
        live.begin(), live.end(), [tag](const auto& entry) { return entry.second.tag == tag; }));
}

std::size_t TrackingAllocator::bytes() const {
    std::size_t total = 0;
    for (const auto& [block, info] : live)
        total += info.bytes;
    return total;
}

void TrackingAllocator::fail_from(std::size_t number) {
    refuse_after = number == never ? never : requested + number - 1;
}

std::string TrackingAllocator::report() const {
    std::map<std::string_view, std::pair<std::size_t, std::size_t>> by_tag;
    for (const auto& [block, info] : live) {
        auto& [count, bytes] = by_tag[info.tag];
        ++count;
        bytes += info.bytes;
    }
    std::string lines;
    for (const auto& [tag, sums] : by_tag)
        lines += std::string(tag) + ": " + std::to_string(sums.first) + " blocks, " +
                 std::to_string(sums.second) + " bytes\n";
    return lines;
}

void* TrackingAllocator::resize(void* state, void* block, std::size_t bytes, const char* tag) {
    auto* self = static_cast<TrackingAllocator*>(state);
    if (++self->requested > self->refuse_after)
        return nullptr;
    auto entry = self->live.extract(block);
    const std::size_t old_bytes = entry.empty() ? 0 : entry.mapped().bytes;
    void* resized = std::realloc(block, bytes);
    if (resized != nullptr) {
        self->live[resized] = {bytes, tag};
        if (bytes > old_bytes) // new memory is never zeros by luck
            std::memset(static_cast<char*>(resized) + old_bytes, 0xA5, bytes - old_bytes);
    } else if (!entry.empty())
        self->live.insert(std::move(entry));
    return resized;
}

void TrackingAllocator::release(void* state, void* block, const char*) {
    auto* self = static_cast<TrackingAllocator*>(state);
    if (self->live.erase(block) == 0) {
        std::fputs("tracking allocator: a block was freed that is not alive\n", stderr);
        std::abort();
    }
    std::free(block);
}

} // namespace json_testing
