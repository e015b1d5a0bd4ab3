// SPDX-License-Identifier: MIT
#include "check/check.h"
#include "plugins/contracts/network.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <thread>

namespace tool {
namespace {

using quillon::Network;
using quillon::NetworkEvent;
using quillon::PeerHandle;

constexpr const char* SUBJECT = "NET";
constexpr std::uint32_t PROTOCOL = 0x7E57;
constexpr auto TIME = std::chrono::seconds(3);

// An event whose message outlives the next call.
struct Event {
    NetworkEvent::Kind kind = NetworkEvent::NOTHING;
    PeerHandle peer = 0;
    std::vector<std::uint8_t> data;
};

// One of two tables, and what it has reported.
struct Side {
    const Network& network;
    std::deque<Event> events = {};

    void poll() {
        for (NetworkEvent event; network.poll(event); event = {}) {
            expect(event.kind != NetworkEvent::NOTHING, "poll returns true with NOTHING");
            events.push_back({event.kind, event.peer, {}});
            if (event.kind == NetworkEvent::MESSAGE)
                events.back().data.assign(event.data, event.data + event.size);
        }
    }
};

// Polls both until `side` has reported an event of that kind, and takes that.
Event await(Side& side, Side& other, NetworkEvent::Kind kind, const std::string& what) {
    const auto end = std::chrono::steady_clock::now() + TIME;
    while (std::chrono::steady_clock::now() < end) {
        side.poll();
        other.poll();
        const auto event = std::ranges::find(side.events, kind, &Event::kind);
        if (event != side.events.end()) {
            Event taken = *event;
            side.events.erase(event);
            return taken;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw Broken(what);
}

void check_alone(const Network& network) {
    check(SUBJECT, "has nobody before it hosts or joins", [&] {
        NetworkEvent event;
        const std::uint8_t byte = 5;
        expect(!network.poll(event) && event.kind == NetworkEvent::NOTHING,
               "poll reports something");
        expect(network.get_port() == 0, "get_port is not 0");
        expect(network.get_peers(nullptr, 0) == 0, "get_peers counts somebody");
        expect(network.get_round_trip(3) < 0, "get_round_trip of nobody is not negative");
        expect_failure(network, !network.send(3, &byte, 1, true), "send to nobody");
        network.drop(3);
        network.leave();
    });
    check(SUBJECT, "hosts once, on a free port", [&] {
        expect_success(network, network.host(0, 3, PROTOCOL), "host");
        expect(network.get_port() != 0, "get_port is 0");
        expect_failure(network, !network.host(0, 3, PROTOCOL), "a second host");
    });
}

void check_messages(Side& host, Side& guest, PeerHandle to_guest, PeerHandle to_host) {
    const std::vector<std::uint8_t> data = {3, 1, 4, 1, 59};
    const auto size = static_cast<std::uint32_t>(data.size());
    check(SUBJECT, "brings messages whole, in both directions", [&] {
        expect_success(host.network, host.network.send(to_guest, data.data(), size, true), "send");
        const Event there =
            await(guest, host, NetworkEvent::MESSAGE, "the host's message does not arrive");
        expect(there.data == data && there.peer == to_host, "the host's message arrives changed");
        expect_success(guest.network, guest.network.send(0, data.data(), size - 1, true),
                       "send to all");
        const Event back =
            await(host, guest, NetworkEvent::MESSAGE, "the peer's message does not arrive");
        expect(back.data.size() == size - 1 && back.peer == to_guest,
               "the peer's message arrives changed");
    });
    check(SUBJECT, "refuses messages of no bytes and of too many", [&] {
        const std::vector<std::uint8_t> large(quillon::MAX_NETWORK_MESSAGE_BYTES + 1);
        expect_failure(host.network, !host.network.send(to_guest, data.data(), 0, true),
                       "send of 0 bytes");
        expect_failure(host.network,
                       !host.network.send(to_guest, large.data(),
                                          quillon::MAX_NETWORK_MESSAGE_BYTES + 1, true),
                       "send of too many bytes");
    });
    check(SUBJECT, "counts its peers and its traffic", [&] {
        PeerHandle peers[2] = {};
        expect(host.network.get_peers(peers, 2) == 1 && peers[0] == to_guest,
               "get_peers does not list the one peer");
        expect(host.network.get_round_trip(to_guest) >= 0, "get_round_trip is negative");
        std::uint64_t sent = 0;
        std::uint64_t received = 0;
        host.network.get_traffic(sent, received);
        expect(sent > 0 && received > 0, "get_traffic counts nothing");
    });
}

} // namespace

void check_network(const Network& network, const SecondTable& second) {
    check_alone(network);
    const std::uint16_t port = network.get_port();
    if (port == 0)
        return;
    Side host{network};
    const Network* joining = nullptr;
    PeerHandle to_guest = 0;
    PeerHandle to_host = 0;
    check(SUBJECT, "lets a peer join that names the same protocol", [&] {
        joining = second();
        Side guest{*joining};
        to_host = joining->join("127.0.0.1", port, PROTOCOL, 2.0);
        expect_success(*joining, to_host != 0, "join");
        await(guest, host, NetworkEvent::JOINED, "the peer does not report JOINED");
        to_guest = await(host, guest, NetworkEvent::JOINED, "the host does not report JOINED").peer;
    });
    if (to_guest == 0)
        return;
    Side guest{*joining};
    check_messages(host, guest, to_guest, to_host);
    check(SUBJECT, "reports that a peer has left", [&] {
        guest.network.leave();
        const Event left = await(host, guest, NetworkEvent::LEFT, "the host does not report LEFT");
        expect(left.peer == to_guest, "the host reports another peer");
        network.leave();
        expect(network.get_port() == 0, "get_port is not 0 after leave");
    });
}

} // namespace tool
