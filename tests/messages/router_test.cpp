#include "quillon/messages/router.h"

#include <gtest/gtest.h>

namespace {

using namespace quillon;

class Counter final : public cMessageObserver {
public:
    void receive_message(cMessage*) override { ++received; }

    int received = 0;
};

TEST(Router, DeliversByType) {
    cMessageRouter router;
    Counter counter;
    EXPECT_TRUE(router.register_for_message(&counter, 7));
    EXPECT_FALSE(router.register_for_message(&counter, 7));

    struct Big {
        std::uint32_t messageType = 7;
        double d[9]{};
    };

    cMessage message{7};
    EXPECT_EQ(1, router.post_message(&message));
    EXPECT_EQ(1, router.post_message_delayed(new cMessageHolder<Big>(Big{}), 0.5F));
    EXPECT_EQ(1, router.post_message_delayed(new cMessageHolder<cMessage>(message), 0.5F));
    router.update(0.5F);
    EXPECT_EQ(3, counter.received);
}

} // namespace
