// SPDX-License-Identifier: MIT
// Reads any bytes as a packet: a packet that is read makes the same bytes again.
#include "plugins/network-enet/packet.h"

#include <algorithm>
#include <cstdlib>

using namespace quillon::network_enet;

namespace {

bool equals(std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> expected) {
    return std::ranges::equal(bytes, expected);
}

bool is_sound(std::span<const std::uint8_t> bytes, const Packet& packet) {
    switch (packet.kind) {
    case PacketKind::Hello:
        return packet.version != PACKET_VERSION || equals(bytes, hello_packet(packet.protocol));
    case PacketKind::Welcome:
        return equals(bytes, welcome_packet());
    case PacketKind::Refusal: {
        auto expected = refusal_packet(packet.reason, packet.protocol);
        expected[2] = static_cast<std::uint8_t>(packet.version);
        expected[3] = static_cast<std::uint8_t>(packet.version >> 8);
        return equals(bytes, expected);
    }
    case PacketKind::Message:
        return packet.message.data() == bytes.data() + 1 &&
               packet.message.size() == bytes.size() - 1;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto packet = read_packet({data, size});
    if (packet && !is_sound({data, size}, *packet))
        std::abort();
    return 0;
}
