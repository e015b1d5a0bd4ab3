#include "quillon/messages/router.h"

#include <limits>
#include <memory>

namespace quillon {

// The claims that queue entries hold on a message; who gives up the last one destroys it.
class MessageClaims {
public:
    static void take(cMessageStable& holder) { holder.claims += 2; }

    static void give_up(cMessageStable* holder) {
        if (--holder->claims == 0)
            delete holder;
    }
};

namespace {

using Mailbox = cMessageRouter::Mailbox;
using Entry = cMessageRouter::Entry;

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

bool enlist(Mailbox& box, cMessageObserver* observer) {
    if (position_of(box, observer) < box.observers.count())
        return false;
    box.observers.add(observer, DSP_APPEND);
    return true;
}

bool strike_off(const cMessageRouter& router, Mailbox& box, const cMessageObserver* observer) {
    const std::uint32_t position = position_of(box, observer);
    if (!box.observers.remove(position, false))
        return false;
    // A delivery that waits to be resumed misses nobody; one that runs goes by bare positions.
    if (position < box.next && router.inWork != &box)
        --box.next;
    return true;
}

// By position, with the count read afresh: observers come and go while this runs.
void deliver(const Mailbox& box, cMessage* message) {
    constexpr std::uint32_t ahead = 6; // observers lie scattered: let their accesses overlap
    for (std::uint32_t position = 0; position < box.observers.count(); ++position) {
        if (position + ahead < box.observers.count())
            __builtin_prefetch(box.observers.get(position + ahead));
        box.observers.get(position)->receive_message(message);
    }
}

// The same for a delayed message, with a position that outlives an exception.
void deliver_delayed(Mailbox& box, cMessage* message) {
    while (box.next < box.observers.count())
        box.observers.get(box.next++)->receive_message(message);
    box.next = 0;
}

// One pass of an update over one queue.
class QueuePass {
public:
    explicit QueuePass(Mailbox& mailbox) : box(mailbox) {}

    QueuePass(const QueuePass&) = delete;
    QueuePass& operator=(const QueuePass&) = delete;

    // After an exception, has the next update begin with the entry that was in delivery.
    ~QueuePass() {
        if (delivering == nullptr)
            return;
        std::uint32_t position = 0;
        while (box.queue.get(position) != delivering)
            ++position;
        box.queue.remove(position, true);
        box.queue.add(delivering, 0);
        delivering->second = -std::numeric_limits<float>::infinity();
    }

    void run(float passed) {
        box.queue.remove_if([this, passed](Entry* entry) {
            if (passed < entry->second) {
                entry->second -= passed;
                return false;
            }
            delivering = entry;
            deliver_delayed(box, &entry->first->message);
            delivering = nullptr;
            MessageClaims::give_up(entry->first);
            return true;
        });
    }

private:
    Mailbox& box;
    Entry* delivering = nullptr;
};

// Notes which mailbox an update works through, and forgets it whichever way the update ends.
class Turn {
public:
    explicit Turn(cMessageRouter& owner) : router(owner) {}

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    ~Turn() { router.inWork = nullptr; }

    void work_through(Mailbox& box, float passed) {
        router.inWork = &box;
        QueuePass(box).run(passed);
    }

private:
    cMessageRouter& router;
};

} // namespace
} // namespace quillon

using namespace quillon;

bool __messageRouter_register_for_message(cMessageRouter* router, cMessageObserver* observer,
                                          std::uint32_t message_type) {
    return observer != nullptr && enlist(mailbox_of(*router, message_type), observer);
}

bool __messageRouter_register_for_anything(cMessageRouter* router, cMessageObserver* observer) {
    return observer != nullptr && enlist(router->anything, observer);
}

bool __messageRouter_unregister_for_message(cMessageRouter* router, cMessageObserver* observer,
                                            std::uint32_t message_type) {
    Mailbox* const box = router->index.find(message_type);
    return box != nullptr && strike_off(*router, *box, observer);
}

std::int16_t __messageRouter_unregister_all(cMessageRouter* router, cMessageObserver* observer) {
    std::uint16_t left = 0;
    for (const auto& [type, box] : router->mailboxes)
        if (strike_off(*router, *box, observer))
            ++left;
    return static_cast<std::int16_t>(left);
}

std::int16_t __messageRouter_post_message(cMessageRouter* router, cMessage* message) {
    if (message == nullptr)
        return 0;
    std::int16_t receivers = 0;
    if (const Mailbox* const box = router->index.find(message->messageType)) {
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
    Mailbox& box = mailbox_of(*router, holder->message.messageType);
    auto for_type = std::make_unique<Entry>(holder, delay);
    auto for_anything = std::make_unique<Entry>(holder, delay);
    box.queue.make_room_for_one();
    router->anything.queue.make_room_for_one();

    MessageClaims::take(*holder);
    box.queue.add(for_type.release(), DSP_APPEND);
    router->anything.queue.add(for_anything.release(), DSP_APPEND);
    return static_cast<std::int16_t>(box.observers.count());
}

void __messageRouter_update(cMessageRouter* router, const float& passed) {
    if (router->inWork != nullptr)
        return;
    const float step = passed;
    Turn turn(*router);
    turn.work_through(router->anything, step);
    for (const auto& [type, box] : router->mailboxes)
        turn.work_through(*box, step);
}
