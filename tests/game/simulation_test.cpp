// SPDX-License-Identifier: MIT
#include "simulation.h"

#include "home.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

using namespace lantern;

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

TEST(Simulation, DigestsAreTheSameEverywhere) {
    EXPECT_EQ(0x397e18a0709d984dU, home().digest());
    EXPECT_EQ(0xac655e0aa0060846U, digest_of_tables());
    Simulation simulation(home(), 2);
    fly(simulation, 600, piloted);
    EXPECT_EQ(0x8a5cd66c8f3c8e11U, simulation.digest());
    fly(simulation, 1200, diving);
    EXPECT_EQ(0xedeb798a5829986dU, simulation.digest());
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

TEST(Simulation, PilotGathersAndChainsAndLanternsReturn) {
    EventCount seen; // before the router that it is registered with for good
    Simulation simulation(home(), 1);
    simulation.events().register_for_anything(&seen);
    fly(simulation, 1800, piloted);
    const Ship& ship = simulation.state().ships[0];
    EXPECT_GT(seen.counts[GATHERED], 20);
    EXPECT_GT(seen.counts[LANTERN_RETURNS], 5);
    EXPECT_EQ(0, seen.counts[CRASHED]);
    EXPECT_GT(ship.score, 10U * seen.counts[GATHERED]) << "chains count for more";
    EXPECT_LE(ship.score, 50U * seen.counts[GATHERED]);
    EXPECT_EQ(0U, simulation.state().ships[1].score) << "nobody plays it";
}

TEST(Simulation, ShipThatIsLostReturnsAfterThreeSecondsWithItsScore) {
    Simulation simulation(home(), 1);
    State state = simulation.state();
    state.ships[0].health = 0.01F;
    simulation.restore(state);
    while (simulation.state().ships[0].is_flying() && simulation.state().step < 2000)
        simulation.step(diving(simulation.state()));
    EXPECT_EQ(0.0F, simulation.state().ships[0].health);
    const std::uint32_t score = simulation.state().ships[0].score;
    EXPECT_GT(score, 0U);
    fly(simulation, 3 * STEPS_PER_SECOND - 2, diving);
    EXPECT_FALSE(simulation.state().ships[0].is_flying());
    fly(simulation, 1, diving);
    EXPECT_TRUE(simulation.state().ships[0].is_flying());
    EXPECT_EQ(1.0F, simulation.state().ships[0].health);
    EXPECT_EQ(score, simulation.state().ships[0].score);
}

TEST(Simulation, NoShipLeavesTheSkyOrEntersRockOrGround) {
    Simulation simulation(home(), 2);
    for (int i = 0; i < 6000; ++i) {
        const auto turn = static_cast<std::int8_t>(i * 7 % 255 - 127);
        const auto climb = static_cast<std::int8_t>(i * 3 % 255 - 127);
        simulation.step({Input{turn, climb, 1}, Input{climb, -127, 1}});
        for (const Ship& ship : simulation.state().ships) {
            const quillon::cVector3D& place = ship.position;
            ASSERT_GE(place.y, home().surface(place.x, place.z)) << "step " << i;
            ASSERT_LE(place.y, 130.0) << "step " << i;
            for (const Rock& rock : home().rocks)
                ASSERT_FALSE(place.y < rock.top &&
                             std::abs(place.x - rock.middle.x) < rock.width / 2.0 &&
                             std::abs(place.z - rock.middle.z) < rock.depth / 2.0)
                    << "step " << i;
        }
    }
}

} // namespace
