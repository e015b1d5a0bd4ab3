// SPDX-License-Identifier: MIT
// Delivers messages by type, now or after a delay.
#pragma once

#include "quillon/containers/key_index.h"
#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/export.h"
#include "quillon/messages/delay_queue.h"
#include "quillon/messages/message.h"

#include <cstdint>

namespace quillon {

// Sorts observers into one mailbox per message type, and one more for observers of every type.
//
// For one thread at a time.
// Observers and messages are referred to and never owned.
// A posted holder is owned until its last delivery; one that still waits when the router is
// destroyed is neither delivered nor destroyed. From inside receive_message an observer may
// register, unregister and post, delayed or not. A null observer, message or holder is ignored; the
// result is then false or 0. The fields may be read at any time, also from inside receive_message;
// only the operations change them.
class cMessageRouter {
public:
    using Entry = DelayQueue::Entry; // a message that waits, and its delay

    // The queue and the observers of one type, or of anything.
    struct Mailbox {
        DelayQueue queue;                        // in order of posting
        DSPrefArray<cMessageObserver> observers; // in order of registration, none twice
        // The position of the observer that receives the due message next. Between two updates it
        // is above 0 only after an exception interrupted the delivery of the queue's first entry.
        std::uint32_t next = 0;
    };

    // Each calls the export of its name, __messageRouter_register_for_message and so on.
    bool register_for_message(cMessageObserver* observer, std::uint32_t message_type);
    bool register_for_anything(cMessageObserver* observer);
    bool unregister_for_message(cMessageObserver* observer, std::uint32_t message_type);
    std::int16_t unregister_all(cMessageObserver* observer);
    std::int16_t post_message(cMessage* message);
    std::int16_t post_message_delayed(cMessageStable* holder, const float& delay);
    void update(const float& passed);

    DSPhashMap<Mailbox> mailboxes; // by message type; created on demand, never removed
    Mailbox anything;              // for observers of every type

    KeyIndex<Mailbox> index;     // the same mailboxes, found in constant time
    Mailbox* updating = nullptr; // the mailbox that an update is processing
};

} // namespace quillon

extern "C" {

// Registers `observer` for the messages of one type.
// False if it was registered for that type already.
QUILLON_API bool __messageRouter_register_for_message(quillon::cMessageRouter* router,
                                                      quillon::cMessageObserver* observer,
                                                      std::uint32_t message_type);

// Registers `observer` for the messages of every type, for the rest of the router's life.
// False if it was registered for everything already.
QUILLON_API bool __messageRouter_register_for_anything(quillon::cMessageRouter* router,
                                                       quillon::cMessageObserver* observer);

// Ends a registration for one type.
// False if there was none.
QUILLON_API bool __messageRouter_unregister_for_message(quillon::cMessageRouter* router,
                                                        quillon::cMessageObserver* observer,
                                                        std::uint32_t message_type);

// Ends every registration for a single type, and returns their number.
// A registration for anything stays.
QUILLON_API std::int16_t __messageRouter_unregister_all(quillon::cMessageRouter* router,
                                                        quillon::cMessageObserver* observer);

// Delivers `message` to the observers of its type, then to those of anything, before it returns.
// Returns the number of observers of the type after the delivery, cut to 16 bits.
// `message` stays the caller's. No copy, no mailbox and no allocation is made.
// An exception of an observer ends the delivery and propagates.
QUILLON_API std::int16_t __messageRouter_post_message(quillon::cMessageRouter* router,
                                                      quillon::cMessage* message);

// Queues the message of `holder` until updates have counted `delay` down.
// Returns the number of observers of its type at present, cut to 16 bits; nobody is called.
// The router owns the holder from here on.
// If memory runs out, nothing is queued and the holder stays the caller's.
QUILLON_API std::int16_t __messageRouter_post_message_delayed(quillon::cMessageRouter* router,
                                                              quillon::cMessageStable* holder,
                                                              const float& delay);

// Counts every delay down by `passed` and delivers what falls due, each queue in order of posting:
// first to the observers of anything, then type by type in ascending order.
// A message is due if its delay is not above `passed`.
// A message that is queued during the update is counted down by it too, unless its queue has been
// processed already.
// Called from inside an update it does nothing.
// An exception of an observer ends the update and propagates; `passed` counts for every delay.
// The next update resumes with the observer after the one that threw, before any other message of
// that queue, and delivers what else was due.
QUILLON_API void __messageRouter_update(quillon::cMessageRouter* router, const float& passed);
}

namespace quillon {

inline bool cMessageRouter::register_for_message(cMessageObserver* observer,
                                                 std::uint32_t message_type) {
    return __messageRouter_register_for_message(this, observer, message_type);
}

inline bool cMessageRouter::register_for_anything(cMessageObserver* observer) {
    return __messageRouter_register_for_anything(this, observer);
}

inline bool cMessageRouter::unregister_for_message(cMessageObserver* observer,
                                                   std::uint32_t message_type) {
    return __messageRouter_unregister_for_message(this, observer, message_type);
}

inline std::int16_t cMessageRouter::unregister_all(cMessageObserver* observer) {
    return __messageRouter_unregister_all(this, observer);
}

inline std::int16_t cMessageRouter::post_message(cMessage* message) {
    return __messageRouter_post_message(this, message);
}

inline std::int16_t cMessageRouter::post_message_delayed(cMessageStable* holder,
                                                         const float& delay) {
    return __messageRouter_post_message_delayed(this, holder, delay);
}

inline void cMessageRouter::update(const float& passed) {
    __messageRouter_update(this, passed);
}

} // namespace quillon
