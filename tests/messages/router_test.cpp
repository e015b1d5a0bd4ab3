#include "quillon/messages/router.h"

#include "allocations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace quillon;
using testing::ElementsAre;
using testing::IsEmpty;

// A router, and observers who write "name:type" into one record.
class Router : public testing::Test {
protected:
    class Observer final : public cMessageObserver {
    public:
        Observer(Router& test, const char* title) : owner(test), name(title) {}

        void receive_message(cMessage* message) override {
            owner.record.push_back(name + ':' + std::to_string(message->messageType));
            if (react)
                react();
        }

        std::function<void()> react;

    private:
        Router& owner;
        std::string name;
    };

    class Holder final : public cMessageStable {
    public:
        Holder(Router& test, std::uint32_t type) : cMessageStable(cMessage{type}), owner(test) {}

        ~Holder() override { owner.record.push_back('~' + std::to_string(message.messageType)); }

    private:
        Router& owner;
    };

    std::int16_t post(std::uint32_t type) {
        cMessage message{type};
        return router.post_message(&message);
    }

    std::int16_t post_delayed(std::uint32_t type, float delay) {
        return router.post_message_delayed(new Holder(*this, type), delay);
    }

    std::vector<std::string> update(float passed) {
        record.clear();
        router.update(passed);
        return record;
    }

    std::vector<std::string> record;
    Observer a{*this, "a"}, b{*this, "b"}, c{*this, "c"}, every{*this, "every"};
    cMessageRouter router;
};

TEST_F(Router, TypeComesBeforeAnythingInOrderOfRegistration) {
    EXPECT_TRUE(router.register_for_anything(&every));
    EXPECT_FALSE(router.register_for_anything(&every));
    EXPECT_TRUE(router.register_for_message(&b, 1));
    EXPECT_TRUE(router.register_for_message(&every, 1));
    EXPECT_FALSE(router.register_for_message(&b, 1));
    EXPECT_EQ(2, post(1));
    EXPECT_EQ(0, post(2));
    EXPECT_THAT(record, ElementsAre("b:1", "every:1", "every:1", "every:2"));
}

TEST_F(Router, OnlyRegistrationAndDelayedPostsMakeMailboxes) {
    EXPECT_EQ(0, post(1));
    EXPECT_FALSE(router.unregister_for_message(&a, 1));
    EXPECT_FALSE(router.register_for_message(nullptr, 1));
    EXPECT_EQ(0, router.unregister_all(&a));
    EXPECT_EQ(router.mailboxes.begin(), router.mailboxes.end());
    EXPECT_EQ(0, post_delayed(1, 0));
    EXPECT_NE(nullptr, router.mailboxes.find(1));
    router.update(0);
}

TEST_F(Router, UnregisterAllLeavesAnything) {
    router.register_for_anything(&a);
    for (const std::uint32_t type : {3U, 1U, 0xFFFFFFFFU})
        router.register_for_message(&a, type);
    EXPECT_EQ(3, router.unregister_all(&a));
    EXPECT_EQ(0, post(3));
    EXPECT_THAT(record, ElementsAre("a:3"));
}

