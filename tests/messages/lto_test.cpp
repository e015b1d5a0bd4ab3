// The router linked into its host as one optimised unit.
#include "quillon/messages/router.h"

#include <gtest/gtest.h>

namespace {

using namespace quillon;

struct Numbered {
    std::uint32_t messageType;
    int number;
};

class Adder final : public cMessageObserver {
public:
    void receive_message(cMessage* message) override {
        sum += reinterpret_cast<Numbered*>(message)->number;
    }

    int sum = 0;
};

// An access to the type as a member of another struct than the host's could be moved past the
// host's own, and then reads 3.
TEST(RouterInOneLink, ReadsTheTypeThatTheHostWroteLast) {
    cMessageRouter router;
    Adder adder;
    router.register_for_message(&adder, 7);
    for (int number = 1; number <= 1000; ++number) {
        auto* const holder = new cMessageHolder<Numbered>({3, number});
        holder->get().messageType = 7;
        EXPECT_EQ(1, router.post_message_delayed(holder, 0));
        Numbered numbered{3, 1};
        numbered.messageType = 7;
        EXPECT_EQ(1, router.post_message(reinterpret_cast<cMessage*>(&numbered)));
    }
    router.update(0);
    EXPECT_EQ(1000 + 500'500, adder.sum);
}

} // namespace
