// SPDX-License-Identifier: MIT
#include "packet.h"

#include "plugins/contracts/network.h"

#include <algorithm>

namespace quillon::network_enet {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::uint8_t, 4> MAGIC = {'q', 'n', 'e', 't'};

constexpr std::uint8_t low(std::uint32_t value, int byte) {
    return static_cast<std::uint8_t>(value >> (8 * byte));
}

std::uint16_t read_16(Bytes bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

std::uint32_t read_32(Bytes bytes) {
    return read_16(bytes) | std::uint32_t{read_16(bytes.subspan(2))} << 16;
}

// Of another version, only the beginning is known.
std::optional<Packet> read_hello(Bytes fields) {
    if (fields.size() < 6 || !std::ranges::equal(fields.first(4), MAGIC))
        return std::nullopt;
    Packet hello{.kind = PacketKind::Hello, .version = read_16(fields.subspan(4))};
    if (hello.version != PACKET_VERSION)
        return hello;
    if (fields.size() != 10)
        return std::nullopt;
    hello.protocol = read_32(fields.subspan(6));
    return hello;
}

std::optional<Packet> read_refusal(Bytes fields) {
    if (fields.size() != 7 || fields[0] < static_cast<int>(RefusalReason::OtherVersion) ||
        fields[0] > static_cast<int>(RefusalReason::Full))
        return std::nullopt;
    return Packet{.kind = PacketKind::Refusal,
                  .reason = static_cast<RefusalReason>(fields[0]),
                  .version = read_16(fields.subspan(1)),
                  .protocol = read_32(fields.subspan(3))};
}

} // namespace

std::optional<Packet> read_packet(Bytes bytes) {
    if (bytes.empty())
        return std::nullopt;
    const Bytes fields = bytes.subspan(1);
    switch (static_cast<PacketKind>(bytes[0])) {
    case PacketKind::Hello:
        return read_hello(fields);
    case PacketKind::Welcome:
        return fields.empty() ? std::optional(Packet{}) : std::nullopt;
    case PacketKind::Refusal:
        return read_refusal(fields);
    case PacketKind::Message:
        if (fields.empty() || fields.size() > MAX_NETWORK_MESSAGE_BYTES)
            return std::nullopt;
        return Packet{.kind = PacketKind::Message, .message = fields};
    }
    return std::nullopt;
}

std::array<std::uint8_t, 11> hello_packet(std::uint32_t protocol) {
    return {static_cast<std::uint8_t>(PacketKind::Hello),
            MAGIC[0],
            MAGIC[1],
            MAGIC[2],
            MAGIC[3],
            low(PACKET_VERSION, 0),
            low(PACKET_VERSION, 1),
            low(protocol, 0),
            low(protocol, 1),
            low(protocol, 2),
            low(protocol, 3)};
}

std::array<std::uint8_t, 1> welcome_packet() {
    return {static_cast<std::uint8_t>(PacketKind::Welcome)};
}

std::array<std::uint8_t, 8> refusal_packet(RefusalReason reason, std::uint32_t protocol) {
    return {static_cast<std::uint8_t>(PacketKind::Refusal),
            static_cast<std::uint8_t>(reason),
            low(PACKET_VERSION, 0),
            low(PACKET_VERSION, 1),
            low(protocol, 0),
            low(protocol, 1),
            low(protocol, 2),
            low(protocol, 3)};
}

} // namespace quillon::network_enet