TEST_F(Router, ResultIsCutTo16Bits) {
    router.register_for_message(&a, 1);
    for (int i = 0; i < 40'000; ++i)
        router.mailboxes.find(1)->observers.add(&b, DSP_APPEND);
    EXPECT_EQ(static_cast<std::int16_t>(40'001), post(1));
}

TEST_F(Router, DelayCountsDownAndAnythingComesFirst) {
    router.register_for_message(&a, 1);
    router.register_for_anything(&every);
    EXPECT_EQ(1, post_delayed(1, 1.0F));
    EXPECT_THAT(record, IsEmpty());
    EXPECT_THAT(update(0.4F), IsEmpty());
    EXPECT_THAT(update(0.4F), IsEmpty());
    EXPECT_EQ(1.0F - 0.4F - 0.4F, router.anything.queue.get(0)->second);
    EXPECT_THAT(update(0.4F), ElementsAre("every:1", "a:1", "~1"));
    EXPECT_THAT(update(9), IsEmpty());
}

TEST_F(Router, DueIsWhatIsNotAboveTheTimePassed) {
    struct Case {
        float delay, passed;
        bool due;
    };

    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (const auto& [delay, passed, due] : {Case{0, 0, true},
                                             {0, -1, false},
                                             {0.3F, 0.3F, true},
                                             {0.30000004F, 0.3F, false},
                                             {5, nan, true},
                                             {nan, 0, true},
                                             {-1, -0.5F, true},
                                             {0.0F, -0.0F, true}}) {
        cMessageRouter fresh;
        auto* const holder = new Holder(*this, 1);
        fresh.post_message_delayed(holder, delay);
        record.clear();
        fresh.update(passed);
        EXPECT_EQ(due, !record.empty()) << delay << " by " << passed;
        if (!due)
            delete holder; // which the router leaves alone when it dies
    }
}

TEST_F(Router, QueueIsInOrderOfPostingAndMailboxesInOrderOfType) {
    for (const auto& [type, delay] :
         {std::pair(0x80000000U, 1.0F), {2U, 2.0F}, {2U, 1.0F}, {1U, 1.0F}})
        post_delayed(type, delay);
    for (const std::uint32_t type : {2U, 0x80000000U, 1U}) // in time: the delivery asks for them
        router.register_for_message(&a, type);
    EXPECT_THAT(update(1), ElementsAre("a:1", "~1", "a:2", "~2", "a:2147483648", "~2147483648"));
    EXPECT_EQ(1.0F, router.mailboxes.find(2)->queue.get(0)->second);
    EXPECT_THAT(update(1), ElementsAre("a:2", "~2"));
}

TEST_F(Router, LeavingDuringAWalkMakesTheNextMissItAndJoiningIsInTime) {
    for (Observer* observer : {&a, &b})
        router.register_for_message(observer, 1);
    a.react = [&] {
        router.unregister_for_message(&a, 1);
        router.register_for_message(&c, 1);
    };
    EXPECT_EQ(2, post(1));
    EXPECT_THAT(record, ElementsAre("a:1", "c:1"));
}

TEST_F(Router, PostFromInsideIsNestedAndADelayedOneMeetsWhatIsStillToCome) {
    for (const std::uint32_t type : {4U, 5U, 6U})
        router.register_for_message(&b, type);
    router.register_for_message(&a, 5);
    router.register_for_anything(&every);
    a.react = [&] {
        a.react = nullptr;
        post(4);
        post_delayed(6, 0.5F); // type 6 is still to come, the queue of anything is not
        post_delayed(4, 0.5F); // both are past
        router.update(9);      // nothing, during an update
    };
    post_delayed(5, 1);
    EXPECT_THAT(update(1), ElementsAre("every:5", "b:5", "a:5", "b:4", "every:4", "~5", "b:6"));
    EXPECT_THAT(update(1), ElementsAre("every:6", "~6", "every:4", "b:4", "~4"));
}

TEST_F(Router, ExceptionHoldsUpTheRestAndLosesNothing) {
    for (Observer* observer : {&a, &b, &c})
        router.register_for_message(observer, 1);
    for (const float delay : {1.0F, 3.0F, 1.0F})
        post_delayed(1, delay);
    b.react = [&] {
        b.react = nullptr;
        throw std::string("cut");
    };
    EXPECT_THROW(update(2), std::string);
    EXPECT_THAT(record, ElementsAre("a:1", "b:1"));
    router.unregister_for_message(&a, 1); // takes nobody's turn
    EXPECT_THAT(update(0), ElementsAre("c:1", "~1", "b:1", "c:1", "~1"));
    EXPECT_THAT(update(1), ElementsAre("b:1", "c:1", "~1"));
}

TEST_F(Router, HolderKeepsALargerMessageWhole) {
    struct Large {
        std::uint32_t messageType;
        alignas(16) double numbers[3];
        std::string text;
    };

    class Reader final : public cMessageObserver {
    public:
        void receive_message(cMessage* message) override {
            seen = message;
            text = reinterpret_cast<Large*>(message)->text;
        }

        void* seen = nullptr;
        std::string text;
    };

    Reader reader;
    router.register_for_message(&reader, 9);
    const std::string long_text(100, 'x');
    auto* const holder = new cMessageHolder<Large>({9, {1, 2, 3}, long_text});
    void* const expected = &holder->message;
    router.post_message_delayed(holder, 0);
    router.update(0);
    EXPECT_EQ(expected, reader.seen);
    EXPECT_EQ(long_text, reader.text);
}

TEST_F(Router, ImmediatePostDoesNotAllocate) {
    class Silent final : public cMessageObserver {
        void receive_message(cMessage*) override {}
    } silent;

    for (std::uint32_t type = 0; type < 1000; ++type)
        router.register_for_message(&silent, type);
    router.register_for_anything(&silent);
    const std::size_t before = allocations;
    for (std::uint32_t type = 0; type < 2000; ++type)
        EXPECT_EQ(type < 1000 ? 1 : 0, post(type));
    EXPECT_EQ(before, allocations);
}

TEST_F(Router, DelayedPostIsAllOrNothingWhenMemoryRunsOut) {
    auto* const holder = new Holder(*this, 1);
    bool posted = false;
    for (std::size_t allowed = 0; !posted; ++allowed) {
        cMessageRouter fresh;
        allocations_left = allowed;
        try {
            fresh.post_message_delayed(holder, 0);
            posted = true;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = SIZE_MAX;
        fresh.update(0);
        EXPECT_EQ(posted, !record.empty()) << allowed << " allocations";
    }
    EXPECT_THAT(record, ElementsAre("~1"));
}

} // namespace
