// SPDX-License-Identifier: MIT
// The input events of SDL, as they enter its queue.
#pragma once

#include <SDL.h>

#include <mutex>
#include <vector>

namespace quillon::input_sdl {

// Copies the events that input depends on, in order, on their way into SDL's queue: it makes no
// difference which part of the program empties the queue.
//
// An event filter of the host comes first: what it drops, no watch sees.
class EventFeed {
public:
    void start();
    void stop();

    // Bounds SDL's queue where no part of the program reads it: drops what is old by seconds.
    static void drop_unread();

    // Moves the events since the last call into `events`. False if there were more than are kept:
    // nothing is known then of what came before them.
    bool collect(std::vector<SDL_Event>& events);

private:
    // Called by SDL on the thread that adds the event.
    static int watch(void* feed, SDL_Event* event);
    void add(const SDL_Event& event);

    std::mutex guard;
    std::vector<SDL_Event> waiting;
    bool overflowed = false;
};

} // namespace quillon::input_sdl
