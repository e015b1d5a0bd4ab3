// SPDX-License-Identifier: MIT
// The packets that sides exchange: a kind, then its fields in little-endian order.
//
// | kind    | fields                                                             |
// |---------|--------------------------------------------------------------------|
// | Hello   | the bytes "qnet", 16-bit packet version, 32-bit protocol           |
// | Welcome | none                                                               |
// | Refusal | 8-bit reason, 16-bit packet version, 32-bit protocol of the host   |
// | Message | 1 to MAX_NETWORK_MESSAGE_BYTES bytes of the game                   |
//
// The side that joins says Hello, the host answers with Welcome or Refusal, and messages follow.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace quillon::network_enet {

// Changes with every change of the packets but a longer Hello.
inline constexpr std::uint16_t PACKET_VERSION = 1;

enum class PacketKind : std::uint8_t { Hello = 1, Welcome, Refusal, Message };

enum class RefusalReason : std::uint8_t { OtherVersion = 1, OtherProtocol, Full };

struct Packet {
    PacketKind kind = PacketKind::Welcome;
    RefusalReason reason{};                  // of a refusal
    std::uint16_t version = 0;               // of the sender; of a hello and a refusal
    std::uint32_t protocol = 0;              // of the sender; 0 in a hello of another version
    std::span<const std::uint8_t> message{}; // a part of the bytes that were read
};

// Nothing for bytes that are not a packet: an unknown kind, a wrong length, a reason out of range.
std::optional<Packet> read_packet(std::span<const std::uint8_t> bytes);

std::array<std::uint8_t, 11> hello_packet(std::uint32_t protocol);
std::array<std::uint8_t, 1> welcome_packet();
std::array<std::uint8_t, 8> refusal_packet(RefusalReason reason, std::uint32_t protocol);

} // namespace quillon::network_enet
