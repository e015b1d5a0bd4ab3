// SPDX-License-Identifier: MIT
#include "quillon/messages/router.h"

#include <cstring>
#include <iterator>
#include <limits>
#include <memory>

namespace quillon {

// Counts the queue entries that still hold a message; the last release destroys it.
class MessageClaims {
public:
    // Two entries hold a delayed message: that of its type and that of anything.
    static void retain_twice(cMessageStable& holder) { holder.claims += 2; }

    static void release(cMessageStable* holder) {
        if (--holder->claims == 0)
            delete holder;
    }
};

namespace {

// A sender's message is a struct of its own, which only begins with the type: its bytes are read,
// since an access as a cMessage may be moved past the sender's own when both are optimised as one.
std::uint32_t type_of(const cMessage* message) {
    std::uint32_t type;
    std::memcpy(&type, message, sizeof type);
    return type;
}

using Mailbox = cMessageRouter::Mailbox;

Mailbox& mailbox_of(cMessageRouter& router, std::uint32_t type) {
    if (Mailbox* const found = router.index.find(type))
        return *found;
    auto made = std::make_unique<Mailbox>();
    router.index.make_room_for_one();
    router.mailboxes.add(made.get(), type);
    router.index.add(made.get(), type);
    return *made.release();
}

// The position of `observer`, or the count if it is not there.
std::uint32_t position_of(const Mailbox& box, const cMessageObserver* observer) {
    std::uint32_t position = 0;
    while (position < box.observers.count() && box.observers.get(position) != observer)
        ++position;
    return position;
}

bool add_observer(Mailbox& box, cMessageObserver* observer) {
    if (position_of(box, observer) < box.observers.count())
        return false;
    box.observers.add(observer, DSP_APPEND);
    return true;
}

bool remove_observer(const cMessageRouter& router, Mailbox& box, const cMessageObserver* observer) {
    const std::uint32_t position = position_of(box, observer);
    if (!box.observers.remove(position, false))
        return false;
    // A delivery that an exception interrupted skips nobody when it resumes. One that is running
    // goes by bare positions.
    if (position < box.next && router.updating != &box)
        --box.next;
    return true;
}

// By position, read afresh each time: observers come and go meanwhile.
[[gnu::always_inline]] inline void deliver(const Mailbox& box, cMessage* message) {
    std::uint32_t position = 0;
    while (cMessageObserver* const observer = box.observers.get(position)) {
        observer->receive_message(message);
        ++position;
    }
}

// The same for a delayed message, with a position that outlives an exception.
void deliver_delayed(Mailbox& box, cMessage* message) {
    while (cMessageObserver* const observer = box.observers.get(box.next)) {
        ++box.next;
        observer->receive_message(message);
    }
    box.next = 0;
}

class Update {
public:
    Update(cMessageRouter& owner, float time) : router(owner), passed(time) {}

    void run() {
        try {
            process(router.anything);
            for (current = router.mailboxes.begin(); current != router.mailboxes.end(); ++current)
                process(*current->second);
        } catch (...) {
            break_off();
            router.updating = nullptr;
            throw;
        }
        router.updating = nullptr;
    }

private:
    // Due at every later update, whatever time that passes.
    static constexpr float OVERDUE = -std::numeric_limits<float>::infinity();

    void process(Mailbox& box) {
        router.updating = &box;
        box.queue.count_down(passed, [&](cMessageStable* holder, std::uint32_t position) {
            delivering = position;
            deliver_delayed(box, holder->message());
            MessageClaims::release(holder);
        });
    }

    // After an exception of an observer: moves the entry in delivery to the front, where the next
    // update resumes it, and counts the entries down that this update did not reach.
    void break_off() {
        Mailbox& box = *router.updating;
        box.queue.move_to_front(delivering).second = OVERDUE;

        count_down(box, delivering + 1);
        auto rest = &box == &router.anything ? router.mailboxes.begin() : std::next(current);
        for (; rest != router.mailboxes.end(); ++rest)
            count_down(*rest->second, 0);
    }

    void count_down(const Mailbox& box, std::uint32_t position) const {
        for (; position < box.queue.count(); ++position) {
            float& left = box.queue.get(position)->second;
            left = passed < left ? left - passed : OVERDUE;
        }
    }

    cMessageRouter& router;
    float passed;
    DSPhashMap<Mailbox>::iterator current;
    std::uint32_t delivering = 0; // the position of the entry in delivery
};

} // namespace
} // namespace quillon

using namespace quillon;

bool __messageRouter_register_for_message(cMessageRouter* router, cMessageObserver* observer,
                                          std::uint32_t message_type) {
    return observer != nullptr && add_observer(mailbox_of(*router, message_type), observer);
}

bool __messageRouter_register_for_anything(cMessageRouter* router, cMessageObserver* observer) {
    return observer != nullptr && add_observer(router->anything, observer);
}

bool __messageRouter_unregister_for_message(cMessageRouter* router, cMessageObserver* observer,
                                            std::uint32_t message_type) {
    Mailbox* const box = router->index.find(message_type);
    return box != nullptr && remove_observer(*router, *box, observer);
}

std::int16_t __messageRouter_unregister_all(cMessageRouter* router, cMessageObserver* observer) {
    std::uint16_t removed = 0;
    for (const auto& [type, box] : router->mailboxes)
        if (remove_observer(*router, *box, observer))
            ++removed;
    return static_cast<std::int16_t>(removed);
}

std::int16_t __messageRouter_post_message(cMessageRouter* router, cMessage* message) {
    if (message == nullptr)
        return 0;
    std::int16_t receivers = 0;
    if (const Mailbox* const box = router->index.find(type_of(message))) {
        deliver(*box, message);
        receivers = static_cast<std::int16_t>(box->observers.count());
    }
    deliver(router->anything, message);
    return receivers;
}

std::int16_t __messageRouter_post_message_delayed(cMessageRouter* router, cMessageStable* holder,
                                                  const float& delay) {
    if (holder == nullptr)
        return 0;
    Mailbox& box = mailbox_of(*router, type_of(holder->message()));
    box.queue.make_room_for_one();
    router->anything.queue.make_room_for_one();

    MessageClaims::retain_twice(*holder);
    box.queue.post(holder, delay);
    router->anything.queue.post(holder, delay);
    return static_cast<std::int16_t>(box.observers.count());
}

void __messageRouter_update(cMessageRouter* router, const float& passed) {
    if (router->updating != nullptr)
        return;
    Update(*router, passed).run();
}
