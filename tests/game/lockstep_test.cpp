// SPDX-License-Identifier: MIT
#include "lockstep.h"

#include "home.h"

#include <gmock/gmock.h>

#include <deque>
#include <memory>
#include <random>

using namespace lantern;
using testing::HasSubstr;

namespace {

// One end of a way in memory. Packets take up to `slowness` ticks, in order.
class MemoryLink : public Link {
public:
    bool is_open() const override { return true; }

    void send(const Packet& packet) override {
        bytes += packet.size();
        other->inbox.push_back(packet);
    }

    std::optional<Packet> receive() override {
        if (inbox.empty() || (slowness > 0 && random() % slowness != 0))
            return {};
        Packet packet = inbox.front();
        inbox.pop_front();
        return packet;
    }

    const std::string& trouble() const override { return broken; }

    MemoryLink* other = nullptr;
    std::string broken;
    std::deque<Packet> inbox;
    std::uint32_t slowness = 0;
    std::size_t bytes = 0;
    std::minstd_rand random{7};
};

struct Side {
    Side(MemoryLink& link, std::uint32_t own_player, const Handshake& handshake)
        : player(own_player), session(link, own_player, handshake), simulation(home(), 2) {}

    void tick() {
        const auto inputs = session.tick(pilot(home(), simulation.state(), player));
        if (!inputs)
            return;
        simulation.step(*inputs);
        if (simulation.state().step % STEPS_PER_SECOND == 0)
            session.compare(simulation.state().step, simulation.digest());
    }

    std::uint32_t player;
    Lockstep session;
    Simulation simulation;
};

class LockstepTest : public testing::Test {
protected:
    void start(const Handshake& first = {}, const Handshake& second = {}) {
        for (MemoryLink& link : links) {
            link.other = &link == &links[0] ? &links[1] : &links[0];
            link.inbox.clear();
            link.broken.clear();
        }
        sides[0] = std::make_unique<Side>(links[0], 0, first);
        sides[1] = std::make_unique<Side>(links[1], 1, second);
    }

    void run(int ticks) {
        for (int i = 0; i < ticks; ++i) {
            sides[0]->tick();
            sides[1]->tick();
        }
    }

    void make_different() {
        State state = sides[1]->simulation.state();
        state.ships[0].position.x += 1e-5;
        sides[1]->simulation.restore(state);
    }

    MemoryLink links[2];
    std::unique_ptr<Side> sides[2];
};

TEST_F(LockstepTest, SixHundredStepsOverASlowLinkEndInTheSameState) {
    links[0].slowness = links[1].slowness = 2;
    start();
    for (int i = 0; i < 4000; ++i)
        for (auto& side : sides)
            if (side->simulation.state().step < 600)
                side->tick();
    for (const auto& side : sides) {
        EXPECT_EQ("", side->session.end());
        EXPECT_EQ(600U, side->simulation.state().step);
    }
    EXPECT_EQ(sides[0]->simulation.digest(), sides[1]->simulation.digest());
    EXPECT_GT(sides[0]->simulation.state().ships[1].score, 0U)
        << "the other player's inputs arrive";
}

TEST_F(LockstepTest, DifferenceIsFoundWithinASecondAndNamesTheStep) {
    start();
    run(150);
    make_different();
    run(60);
    for (const auto& side : sides) {
        EXPECT_TRUE(side->session.has_diverged());
        EXPECT_THAT(side->session.end(), HasSubstr("differ since step 180 (digest "));
    }
}

TEST_F(LockstepTest, SidesThatCannotAgreeRefuseAndSayWhy) {
    struct Row {
        Handshake other;
        const char* reason;
    };

    for (const Row& row :
         {Row{{9, 2, 3, 4}, "version of the protocol"}, Row{{1, 8, 3, 4}, "version of the game"},
          Row{{1, 2, 0xabc, 4}, "trigonometry tables; build quillon with "},
          Row{{1, 2, 3, 5}, "another island"}}) {
        start({1, 2, 3, 4}, row.other);
        run(3);
        EXPECT_THAT(sides[0]->session.end(), HasSubstr(row.reason));
        EXPECT_NE("", sides[1]->session.end());
        EXPECT_EQ(0U, sides[0]->simulation.state().step);
    }
}

TEST_F(LockstepTest, OtherSideThatVanishesOrLeavesEndsTheGame) {
    start();
    run(100);
    sides[1]->session.leave();
    const std::uint32_t at_goodbye = sides[0]->simulation.state().step;
    run(20);
    EXPECT_THAT(sides[0]->session.end(), HasSubstr("has left"));
    EXPECT_GE(sides[0]->simulation.state().step, at_goodbye + INPUT_DELAY - 1)
        << "what was sent before the goodbye is played";

    start();
    run(100);
    links[0].broken = "the way is broken";
    for (int i = 0; i < 20; ++i)
        sides[0]->tick();
    EXPECT_EQ("the way is broken", sides[0]->session.end());

    start();
    links[0].broken = "nobody is there";
    sides[0]->tick();
    EXPECT_EQ("nobody is there", sides[0]->session.end()) << "before the handshake";

    start();
    run(100);
    const std::uint32_t last = sides[0]->simulation.state().step;
    for (int i = 0; i < 301; ++i)
        sides[0]->tick();
    EXPECT_THAT(sides[0]->session.end(), HasSubstr("has not answered for 5 seconds"));
    EXPECT_LE(sides[0]->simulation.state().step, last + INPUT_DELAY + 1);
}

TEST_F(LockstepTest, DamagedPacketsChangeNothing) {
    start();
    std::minstd_rand random(3);
    for (int i = 0; i < 600; ++i) {
        Packet noise(random() % 40);
        for (std::uint8_t& byte : noise)
            byte = static_cast<std::uint8_t>(random());
        if (noise.size() == 4 || noise.size() == 17) // a whole input, a whole digest
            noise.pop_back();
        if (!noise.empty())
            noise[0] = noise.size() > 1 ? "IDGx"[random() % 4] : 'x';
        if (i > 3)
            links[i % 2].inbox.push_back(noise);
        run(1);
    }
    EXPECT_EQ("", sides[0]->session.end());
    EXPECT_GT(sides[0]->simulation.state().step, 590U);
    sides[0]->tick(); // the other side is a step further
    EXPECT_EQ(sides[0]->simulation.state().step, sides[1]->simulation.state().step);
    EXPECT_EQ(sides[0]->simulation.digest(), sides[1]->simulation.digest());
}

TEST_F(LockstepTest, SmoothLinkCarriesLessThanAKilobyteASecond) {
    start();
    run(10 * STEPS_PER_SECOND);
    EXPECT_LT(links[0].bytes, 10U * 1024);
}

} // namespace
