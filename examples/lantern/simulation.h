// SPDX-License-Identifier: MIT
// What happens on the island, in steps of a sixtieth of a second, to the bit the same everywhere.
//
// Three rules make it so. A step takes its inputs and nothing else: no clock, no chance, no device.
// It uses the library's arithmetic only, which rounds alike with every compiler. And what outlives
// a step is the flat form of the state, nothing beside it: a state that was stored and read back
// goes on to the bit as the one that was kept.
#pragma once

#include "island.h"

#include <quillon/quillon.h>

#include <array>
#include <cstdint>
#include <vector>

namespace lantern {

// Raised with every change that lets the same inputs lead to another state.
inline constexpr std::uint32_t SIMULATION_VERSION = 1;

inline constexpr std::uint32_t STEPS_PER_SECOND = 60;
inline constexpr std::size_t PLAYERS = 2;

// What a player does during one step.
struct Input {
    enum Button : std::uint8_t { BOOST = 1, BRAKE = 2 };

    std::int8_t turn = 0;  // -127 to the left, 127 to the right
    std::int8_t climb = 0; // -127 down, 127 up
    std::uint8_t buttons = 0;

    bool operator==(const Input&) const = default;
};

using Inputs = std::array<Input, PLAYERS>;

// A glider and its player.
struct Ship {
    quillon::cVector3D position;
    quillon::cVector3D velocity; // metres per second
    quillon::cVector3D attitude; // pitch, yaw and roll, as __nsMatrix3d_euler takes them
    float health = 1.0F;         // 0 to 1
    float energy = 1.0F;         // 0 to 1, spent by boosting
    std::uint32_t score = 0;
    std::uint32_t chain = 0;      // lanterns in a row, each soon after the one before
    std::uint32_t chain_ends = 0; // the step that breaks the row
    std::uint32_t returns = 0;    // the step that brings a crashed ship back; 0 while it flies

    bool is_flying() const { return returns == 0; }

    // Its axes as columns: right, up and forward.
    quillon::cMatrix3D orientation() const;
};

// All that one step hands to the next. Its flat form is that of its members, one after another.
class State final : public quillon::cSerializable {
public:
    std::uint32_t step = 0;
    std::uint32_t players = 1;
    std::array<Ship, PLAYERS> ships;
    std::array<std::uint32_t, Island::LANTERNS> relights{}; // the step of each; 0 while it burns

    std::uint32_t serialize(std::uint8_t* buffer) const override;
    std::uint32_t deserialize(const std::uint8_t* buffer) override;
    std::uint32_t serialized_size() const override;
};

// What the simulation posts to its router. Delays count steps.
enum EventType : std::uint32_t { GATHERED, STRUCK, CRASHED, SHIP_RETURNS, LANTERN_RETURNS };

struct Event : quillon::cMessage {
    std::uint32_t which; // the lantern of LANTERN_RETURNS, else the player
    std::uint32_t lantern = 0;
    float force = 0.0F; // of a blow, in metres per second
};

class Simulation final : quillon::cMessageObserver {
public:
    // `island` outlives the simulation.
    Simulation(const Island& island, std::uint32_t players);

    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    ~Simulation();

    void step(const Inputs& inputs);

    const State& state() const { return now; }

    // Goes on from another state of the same island.
    void restore(const State& state);

    // A hash of the flat form of the state.
    std::uint64_t digest() const;

    // Where to register for events. Observers look on: nothing that they do may reach the state.
    quillon::cMessageRouter& events() { return router; }

private:
    void receive_message(quillon::cMessage* message) override;
    void fly(std::uint32_t player, const Input& input);
    void collide(std::uint32_t player);
    void gather(std::uint32_t player, const quillon::cVector3D& from);
    void damage(std::uint32_t player, double force);
    void score(Ship& ship) const;
    void post(Event event);
    void post_at(std::uint32_t step, EventType type, std::uint32_t which);
    void listen();
    void forget_delayed_events();
    void settle();
    Ship ship_at_start(std::uint32_t player) const;

    const Island& island;
    State now;
    std::vector<std::uint8_t> flat; // of `now`
    quillon::cMessageRouter router;
};

// What two simulations must share beside their version: the trigonometry tables.
std::uint64_t digest_of_tables();

} // namespace lantern
