// SPDX-License-Identifier: MIT
// Messages, their observers, and the holders that keep delayed messages.
#pragma once

#include <cstdint>
#include <map>
#include <type_traits>
#include <utility>

namespace quillon {

// The head of every message: its type, a number that the host chooses.
//
// A message is any struct that begins with such a member; the rest is up to sender and receiver.
struct cMessage {
    std::uint32_t messageType = 0; // 0 unless it is set
};

// Receives the messages that it registered for.
//
// A router refers to its observers and never owns one; an observer outlives its registrations.
class cMessageObserver {
public:
    // `message` is the sender's and must not be kept beyond the call.
    virtual void receive_message(cMessage* message) = 0;

protected:
    // Nobody destroys an observer through this class, so this is neither virtual nor public.
    ~cMessageObserver() = default;

    // For the observer's own use.
    std::map<std::uint32_t, std::uint32_t> values;
};

// Keeps one message alive until its delay is over.
//
// Created by `new`; the router it was posted to destroys it after its last delivery.
class cMessageStable {
    friend class MessageClaims;

public:
    // A message that is nothing but its type.
    explicit cMessageStable(const cMessage& value = {}) : type_alone(value), address(&type_alone) {}

    cMessageStable(const cMessageStable&) = delete;
    cMessageStable& operator=(const cMessageStable&) = delete;

    virtual ~cMessageStable() = default;

    // What observers receive; lives as long as this object.
    cMessage* message() const { return address; }

protected:
    // For a message that the derived class holds.
    explicit cMessageStable(cMessage* held) : address(held) {}

private:
    cMessage type_alone;      // a message that is nothing but its type
    std::uint32_t claims = 0; // queue entries that still wait for this message
    cMessage* address;
};

// A cMessageStable whose message is any struct that begins with a `messageType`.
template <typename T>
class cMessageHolder : public cMessageStable {
    static_assert(std::is_same_v<decltype(T::messageType), std::uint32_t>);
    static_assert(!std::is_polymorphic_v<T>, "messageType has to come first");

public:
    // Keeps `value` as the message.
    explicit cMessageHolder(T value)
        : cMessageStable(reinterpret_cast<cMessage*>(&held)), held(std::move(value)) {}

    // The message.
    T& get() { return held; }

private:
    T held;
};

} // namespace quillon
