// SPDX-License-Identifier: MIT
#include "model.h"

#include "quillon/messages/router.h"
#include "tests/limited_memory.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <set>
#include <string>

namespace {

using namespace quillon;
using testing::ElementsAre;

#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(offsetof(cMessageRouter::Mailbox, queue) == 0 &&
              offsetof(cMessageRouter::Mailbox, observers) == sizeof(DelayQueue) &&
              offsetof(cMessageRouter, mailboxes) == 0 &&
              offsetof(cMessageRouter, anything) == sizeof(DSPhashMap<DelayQueue>));

// The router as the script sees it.
class RouterBus {
public:
    std::function<void(int observer, int message)> receive;
    std::function<void(int message)> destroyed;
    std::unique_ptr<cMessageRouter> router = std::make_unique<cMessageRouter>();

    // A router that dies leaves the holders alone that still wait.
    ~RouterBus() {
        const std::size_t left = waiting.size();
        router.reset();
        EXPECT_EQ(left, waiting.size());
        while (!waiting.empty())
            delete *waiting.begin();
    }

    bool add(int observer, std::uint32_t type) {
        return router->register_for_message(&observers[observer], type);
    }

    bool add_to_anything(int observer) {
        return router->register_for_anything(&observers[observer]);
    }

    bool remove(int observer, std::uint32_t type) {
        return router->unregister_for_message(&observers[observer], type);
    }

    int remove_all(int observer) { return router->unregister_all(&observers[observer]); }

    int post(std::uint32_t type, int message) {
        Numbered numbered{type, message};
        return router->post_message(reinterpret_cast<cMessage*>(&numbered));
    }

    int post_delayed(std::uint32_t type, int message, float delay) {
        return router->post_message_delayed(make_holder(type, message), delay);
    }

    cMessageStable* make_holder(std::uint32_t type, int message) {
        return new Holder(*this, {type, message});
    }

    void update(float passed) { router->update(passed); }

    Queue queue(std::uint32_t type) const {
        const auto* const box = router->mailboxes.find(type);
        return box == nullptr ? Queue() : of(*box);
    }

    Queue queue_of_anything() const { return of(router->anything); }

private:
    struct Numbered {
        std::uint32_t messageType;
        int number;
    };

    class Holder final : public cMessageHolder<Numbered> {
    public:
        Holder(RouterBus& owner, Numbered numbered) : cMessageHolder(numbered), bus(owner) {
            bus.waiting.insert(this);
        }

        ~Holder() override {
            bus.waiting.erase(this);
            if (bus.router)
                bus.destroyed(get().number);
        }

    private:
        RouterBus& bus;
    };

    class Observer final : public cMessageObserver {
    public:
        Observer(RouterBus& owner, int name) : bus(owner), number(name) {}

        void receive_message(cMessage* message) override {
            bus.receive(number, number_of(message));
        }

    private:
        RouterBus& bus;
        int number;
    };

    static int number_of(cMessage* message) { return reinterpret_cast<Numbered*>(message)->number; }

    static Queue of(const cMessageRouter::Mailbox& box) {
        Queue entries;
        for (std::uint32_t i = 0; i < box.queue.count(); ++i)
            entries.emplace_back(number_of(box.queue.get(i)->first->message()),
                                 box.queue.get(i)->second);
        return entries;
    }

    std::set<Holder*> waiting;
    Observer observers[6] = {{*this, 0}, {*this, 1}, {*this, 2},
                             {*this, 3}, {*this, 4}, {*this, 5}};
};

TEST(RouterModel, AgreesOver400000Operations) {
    for (std::uint32_t seed = 0; seed < 1000; ++seed) {
        RouterBus router;
        Model model;
        Script on_router(router, seed);
        Script on_model(model, seed);
        for (int step = 0; step < 400; ++step) {
            on_router.step();
            on_model.step();
            ASSERT_EQ(on_model.log, on_router.log) << "seed " << seed << ", step " << step;
        }
    }
}

// What the script cannot see or do. The log has "observer, message" for a delivery and "-message"
// for an end.
class Router : public testing::Test {
protected:
    Router() {
        bus.receive = [this](int observer, int message) {
            log.insert(log.end(), {observer, message});
            if (observer == thrower && message == 11)
                throw Cut();
        };
        bus.destroyed = [this](int message) { log.push_back(-message); };
    }

    struct Cut {};

    std::vector<int> log;
    int thrower = -1; // the observer that throws at message 11
    RouterBus bus;
};

