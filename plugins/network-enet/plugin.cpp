// SPDX-License-Identifier: MIT
// The plug-in "network-enet": the contract of a network, answered by one Session.
#include "session.h"

#include "plugins/contracts/network.h"
#include "quillon/core/plugin.h"

#include <cstring>
#include <exception>
#include <optional>

namespace {

using namespace quillon;
using network_enet::Session;

const char* listening_address = nullptr;
std::optional<Session> session; // between `initialize` and `shutdown`
char error[256] = "";

void set_error(const char* reason) {
    std::strncpy(error, reason, sizeof error - 1);
}

// The result of an operation that can fail; false or 0, with the reason in `error`, if it does.
template <typename Operation>
auto attempt(Operation operation) -> decltype(operation()) {
    try {
        auto result = operation();
        set_error("");
        return result;
    } catch (const std::exception& failure) {
        set_error(failure.what());
        return {};
    }
}

bool host(std::uint16_t port, std::uint32_t max_peers, std::uint32_t protocol) {
    return attempt([=] {
        session->host(listening_address, port, max_peers, protocol);
        return true;
    });
}

PeerHandle join(const char* address, std::uint16_t port, std::uint32_t protocol, double seconds) {
    return attempt([=] { return session->join(address, port, protocol, seconds); });
}

void drop(PeerHandle peer) {
    attempt([=] {
        session->drop(peer);
        return true;
    });
}

bool send(PeerHandle peer, const std::uint8_t* data, std::uint32_t size, bool reliable) {
    return attempt([=] {
        session->send(peer, {data, size}, reliable);
        return true;
    });
}

// No event is a success too, so the error of an earlier operation stays.
bool poll(NetworkEvent& event) {
    try {
        return session->poll(event);
    } catch (const std::exception& failure) {
        set_error(failure.what());
        event = {};
        return false;
    }
}

} // namespace

bool initialize(DSPrefHashMap<void>* parameters) {
    if (!is_wanted(parameters, Network::SERVICE, "network-enet") || enet_initialize() != 0)
        return false;
    listening_address = static_cast<const char*>(parameters->find(name_hash(NETWORK_ADDRESS)));
    session.emplace();
    return true;
}

void shutdown() {
    session.reset();
    enet_deinitialize();
}

QUILLON_PLUGIN_SERVES("network-enet", "NET")
QUILLON_PLUGIN_NEEDS_NOTHING()

void connect_network_interface(void** table) {
    serve<Network>(
        table,
        {.last_error = []() -> const char* { return error; },
         .host = host,
         .join = join,
         .leave = [] { session->leave(); },
         .drop = drop,
         .send = send,
         .poll = poll,
         .get_peers = [](PeerHandle* peers,
                         std::uint32_t capacity) { return session->get_peers(peers, capacity); },
         .get_round_trip = [](PeerHandle peer) { return session->get_round_trip(peer); },
         .get_port = [] { return session->get_port(); },
         .get_traffic = [](std::uint64_t& sent,
                           std::uint64_t& received) { session->get_traffic(sent, received); }});
}
