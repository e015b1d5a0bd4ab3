// SPDX-License-Identifier: MIT
#include "simulation.h"

#include "home.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>

using namespace lantern;
using testing::ElementsAre;
using testing::Pair;

namespace {

class EventCount final : public quillon::cMessageObserver {
public:
    void receive_message(quillon::cMessage* message) override { ++counts[message->messageType]; }

    std::map<std::uint32_t, int> counts;
};

void fly(Simulation& simulation, int steps, const std::function<Inputs(const State&)>& players) {
    for (int i = 0; i < steps; ++i)
        simulation.step(players(simulation.state()));
}

// Into the nearest rock or hill, again and again.
Inputs diving(const State&) {
    return {Input{10, -127, Input::BOOST}, Input{-30, -127, Input::BOOST}};
}

// Up to the sky and around all borders.
Inputs weaving(const State& state) {
    const auto turn = static_cast<std::int8_t>(state.step * 7 % 255 - 127);
    const auto climb = static_cast<std::int8_t>(state.step * 3 % 255 - 127);
    return {Input{turn, climb, Input::BOOST}, Input{climb, 127, Input::BRAKE}};
}

TEST(Simulation, DigestsAndEventsAreTheSameEverywhere) {
    EXPECT_EQ(0x397e18a0709d984dU, home().digest());
    EXPECT_EQ(0xac655e0aa0060846U, digest_of_tables());
    EventCount seen; // before the router that it is registered with for good
    Simulation simulation(home(), 2);
    simulation.events().register_for_anything(&seen);
    fly(simulation, 600, piloted);
    EXPECT_EQ(0x8a5cd66c8f3c8e11U, simulation.digest());
    fly(simulation, 1200, diving);
    EXPECT_EQ(0xedeb798a5829986dU, simulation.digest());
    fly(simulation, 6000, weaving);
    EXPECT_EQ(0xdf05e1cd74638b1aU, simulation.digest());
    EXPECT_THAT(seen.counts, ElementsAre(Pair(GATHERED, 16), Pair(STRUCK, 121), Pair(CRASHED, 8),
                                         Pair(SHIP_RETURNS, 8), Pair(LANTERN_RETURNS, 16)));
    Simulation alone(home(), 1);
    fly(alone, 600, piloted);
    EXPECT_EQ(0xa91ed75a57fd840bU, alone.digest());
}

TEST(Simulation, StoredStateGoesOnToTheBit) {
    struct Row {
        const char* name;
        Inputs (*players)(const State&);
        int steps;
    };

    for (const Row& row :
         {Row{"lanterns are out", piloted, 400}, Row{"ships are lost", diving, 700}}) {
        SCOPED_TRACE(row.name);
        Simulation kept(home(), 2);
        fly(kept, row.steps, row.players);
        std::vector<std::uint8_t> flat(kept.state().serialized_size());
        kept.state().serialize(flat.data());
        State read;
        EXPECT_EQ(flat.size(), read.deserialize(flat.data()));

        Simulation restored(home(), 1);
        fly(restored, 100, row.players); // leaves delayed events that must not arrive
        restored.restore(read);
        for (int i = 0; i < 1200; ++i) {
            ASSERT_EQ(kept.digest(), restored.digest()) << i << " steps after";
            const Inputs inputs = row.players(kept.state());
            kept.step(inputs);
            restored.step(inputs);
        }
    }
}

} // namespace
