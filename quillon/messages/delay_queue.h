// SPDX-License-Identifier: MIT
// The delayed messages of one mailbox.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/messages/message.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillon {

// Delayed messages, each with the delay that it has left, in order of posting.
//
// The entries lie side by side in memory, as an update visits every one of them; the list points to
// them. Posting and updating may move an entry: look it up afresh.
// The memory of the longest queue so far stays until the queue is destroyed.
class DelayQueue : public DSParray<tuple2<cMessageStable*, float>> {
public:
    // A delayed message, and the delay that it has left.
    using Entry = tuple2<cMessageStable*, float>;

    // An empty queue.
    DelayQueue() : DSParray(true) {}

    // The number of entries.
    std::uint32_t count() const { return static_cast<std::uint32_t>(items.size() - gap); }

    // The entry at `position`, or null beyond the end.
    Entry* get(std::uint32_t position) const {
        const std::size_t place = position < cursor ? position : std::size_t{position} + gap;
        return place < items.size() ? items[place] : nullptr;
    }

    // Makes the next `post` one that cannot fail.
    void make_room_for_one() {
        DSParray::make_room_for_one();
        if (entries.size() < entries.capacity())
            return;
        entries.reserve(entries.empty() ? 8 : 2 * entries.size());
        for (std::size_t place = 0; place < items.size(); ++place)
            items[place] = &entries[place];
    }

    // Appends a message. Call make_room_for_one before.
    void post(cMessageStable* holder, float delay) {
        items.push_back(&entries.emplace_back(holder, delay));
        if (gap == 0)
            cursor = items.size();
    }

    // Subtracts `passed` from every delay above it, and removes the other entries, in linear time.
    //
    // `deliver` is called for each entry to be removed, with its holder and its position; it sees
    // the queue without the entries removed so far, and with that one. It may post, which this walk
    // then reaches too. An exception of `deliver` ends the walk: the entry in question and all
    // after it stay.
    template <typename Deliver>
    void count_down(float passed, Deliver deliver) {
        Walk walk(*this);
        while (walk.find_due(passed)) {
            deliver(entries[walk.place].first, static_cast<std::uint32_t>(walk.kept));
            ++walk.place;
        }
    }

    // Moves an entry to position 0, and returns it there; those before it keep their order.
    Entry& move_to_front(std::uint32_t position) {
        for (; position > 0; --position)
            std::swap(entries[position - 1], entries[position]);
        return entries.front();
    }

private:
    // Entries that stay move down over those that were removed; the destructor closes the gap.
    struct Walk {
        explicit Walk(DelayQueue& owner) : queue(owner) {}

        Walk(const Walk&) = delete;
        Walk& operator=(const Walk&) = delete;

        ~Walk() {
            auto& all = queue.entries;
            while (place < all.size())
                all[kept++] = all[place++];
            all.erase(all.begin() + static_cast<std::ptrdiff_t>(kept), all.end());
            queue.items.resize(kept);
            queue.hide(0, 0);
        }

        // Counts down up to the next entry that is due, if there is one.
        bool find_due(float passed) {
            const Entry* from = queue.entries.data() + place;
            const Entry* const end = queue.entries.data() + queue.entries.size();
            Entry* to = queue.entries.data() + kept;
            for (; from != end && passed < from->second; ++from, ++to) {
                to->first = from->first;
                to->second = from->second - passed;
            }
            place = static_cast<std::size_t>(from - queue.entries.data());
            kept = static_cast<std::size_t>(to - queue.entries.data());
            queue.hide(kept, place - kept);
            return from != end;
        }

        DelayQueue& queue;
        std::size_t place = 0; // the entry in question
        std::size_t kept = 0;  // entries before it that stay
    };

    // Hides `number` entries from the place `first` on; a number of 0 hides none.
    void hide(std::size_t first, std::size_t number) {
        cursor = number == 0 ? items.size() : first;
        gap = number;
    }

    std::size_t gap = 0;        // entries from `cursor` on that a walk has removed
    std::vector<Entry> entries; // those of the list, and those that a walk has removed
};

} // namespace quillon
