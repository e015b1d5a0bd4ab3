// SPDX-License-Identifier: MIT
#include "network.h"

#include <stdexcept>

namespace lantern {

namespace {

constexpr std::uint32_t GAME = 0x4c414e54; // tells this game's packets from other games'
constexpr double PATIENCE = 10.0;          // seconds to reach a host

} // namespace

NetworkLink::NetworkLink(const quillon::Network& served, const std::string& address,
                         std::uint16_t port)
    : network(served) {
    const bool begun = address.empty() ? network.host(port, 1, GAME)
                                       : network.join(address.c_str(), port, GAME, PATIENCE) != 0;
    if (!begun)
        throw std::runtime_error(network.last_error());
}

void NetworkLink::send(const Packet& packet) {
    network.send(peer, packet.data(), static_cast<std::uint32_t>(packet.size()), true);
}

std::optional<Packet> NetworkLink::receive() {
    quillon::NetworkEvent event;
    while (network.poll(event)) {
        if (event.kind == quillon::NetworkEvent::JOINED)
            peer = event.peer;
        else if (event.kind == quillon::NetworkEvent::LEFT)
            lost = event.text;
        else if (event.kind == quillon::NetworkEvent::MESSAGE)
            return Packet(event.data, event.data + event.size);
    }
    return {};
}

} // namespace lantern
