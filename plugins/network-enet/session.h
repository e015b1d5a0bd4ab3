// SPDX-License-Identifier: MIT
// One side of a network: a host with its peers, or a peer with its host.
#pragma once

#include "packet.h"

#include "plugins/contracts/network.h"

#include <enet/enet.h>

#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace quillon::network_enet {

// The operations of the contract; where one returns false or 0 there, this throws Failure.
class Session {
public:
    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    ~Session() { leave(); }

    // `address` is the one to listen on; null for all of this machine's.
    void host(const char* address, std::uint16_t port, std::uint32_t peer_count,
              std::uint32_t game_protocol);
    PeerHandle join(const char* address, std::uint16_t port, std::uint32_t protocol,
                    double seconds);
    void leave();
    void drop(PeerHandle handle);

    void send(PeerHandle handle, std::span<const std::uint8_t> data, bool reliable);
    bool poll(NetworkEvent& event);

    std::uint32_t get_peers(PeerHandle* handles, std::uint32_t capacity) const;
    double get_round_trip(PeerHandle handle) const;
    std::uint16_t get_port() const;
    void get_traffic(std::uint64_t& sent, std::uint64_t& received) const;

private:
    using Clock = std::chrono::steady_clock;

    enum class State {
        Connecting, // waits for the handshake of ENet
        Greeting,   // waits for the hello, or for the answer to it
        Joined,
        Leaving // waits for the other side to agree
    };

    struct Peer {
        PeerHandle handle;
        ENetPeer* connection;
        State state;
        Clock::time_point deadline; // of connecting and greeting
        bool is_known;              // to the game, which is to hear that it left
    };

    struct Report {
        NetworkEvent::Kind kind;
        PeerHandle peer;
        std::string text;
    };

    struct DestroyHost {
        void operator()(ENetHost* host) const { enet_host_destroy(host); }
    };

    struct DestroyPacket {
        void operator()(ENetPacket* packet) const { enet_packet_destroy(packet); }
    };

    using PacketOwner = std::unique_ptr<ENetPacket, DestroyPacket>;

    void open(const ENetAddress* address, std::uint32_t connections, std::uint32_t game_protocol);
    void expect_idle();
    Peer& add_peer(ENetPeer* connection, State state, double seconds);
    Peer* find(PeerHandle handle);
    Peer* find(const ENetPeer* connection);
    void remove(PeerHandle handle);
    std::uint32_t joined_count() const;

    bool receive(ENetEvent& event);
    void handle(const ENetEvent& event);
    void handle_connected(ENetPeer* connection);
    void handle_disconnected(ENetPeer* connection, std::uint32_t data);
    void handle_packet(Peer& peer, const Packet& packet);
    void answer_hello(Peer& peer, const Packet& hello);
    void refuse(Peer& peer, RefusalReason reason);
    void expire();
    void report_left(Peer& peer, const std::string& text);
    bool next_report(NetworkEvent& event);
    void count_traffic();

    std::unique_ptr<ENetHost, DestroyHost> socket;
    std::vector<Peer> peers;
    std::deque<Report> reports;
    Report reported;                       // holds the text of the last event
    PacketOwner message;                   // holds the data of the last event
    std::span<const std::uint8_t> payload; // of `message`
    bool is_hosting = false;
    bool is_receiving = false; // within one run of polls
    std::uint32_t max_peers = 0;
    std::uint32_t protocol = 0;
    PeerHandle last_handle = 0;
    std::string host_name; // and port, on the side that joins
    double join_seconds = 0;
    int send_error = 0; // of the system
    std::uint64_t bytes_sent = 0;
    std::uint64_t bytes_received = 0;
};

} // namespace quillon::network_enet
