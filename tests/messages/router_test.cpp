// SPDX-License-Identifier: MIT
#include "model.h"

#include "quillon/messages/router.h"
#include "tests/limited_memory.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace {

using namespace quillon;
using testing::ElementsAre;

TEST(RouterModel, AgreesOver400000Operations) {
    for (std::uint32_t seed = 0; seed < 1000; ++seed) {
        Script<cMessageRouter> on_router(seed);
        Script<Model> on_model(seed);
        for (int step = 0; step < 400; ++step) {
            on_router.step();
            on_model.step();
            ASSERT_EQ(on_model.log, on_router.log) << "seed " << seed << ", step " << step;
        }
    }
}

// What the script cannot see or do.
class Router : public testing::Test, protected Stage {
protected:
    // A router that dies leaves the holders alone that still wait.
    ~Router() override {
        const std::size_t left = waiting.size();
        router.reset();
        EXPECT_EQ(left, waiting.size());
    }

    void react(int observer, int message) override {
        if (observer == thrower && message == 11)
            throw Cut();
    }

    struct Cut {};

    int thrower = -1; // the observer that throws at message 11
    std::unique_ptr<cMessageRouter> router = std::make_unique<cMessageRouter>();
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
        router = std::make_unique<cMessageRouter>();
        for (const int number : {0, 1, 2})
            router->register_for_message(observer(number), 7);
        router->register_for_anything(observer(3));
        for (const auto& [message, delay] : Queue{{10, 5}, {11, 1}, {12, 1}, {13, 3}})
            router->post_message_delayed(make_holder(7, message), delay);
        router->post_message_delayed(make_holder(9, 14), 2.5F);
        log.clear();
        thrower = row.thrower;
        EXPECT_THROW(router->update(1), Cut);
        EXPECT_EQ(row.first, log);
        EXPECT_EQ(row.anything, queue_of(&router->anything));
        EXPECT_EQ(row.seven, queue_of(router->mailboxes.find(7)));
        EXPECT_EQ((Queue{{14, 1.5F}}), queue_of(router->mailboxes.find(9)));
        log.clear();
        thrower = -1;
        router->unregister_for_message(observer(0), 7); // moves those who still wait for message 11
        router->update(0);
        EXPECT_EQ(row.second, log);
    }
    thrower = 1;
    EXPECT_THROW(post(*router, 7, 11), Cut);
}

TEST_F(Router, OnlyRegistrationAndDelayedPostsMakeMailboxes) {
    EXPECT_EQ(0, post(*router, 1, 10));
    EXPECT_FALSE(router->unregister_for_message(observer(0), 1));
    EXPECT_EQ(0, router->unregister_all(observer(0)));
    EXPECT_FALSE(router->register_for_message(nullptr, 1));
    EXPECT_FALSE(router->register_for_anything(nullptr));
    EXPECT_EQ(0, router->post_message(nullptr));
    EXPECT_EQ(0, router->post_message_delayed(nullptr, 0));
    EXPECT_EQ(router->mailboxes.begin(), router->mailboxes.end());
    EXPECT_EQ(0, router->post_message_delayed(new cMessageStable(cMessage{1}), 0));
    EXPECT_NE(nullptr, router->mailboxes.find(1));
    router->update(0);
}

TEST_F(Router, ResultIsCutTo16Bits) {
    router->register_for_message(observer(0), 1);
    auto& observers = router->mailboxes.find(1)->observers;
    while (observers.count() < 40'001)
        observers.add(observers.get(0), DSP_APPEND);
    EXPECT_EQ(static_cast<std::int16_t>(40'001), post(*router, 1, 10));
    EXPECT_EQ(static_cast<std::int16_t>(40'001),
              router->post_message_delayed(make_holder(1, 10), 1));
}

// With the router and its host in one optimised link, an access to the type as a member of another
// struct than the host's could be moved past the host's own, and then reads 3.
TEST_F(Router, ReadsTheTypeThatTheHostWroteLast) {
    struct Large {
        std::uint32_t messageType;
        alignas(16) double numbers[3];
        std::string text;
    };

    router->register_for_message(observer(0), 7);
    for (int i = 0; i < 100; ++i) {
        Large large{3, {1, 2, 3}, std::string(100, 'x')};
        auto* const holder = new cMessageHolder<Large>(large);
        large.messageType = holder->get().messageType = 7;
        EXPECT_EQ(1, router->post_message(reinterpret_cast<cMessage*>(&large)));
        EXPECT_EQ(1, router->post_message_delayed(holder, 0));
        EXPECT_EQ(large.text, reinterpret_cast<Large*>(holder->message())->text);
    }
    router->update(0);
}

TEST_F(Router, ImmediatePostDoesNotAllocate) {
    log.reserve(10'000);
    for (std::uint32_t type = 0; type < 1000; ++type)
        router->register_for_message(observer(0), type);
    router->register_for_anything(observer(0));
    const std::size_t before = allocations;
    for (std::uint32_t type = 0; type < 2000; ++type)
        EXPECT_EQ(type < 1000 ? 1 : 0, post(*router, type, 10));
    EXPECT_EQ(before, allocations);
}

TEST_F(Router, DelayedPostIsAllOrNothingWhenMemoryRunsOut) {
    cMessageStable* const holder = make_holder(1, 10);
    bool posted = false;
    for (std::size_t allowed = 0; !posted; ++allowed) {
        router = std::make_unique<cMessageRouter>();
        allocations_left = allowed;
        try {
            router->post_message_delayed(holder, 0);
            posted = true;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = SIZE_MAX;
        router->update(0);
        EXPECT_EQ(posted, !log.empty()) << allowed << " allocations";
    }
    EXPECT_THAT(log, ElementsAre(-10));
}

} // namespace
