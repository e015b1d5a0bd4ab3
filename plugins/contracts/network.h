// SPDX-License-Identifier: MIT
// The contract of a network: one host that peers join, and messages between them.
//
// A side either hosts or has joined. Everything happens in `poll`, which a side calls until it
// returns false, once a frame. Peers are small integers, 0 is none; a peer's number is not used
// again before `leave`.
// An operation that fails returns false or 0 and leaves the reason in last_error.
#pragma once

#include "contract.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

// The number of a peer; 0 is none.
using PeerHandle = std::uint32_t;

// The init parameter that names the address to listen on, as "127.0.0.1"; without it, all addresses
// of the machine.
inline constexpr const char* NETWORK_ADDRESS = "NETWORK ADDRESS";

inline constexpr std::uint32_t MAX_NETWORK_PEERS = 32;               // that one host takes
inline constexpr std::uint32_t MAX_NETWORK_MESSAGE_BYTES = 1U << 16; // of one `send`

// What `poll` reports.
struct NetworkEvent {
    // What has happened.
    enum Kind : std::uint8_t {
        NOTHING,
        JOINED, // a peer is there; on the side that joined, the host
        LEFT,   // it left, or went silent, or refused; `text` says which
        MESSAGE
    };

    Kind kind = NOTHING;                // what has happened
    PeerHandle peer = 0;                // to whom, or from whom
    const std::uint8_t* data = nullptr; // of a message; valid until the next call of an entry
    std::uint32_t size = 0;             // bytes
    const char* text = "";              // why a peer left, in one line; same lifetime
};

// The table of NET under this contract.
struct Network {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modNetwork;
    static constexpr const char* SERVICE = "NET";
    static constexpr ContractIdentity IDENTITY = {"quillon.network", 1};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest call that can fail failed, in one line; empty if it succeeded.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    // Lets peers join on a UDP port (0: one that is free, see `port`) if they name the same
    // protocol, a number of the game's choice.
    bool (*host)(std::uint16_t port, std::uint32_t max_peers, std::uint32_t protocol) = nullptr;
    // Begins to join a host, by name or address, once it has looked the name up. `poll` reports
    // JOINED within `seconds`, or LEFT with the reason: unreachable, another protocol, full. After
    // that LEFT this side may join or host again.
    PeerHandle (*join)(const char* address, std::uint16_t port, std::uint32_t protocol,
                       double seconds) = nullptr;
    // Tells all peers and ends the hosting or the joining; does nothing if there is none. Waits up
    // to a quarter of a second for the peers.
    void (*leave)() = nullptr;
    // Drops one peer; `poll` reports LEFT on both sides.
    void (*drop)(PeerHandle peer) = nullptr;

    // Sends 1 to MAX_NETWORK_MESSAGE_BYTES bytes to a peer, or to all with peer 0.
    //
    // Reliable messages arrive once and in order; others may be lost, and never arrive after a
    // later one.
    bool (*send)(PeerHandle peer, const std::uint8_t* data, std::uint32_t size,
                 bool reliable) = nullptr;
    // Sends and receives, and reports the next event; false, with NOTHING, if there is none.
    bool (*poll)(NetworkEvent& event) = nullptr;

    // Writes up to `capacity` of the peers that are there, and returns how many there are.
    std::uint32_t (*get_peers)(PeerHandle* peers, std::uint32_t capacity) = nullptr;
    // The mean time to the peer and back in seconds; negative for a peer that is not there.
    double (*get_round_trip)(PeerHandle peer) = nullptr;
    // The UDP port of this side, or 0.
    std::uint16_t (*get_port)() = nullptr;
    // Bytes that were sent and received since `host` or `join`, with the headers of UDP and IP.
    void (*get_traffic)(std::uint64_t& sent, std::uint64_t& received) = nullptr;

    void* reserved_12_to_20[9] = {};                        // null
    void* own_21_to_25[OWN_ENTRY_COUNT<NetworkTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(Network) == sizeof(NetworkTable));
static_assert(offsetof(Network, own_21_to_25) == FIRST_OWN_ENTRY<NetworkTable> * sizeof(void*));

} // namespace quillon
