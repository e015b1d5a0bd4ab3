// SPDX-License-Identifier: MIT
// The way to the other player through the plug-in that serves NET.
#pragma once

#include "lockstep.h"

#include <quillon/plugins/network.h>

namespace lantern {

class NetworkLink final : public Link {
public:
    static constexpr std::uint16_t PORT = 17377;

    // Hosts where `address` is empty, otherwise joins the host there.
    // Throws std::runtime_error with a line for the user.
    NetworkLink(const quillon::Network& network, const std::string& address, std::uint16_t port);

    NetworkLink(const NetworkLink&) = delete;
    NetworkLink& operator=(const NetworkLink&) = delete;

    ~NetworkLink() override { network.leave(); }

    bool is_open() const override { return peer != 0; }

    void send(const Packet& packet) override;
    std::optional<Packet> receive() override;

    const std::string& trouble() const override { return lost; }

private:
    const quillon::Network& network;
    quillon::PeerHandle peer = 0;
    std::string lost;
};

} // namespace lantern
