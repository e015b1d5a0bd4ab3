// SPDX-License-Identifier: MIT
// The router's rules followed word by word, under the names of its operations, and the script that
// drives the router and this model.
#pragma once

#include "quillon/messages/router.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <utility>
#include <vector>

class Model {
public:
    // The holders that wait, and the delay that each has left; read as the router's queue is.
    struct Waiting : std::vector<std::pair<std::shared_ptr<quillon::cMessageStable>, float>> {
        std::uint32_t count() const { return static_cast<std::uint32_t>(size()); }

        const value_type* get(std::uint32_t position) const { return &at(position); }
    };

    struct Mailbox {
        Waiting queue;
        std::vector<quillon::cMessageObserver*> observers;
    };

    // Found as the router finds its own.
    struct Mailboxes : std::map<std::uint32_t, Mailbox> {
        Mailbox* find(std::uint32_t type) { return contains(type) ? &at(type) : nullptr; }
    };

    bool register_for_message(quillon::cMessageObserver* observer, std::uint32_t type) {
        return add_to(mailboxes[type], observer);
    }

    bool register_for_anything(quillon::cMessageObserver* observer) {
        return add_to(anything, observer);
    }

    bool unregister_for_message(quillon::cMessageObserver* observer, std::uint32_t type) {
        Mailbox* const box = mailboxes.find(type);
        return box != nullptr && std::erase(box->observers, observer) > 0;
    }

    int unregister_all(quillon::cMessageObserver* observer) {
        return static_cast<int>(std::ranges::count_if(mailboxes, [=](auto& entry) {
            return std::erase(entry.second.observers, observer) > 0;
        }));
    }

    int post_message(quillon::cMessage* message) {
        const Mailbox* const box = mailboxes.find(message->messageType);
        const std::size_t result = box != nullptr ? deliver(*box, message) : 0;
        deliver(anything, message);
        return static_cast<int>(result);
    }

    int post_message_delayed(quillon::cMessageStable* posted, float delay) {
        const std::shared_ptr<quillon::cMessageStable> holder(posted);
        Mailbox& box = mailboxes[posted->message()->messageType];
        box.queue.emplace_back(holder, delay);
        anything.queue.emplace_back(holder, delay);
        return static_cast<int>(box.observers.size());
    }

    void update(float passed) {
        if (std::exchange(updating, true))
            return;
        work_through(anything, passed);
        for (auto& [type, box] : mailboxes)
            work_through(box, passed);
        updating = false;
    }

    Mailboxes mailboxes;
    Mailbox anything;

private:
    static bool add_to(Mailbox& box, quillon::cMessageObserver* observer) {
        const bool is_new = std::ranges::count(box.observers, observer) == 0;
        if (is_new)
            box.observers.push_back(observer);
        return is_new;
    }

    static std::size_t deliver(const Mailbox& box, quillon::cMessage* message) {
        std::size_t position = 0;
        while (position < box.observers.size()) // which may change meanwhile
            box.observers[position++]->receive_message(message);
        return box.observers.size();
    }

    static void work_through(Mailbox& box, float passed) {
        for (std::uint32_t position = 0; position < box.queue.count();) {
            auto& [holder, left] = box.queue[position];
            if (passed < left) {
                left -= passed;
                ++position;
                continue;
            }
            deliver(box, holder->message());
            box.queue.erase(box.queue.begin() + position);
        }
    }

    bool updating = false;
};

using Queue = std::vector<std::pair<int, float>>; // messages, and the delay that each has left

// Observers and messages that are numbers, and the log of what happens to them: "observer, message"
// for a delivery, "-message" for an end.
class Stage {
public:
    Stage() = default;
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    virtual ~Stage() {
        while (!waiting.empty())
            delete *waiting.begin();
    }

    quillon::cMessageObserver* observer(int number) { return &audience[number]; }

    quillon::cMessageStable* make_holder(std::uint32_t type, int message) {
        return new Holder(*this, {type, message});
    }

    template <typename Bus>
    static int post(Bus& bus, std::uint32_t type, int message) {
        Numbered numbered{type, message};
        return bus.post_message(reinterpret_cast<quillon::cMessage*>(&numbered));
    }

