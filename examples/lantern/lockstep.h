// SPDX-License-Identifier: MIT
// Two players in lockstep: inputs travel, states do not.
//
// Each side plays an input a few steps after it was given, and takes a step once it has the inputs
// of both. Once a second the sides compare the digests of their states: as the simulation is exact,
// nothing but a fault can make them differ, and that ends the game.
#pragma once

#include "simulation.h"

#include <array>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace lantern {

using Packet = std::vector<std::uint8_t>;

// The way to the other player. Packets arrive once and in order.
class Link {
public:
    virtual ~Link() = default;

    virtual bool is_open() const = 0;
    virtual void send(const Packet& packet) = 0;
    virtual std::optional<Packet> receive() = 0;
    virtual const std::string& trouble() const = 0; // why it is broken; empty while it is not
};

// Raised with every change of the packets.
inline constexpr std::uint32_t PROTOCOL_VERSION = 1;

// The steps from an input to its effect: a tenth of a second, to hide the way to the other side.
inline constexpr std::uint32_t INPUT_DELAY = 6;

// What both sides must have in common, sent first of all: the versions of the protocol and the
// simulation, and the digests of the trigonometry tables and the island.
using Handshake = std::array<std::uint64_t, 4>;

Handshake handshake_for(const Island& island);

class Lockstep {
public:
    // `link` outlives it; `player` is the number of this side's ship.
    Lockstep(Link& link, std::uint32_t player, const Handshake& handshake);

    // One sixtieth of a second: sends and receives, and takes `own` for a later step.
    // The inputs of the next step, or nothing while the other side's are missing.
    std::optional<Inputs> tick(const Input& own);

    // The digest after a step that both sides compare.
    void compare(std::uint32_t step, std::uint64_t digest);

    // Says goodbye, so that the other side need not wait.
    void leave();

    // Why the game together is over, in a line for the user; empty while it is not.
    const std::string& end() const { return why; }

    // True if it is over since the two games were not the same any more.
    bool has_diverged() const { return diverged; }

private:
    struct StepDigest {
        std::uint64_t step;
        std::uint64_t digest;
    };

    void greet();
    void read(const Packet& packet);
    void read_handshake(const Packet& packet);
    void match_digests();
    void finish(const std::string& reason);

    Link& link;
    std::uint32_t player;
    Handshake ours;
    bool greeted = false; // we sent our handshake
    bool agreed = false;  // theirs arrived and is the same
    std::deque<Input> own_inputs;
    std::deque<Input> their_inputs;
    std::deque<StepDigest> own_digests;
    std::deque<StepDigest> their_digests;
    std::uint32_t silence = 0; // ticks since the last packet
    std::string
        last_words; // why no more packets come; the steps that their inputs reach come first
    std::string why;
    bool diverged = false;
};

} // namespace lantern