// Message 11 is the second of type 7, whose observers are 0, 1 and 2; 3 observes anything.
TEST_F(Router, ExceptionEndsAnUpdateWhoseTimeCountsAndTheNextOneGoesOn) {
    constexpr float due = -std::numeric_limits<float>::infinity();

    const struct {
        int thrower;
        std::vector<int> first, second;
        Queue anything, seven; // between the two updates
    } rows[] = {
        {1,
         {3, 11, 3, 12, 0, 11, 1, 11},
         {2, 11, -11, 1, 12, 2, 12, -12},
         {{10, 4}, {13, 2}, {14, 1.5F}},
         {{11, due}, {10, 4}, {12, due}, {13, 2}}},
        {3,
         {3, 11},
         {3, 12, 1, 11, 2, 11, -11, 1, 12, 2, 12, -12},
         {{11, due}, {10, 4}, {12, due}, {13, 2}, {14, 1.5F}},
         {{10, 4}, {11, due}, {12, due}, {13, 2}}},
    };

    for (const auto& row : rows) {
        bus.router = std::make_unique<cMessageRouter>();
        for (const int observer : {0, 1, 2})
            bus.add(observer, 7);
        bus.add_to_anything(3);
        for (const auto& [message, delay] : Queue{{10, 5}, {11, 1}, {12, 1}, {13, 3}})
            bus.post_delayed(7, message, delay);
        bus.post_delayed(9, 14, 2.5F);
        log.clear();
        thrower = row.thrower;
        EXPECT_THROW(bus.update(1), Cut);
        EXPECT_EQ(row.first, log);
        EXPECT_EQ(row.anything, bus.queue_of_anything());
        EXPECT_EQ(row.seven, bus.queue(7));
        EXPECT_EQ((Queue{{14, 1.5F}}), bus.queue(9));
        log.clear();
        thrower = -1;
        bus.remove(0, 7); // moves those who still wait for message 11
        bus.update(0);
        EXPECT_EQ(row.second, log);
    }
    thrower = 1;
    EXPECT_THROW(bus.post(7, 11), Cut);
}

TEST_F(Router, OnlyRegistrationAndDelayedPostsMakeMailboxes) {
    EXPECT_EQ(0, bus.post(1, 10));
    EXPECT_FALSE(bus.remove(0, 1));
    EXPECT_EQ(0, bus.remove_all(0));
    EXPECT_FALSE(bus.router->register_for_message(nullptr, 1));
    EXPECT_FALSE(bus.router->register_for_anything(nullptr));
    EXPECT_EQ(0, bus.router->post_message(nullptr));
    EXPECT_EQ(0, bus.router->post_message_delayed(nullptr, 0));
    EXPECT_EQ(bus.router->mailboxes.begin(), bus.router->mailboxes.end());
    EXPECT_EQ(0, bus.router->post_message_delayed(new cMessageStable(cMessage{1}), 0));
    EXPECT_NE(nullptr, bus.router->mailboxes.find(1));
    bus.update(0);
}

TEST_F(Router, ResultIsCutTo16Bits) {
    bus.add(0, 1);
    auto& observers = bus.router->mailboxes.find(1)->observers;
    while (observers.count() < 40'001)
        observers.add(observers.get(0), DSP_APPEND);
    EXPECT_EQ(static_cast<std::int16_t>(40'001), bus.post(1, 10));
    EXPECT_EQ(static_cast<std::int16_t>(40'001), bus.post_delayed(1, 10, 1));
}

// With the router and its host in one optimised link, an access to the type as a member of another
// struct than the host's could be moved past the host's own, and then reads 3.
TEST_F(Router, ReadsTheTypeThatTheHostWroteLast) {
    struct Large {
        std::uint32_t messageType;
        alignas(16) double numbers[3];
        std::string text;
    };

    bus.receive = [](int, int) {};
    bus.add(0, 7);
    for (int i = 0; i < 100; ++i) {
        Large large{3, {1, 2, 3}, std::string(100, 'x')};
        auto* const holder = new cMessageHolder<Large>(large);
        large.messageType = holder->get().messageType = 7;
        EXPECT_EQ(1, bus.router->post_message(reinterpret_cast<cMessage*>(&large)));
        EXPECT_EQ(1, bus.router->post_message_delayed(holder, 0));
        EXPECT_EQ(large.text, reinterpret_cast<Large*>(holder->message())->text);
    }
    bus.update(0);
}

TEST_F(Router, ImmediatePostDoesNotAllocate) {
    bus.receive = [](int, int) {};
    for (std::uint32_t type = 0; type < 1000; ++type)
        bus.add(0, type);
    bus.add_to_anything(0);
    const std::size_t before = allocations;
    for (std::uint32_t type = 0; type < 2000; ++type)
        EXPECT_EQ(type < 1000 ? 1 : 0, bus.post(type, 10));
    EXPECT_EQ(before, allocations);
}

TEST_F(Router, DelayedPostIsAllOrNothingWhenMemoryRunsOut) {
    cMessageStable* const holder = bus.make_holder(1, 10);
    bool posted = false;
    for (std::size_t allowed = 0; !posted; ++allowed) {
        bus.router = std::make_unique<cMessageRouter>();
        allocations_left = allowed;
        try {
            bus.router->post_message_delayed(holder, 0);
            posted = true;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = SIZE_MAX;
        bus.update(0);
        EXPECT_EQ(posted, !log.empty()) << allowed << " allocations";
    }
    EXPECT_THAT(log, ElementsAre(-10));
}

} // namespace