    template <typename Mailbox>
    static Queue queue_of(const Mailbox* box) {
        Queue entries;
        for (std::uint32_t i = 0; box != nullptr && i < box->queue.count(); ++i)
            entries.emplace_back(number_of(box->queue.get(i)->first->message()),
                                 box->queue.get(i)->second);
        return entries;
    }

    std::vector<int> log;

protected:
    // What an observer does, after its delivery is in the log.
    virtual void react(int observer, int message) = 0;

    // The holders that nobody has destroyed yet.
    std::set<quillon::cMessageStable*> waiting;

private:
    struct Numbered {
        std::uint32_t messageType;
        int number;
    };

    struct Holder final : quillon::cMessageHolder<Numbered> {
        Holder(Stage& owner, Numbered numbered) : cMessageHolder(numbered), stage(owner) {
            stage.waiting.insert(this);
        }

        ~Holder() override {
            stage.waiting.erase(this);
            stage.log.push_back(-get().number);
        }

        Stage& stage;
    };

    struct Observer final : quillon::cMessageObserver {
        Observer(Stage& owner, int own_number) : stage(owner), number(own_number) {}

        void receive_message(quillon::cMessage* message) override {
            stage.log.insert(stage.log.end(), {number, number_of(message)});
            stage.react(number, number_of(message));
        }

        Stage& stage;
        int number;
    };

    static int number_of(quillon::cMessage* message) {
        return reinterpret_cast<Numbered*>(message)->number;
    }

    std::array<Observer, 6> audience{
        {{*this, 0}, {*this, 1}, {*this, 2}, {*this, 3}, {*this, 4}, {*this, 5}}};
};

// Drives a bus at random; two buses that behave alike make the same script log the same.
template <typename Bus>
class Script : public Stage {
public:
    explicit Script(std::uint32_t seed) : draw(seed) {}

    // One operation, with all that observers do in turn; what happened is in `log`.
    void step() {
        log.clear();
        reactions = 0;
        operate();
    }

private:
    static constexpr std::uint32_t TYPES[] = {0, 1, 7, 0x80000000, 0xFFFFFFFF};
    static constexpr float INFINITE = std::numeric_limits<float>::infinity();
    static constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    static constexpr float DELAYS[] = {0.0F, 0.1F, 0.25F, 0.3F,     0.5F,         1.0F,
                                       1.7F, 3.0F, -1.0F, INFINITE, NOT_A_NUMBER, -INFINITE};
    static constexpr float TIMES[] = {0.0F, 0.1F,  0.1F, 0.25F,        0.3F,     0.5F,
                                      1.0F, -0.5F, 2.0F, NOT_A_NUMBER, INFINITE, 0.2F};

    template <typename T, std::size_t count>
    T one_of(const T (&choices)[count]) {
        return choices[draw() % count];
    }

    void react(int, int) override {
        const auto* const box = draw() % 2 == 0 ? &bus.anything : bus.mailboxes.find(one_of(TYPES));
        for (const auto& [message, left] : queue_of(box))
            log.insert(log.end(), {message, std::bit_cast<int>(left)});
        if (draw() % 8 < 3 && ++reactions < 30)
            operate();
    }

    void operate() {
        auto* const someone = observer(static_cast<int>(draw() % 6));
        const std::uint32_t type = one_of(TYPES);
        const auto kind = draw() % 100;
        if (kind < 20)
            log.push_back(bus.register_for_message(someone, type) ? 1 : 0);
        else if (kind < 21)
            log.push_back(bus.register_for_anything(someone) ? 1 : 0);
        else if (kind < 35)
            log.push_back(bus.unregister_for_message(someone, type) ? 1 : 0);
        else if (kind < 38)
            log.push_back(bus.unregister_all(someone));
        else if (kind < 60)
            log.push_back(post(bus, type, ++messages));
        else if (kind < 80)
            log.push_back(bus.post_message_delayed(make_holder(type, ++messages), one_of(DELAYS)));
        else
            bus.update(one_of(TIMES));
    }

    Bus bus;
    std::mt19937 draw;
    int messages = 1000;
    int reactions = 0;
};
