// What passes through a router: messages, those who receive them, and those who hold them back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace quillon {

// The head of every message: its type, a number that the host chooses. What follows is the
// sender's and the receiver's affair.
struct cMessage {
    std::uint32_t messageType = 0;
};

// Receives the messages that it registered for.
//
// A router refers to its observers and never owns one; an observer outlives its registrations.
class cMessageObserver {
public:
    // `message` is the sender's and must not be kept beyond the call.
    virtual void receive_message(cMessage* message) = 0;

protected:
    // Nobody destroys an observer by this class, so the destructor is neither virtual nor public.
    ~cMessageObserver() = default;

    // For the observer's own use.
    std::map<std::uint32_t, std::uint32_t> values;
};

// Keeps one message alive until its delay is over; comes from `new`.
//
// A router that took it over destroys it after its last delivery.
class cMessageStable {
    friend class MessageClaims;

public:
    cMessageStable() = default;

    explicit cMessageStable(const cMessage& value) : message(value) {}

    cMessageStable(const cMessageStable&) = delete;
    cMessageStable& operator=(const cMessageStable&) = delete;

    virtual ~cMessageStable() = default;

private:
    std::uint32_t claims = 0; // queue entries that still wait for this message

public:
    // What observers are given the address of; a cMessageHolder has its larger message here.
    alignas(std::max_align_t) cMessage message;
};

// A cMessageStable whose message is any struct that begins with a `messageType`.
template <class T>
class cMessageHolder : public cMessageStable {
    static_assert(std::is_same_v<decltype(T::messageType), std::uint32_t>);
    static_assert(!std::is_polymorphic_v<T>, "messageType has to come first");
    static_assert(alignof(T) <= alignof(std::max_align_t));

public:
    explicit cMessageHolder(T value) { ::new (place()) T(std::move(value)); }

    ~cMessageHolder() override { std::destroy_at(&get()); }

    T& get() { return *std::launder(static_cast<T*>(place())); }

private:
    // The whole message lies over the base's `message`, on into `rest`.
    void* place() { return reinterpret_cast<std::byte*>(this) + alignof(std::max_align_t); }

    std::byte rest[sizeof(T)];
};

} // namespace quillon
