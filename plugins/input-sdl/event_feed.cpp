// SPDX-License-Identifier: MIT
#include "event_feed.h"

#include <algorithm>
#include <utility>

namespace quillon::input_sdl {

namespace {

// Between two updates. A motion of the mouse joins the one before it.
constexpr std::size_t MAX_WAITING = 4096;

constexpr Uint32 MAX_UNREAD_MILLISECONDS = 10'000;

struct EventRange {
    Uint32 first;
    Uint32 last;
};

constexpr EventRange INPUT_EVENTS[] = {
    {SDL_QUIT, SDL_QUIT},
    {SDL_WINDOWEVENT, SDL_WINDOWEVENT},
    {SDL_KEYDOWN, SDL_KEYUP},
    {SDL_MOUSEMOTION, SDL_MOUSEWHEEL},
    {SDL_JOYAXISMOTION, SDL_JOYDEVICEREMOVED},
    {SDL_CONTROLLERAXISMOTION, SDL_CONTROLLERDEVICEREMAPPED},
};

bool is_input(Uint32 type) {
    return std::ranges::any_of(INPUT_EVENTS, [type](EventRange range) {
        return type >= range.first && type <= range.last;
    });
}

// Whether the event's reader has to free a part of it.
bool owns_memory(Uint32 type) {
    return type == SDL_SYSWMEVENT || type == SDL_TEXTEDITING_EXT || type >= SDL_DROPFILE;
}

// Keeps an event by 1 and drops it by 0, as SDL_FilterEvents has it.
int keep_recent(void* now, SDL_Event* event) {
    const Uint32 age = *static_cast<const Uint32*>(now) - event->common.timestamp;
    return age <= MAX_UNREAD_MILLISECONDS || owns_memory(event->type) ? 1 : 0;
}

} // namespace

void EventFeed::start() {
    waiting.reserve(MAX_WAITING);
    SDL_AddEventWatch(watch, this);
}

void EventFeed::stop() {
    SDL_DelEventWatch(watch, this);
}

void EventFeed::drop_unread() {
    Uint32 now = SDL_GetTicks();
    SDL_FilterEvents(keep_recent, &now);
}

int EventFeed::watch(void* feed, SDL_Event* event) {
    if (is_input(event->type))
        static_cast<EventFeed*>(feed)->add(*event);
    return 0; // SDL ignores it
}

void EventFeed::add(const SDL_Event& event) {
    const std::lock_guard lock(guard);
    if (event.type == SDL_MOUSEMOTION && !waiting.empty() &&
        waiting.back().type == SDL_MOUSEMOTION) {
        waiting.back().motion.xrel += event.motion.xrel;
        waiting.back().motion.yrel += event.motion.yrel;
        return;
    }
    if (waiting.size() == MAX_WAITING) {
        waiting.clear();
        overflowed = true;
    }
    waiting.push_back(event);
}

bool EventFeed::collect(std::vector<SDL_Event>& events) {
    events.clear();
    events.reserve(MAX_WAITING); // so that `add`, which gets it next, allocates nothing
    const std::lock_guard lock(guard);
    events.swap(waiting);
    return !std::exchange(overflowed, false);
}

} // namespace quillon::input_sdl
