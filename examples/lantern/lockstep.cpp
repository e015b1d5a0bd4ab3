// SPDX-License-Identifier: MIT
#include "lockstep.h"

#include <cinttypes>
#include <cstdio>
#include <span>

namespace lantern {

namespace {

enum PacketType : std::uint8_t { HANDSHAKE = 'H', INPUT = 'I', DIGEST = 'D', GOODBYE = 'G' };

constexpr std::size_t WORD = sizeof(std::uint64_t);
constexpr std::uint32_t PATIENCE = 5 * STEPS_PER_SECOND; // ticks without a packet

// A type and words, each with its least significant byte first.
Packet packet_of(PacketType type, std::span<const std::uint64_t> words) {
    Packet packet{type};
    for (const std::uint64_t word : words)
        for (std::size_t i = 0; i < WORD; ++i)
            packet.push_back(static_cast<std::uint8_t>(word >> (8 * i)));
    return packet;
}

// 0 where the packet ends before.
std::uint64_t word_of(const Packet& packet, std::size_t number) {
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < WORD && 1 + number * WORD + i < packet.size(); ++i)
        word |= std::uint64_t{packet[1 + number * WORD + i]} << (8 * i);
    return word;
}

std::string in_hex(std::uint64_t digest) {
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, digest);
    return text;
}

// What a difference in each word of the handshake means, and what to do.
constexpr const char* DIFFERENCES[] = {
    "speaks another version of the protocol; install the same release",
    "plays another version of the game; install the same release",
    "has other trigonometry tables; build quillon with QUILLON_EXACT_TABLES",
    "flies over another island; use the same hills.pgm",
};

} // namespace

Handshake handshake_for(const Island& island) {
    return {PROTOCOL_VERSION, SIMULATION_VERSION, digest_of_tables(), island.digest()};
}

Lockstep::Lockstep(Link& way, std::uint32_t own_player, const Handshake& handshake)
    : link(way),
      player(own_player),
      ours(handshake),
      own_inputs(INPUT_DELAY),
      their_inputs(INPUT_DELAY) {}

std::optional<Inputs> Lockstep::tick(const Input& own) {
    if (!greeted && link.is_open())
        greet();
    for (auto packet = link.receive(); packet && why.empty(); packet = link.receive())
        read(*packet);
    if (last_words.empty())
        last_words = link.trouble();
    if (!agreed || their_inputs.empty())
        finish(last_words);
    if (greeted && ++silence > PATIENCE)
        finish("the other player has not answered for 5 seconds");
    if (!agreed || !why.empty())
        return {};
    if (own_inputs.size() <= INPUT_DELAY) {
        own_inputs.push_back(own);
        link.send({INPUT, static_cast<std::uint8_t>(own.turn), static_cast<std::uint8_t>(own.climb),
                   own.buttons});
    }
    if (their_inputs.empty())
        return {};
    Inputs inputs;
    inputs[player] = own_inputs.front();
    inputs[1 - player] = their_inputs.front();
    own_inputs.pop_front();
    their_inputs.pop_front();
    return inputs;
}

void Lockstep::compare(std::uint32_t step, std::uint64_t digest) {
    own_digests.push_back({step, digest});
    link.send(packet_of(DIGEST, std::array<std::uint64_t, 2>{step, digest}));
    match_digests();
}

void Lockstep::leave() {
    if (greeted && why.empty())
        link.send({GOODBYE});
    finish("the game was left");
}

void Lockstep::greet() {
    link.send(packet_of(HANDSHAKE, ours));
    greeted = true;
}

// A packet of another length or type than we know is dropped.
void Lockstep::read(const Packet& packet) {
    // The other side takes no step without our inputs, so it is never further ahead.
    constexpr std::size_t limit = 2 * INPUT_DELAY + 2;
    const PacketType type = packet.empty() ? PacketType{} : PacketType{packet[0]};
    silence = 0;
    if (type == HANDSHAKE)
        read_handshake(packet);
    else if (type == GOODBYE && packet.size() == 1)
        last_words = "the other player has left";
    else if (type == INPUT && packet.size() == 4 && their_inputs.size() < limit)
        their_inputs.push_back(
            {static_cast<std::int8_t>(packet[1]), static_cast<std::int8_t>(packet[2]), packet[3]});
    else if (type == DIGEST && packet.size() == 1 + 2 * WORD && their_digests.size() < limit)
        their_digests.push_back({word_of(packet, 0), word_of(packet, 1)});
    match_digests();
}

// Whatever later versions append or drop, the number of the protocol stays in its place.
void Lockstep::read_handshake(const Packet& packet) {
    for (std::size_t i = 0; i < ours.size(); ++i)
        if (word_of(packet, i) != ours[i])
            finish(std::string("the other player ") + DIFFERENCES[i] + " on both sides (" +
                   in_hex(word_of(packet, i)) + " there, " + in_hex(ours[i]) + " here)");
    agreed = why.empty();
}

void Lockstep::match_digests() {
    for (; !own_digests.empty() && !their_digests.empty() && !diverged; own_digests.pop_front()) {
        const StepDigest own = own_digests.front();
        const StepDigest other = their_digests.front();
        their_digests.pop_front();
        if (own.step == other.step && own.digest == other.digest)
            continue;
        diverged = true;
        finish("the two games differ since step " + std::to_string(own.step) + " (digest " +
               in_hex(own.digest) + " here, " + in_hex(other.digest) +
               " there); report this fault");
    }
}

void Lockstep::finish(const std::string& reason) {
    if (why.empty())
        why = reason;
}

} // namespace lantern
