// SPDX-License-Identifier: MIT
#include "session.h"

#include "failure.h"
#include "socket_errors.h"

#include <algorithm>
#include <cmath>
#include <system_error>

namespace quillon::network_enet {

namespace {

enum Channel : enet_uint8 { RELIABLE_CHANNEL, UNRELIABLE_CHANNEL, CHANNEL_COUNT };

// The data of ENet's disconnection, which is 0 where a side went silent.
enum class Leaving : std::uint32_t { Silent, Left, Dropped, Damaged };

// Places for peers that are about to be refused, beyond those that may join.
constexpr std::uint32_t SPARE_CONNECTIONS = 4;

// A peer that connects without a hello is not one of ours.
constexpr double GREETING_SECONDS = 5;
constexpr double MAX_JOIN_SECONDS = 600;

// How long a peer may stay silent, in milliseconds: at least, and at most.
constexpr enet_uint32 MIN_TIMEOUT = 3000;
constexpr enet_uint32 MAX_TIMEOUT = 8000;

constexpr enet_uint32 GOODBYE_MILLISECONDS = 250;

// A datagram's share of the headers of UDP and IP version 4.
constexpr std::uint64_t DATAGRAM_HEADER_BYTES = 28;

std::string text_of(std::uint16_t port) {
    return std::to_string(port);
}

const char* text_of(Leaving leaving) {
    switch (leaving) {
    case Leaving::Left:
        return "left";
    case Leaving::Dropped:
        return "dropped this side";
    case Leaving::Damaged:
        return "could not read what this side sent";
    default:
        return "went silent";
    }
}

std::string text_of(const Packet& refusal, std::uint32_t protocol) {
    switch (refusal.reason) {
    case RefusalReason::OtherVersion:
        return "has version " + std::to_string(refusal.version) +
               " of network-enet's packets, not " + std::to_string(PACKET_VERSION);
    case RefusalReason::OtherProtocol:
        return "plays protocol " + std::to_string(refusal.protocol) + ", not " +
               std::to_string(protocol);
    default:
        return "is full";
    }
}

ENetAddress address_of(const char* name, std::uint16_t port) {
    ENetAddress address{ENET_HOST_ANY, port};
    if (name != nullptr && enet_address_set_host(&address, name) != 0)
        throw Failure("cannot find the host '" + std::string(name) + "'");
    return address;
}

template <typename Bytes>
void send_now(ENetPeer* connection, const Bytes& bytes) {
    ENetPacket* const packet =
        enet_packet_create(bytes.data(), bytes.size(), ENET_PACKET_FLAG_RELIABLE);
    if (packet != nullptr && enet_peer_send(connection, RELIABLE_CHANNEL, packet) != 0)
        enet_packet_destroy(packet);
}

void disconnect(ENetPeer* connection, Leaving leaving) {
    enet_peer_disconnect_later(connection, static_cast<enet_uint32>(leaving));
}

} // namespace

// A joining that came to its end needs no `leave`.
void Session::expect_idle() {
    if (is_hosting)
        throw Failure("this side hosts already; leave first");
    if (std::ranges::any_of(peers, &Peer::is_known))
        throw Failure("this side has joined already; leave first");
    leave();
}

void Session::open(const ENetAddress* address, std::uint32_t connections,
                   std::uint32_t game_protocol) {
    clear_socket_error();
    socket.reset(enet_host_create(address, connections, CHANNEL_COUNT, 0, 0));
    if (socket == nullptr && is_address_in_use(socket_error()))
        throw Failure("port " + text_of(address->port) + " is in use; choose another");
    if (socket == nullptr)
        throw Failure("cannot open a socket: " + std::system_category().message(socket_error()));
    socket->checksum = enet_crc32;
    socket->maximumPacketSize = MAX_NETWORK_MESSAGE_BYTES + 1;
    protocol = game_protocol;
    bytes_sent = bytes_received = 0;
    send_error = 0;
}

void Session::host(const char* address, std::uint16_t port, std::uint32_t peer_count,
                   std::uint32_t game_protocol) {
    expect_idle();
    if (peer_count < 1 || peer_count > MAX_NETWORK_PEERS)
        throw Failure("a host has 1 to " + std::to_string(MAX_NETWORK_PEERS) + " peers");
    const ENetAddress listening = address_of(address, port);
    open(&listening, peer_count + SPARE_CONNECTIONS, game_protocol);
    max_peers = peer_count;
    is_hosting = true;
}

PeerHandle Session::join(const char* address, std::uint16_t port, std::uint32_t game_protocol,
                         double seconds) {
    expect_idle();
    if (address == nullptr || port == 0)
        throw Failure("a host has a name or address, and a port that is not 0");
    if (!(seconds > 0 && seconds <= MAX_JOIN_SECONDS))
        throw Failure("the time to join in must be above 0 and at most 600 seconds");
    const ENetAddress remote = address_of(address, port);
    open(nullptr, 1, game_protocol);
    ENetPeer* const connection = enet_host_connect(socket.get(), &remote, CHANNEL_COUNT, 0);
    if (connection == nullptr)
        throw Failure("cannot begin to join: out of memory");
    host_name = address + (":" + text_of(port));
    join_seconds = seconds;
    Peer& peer = add_peer(connection, State::Connecting, seconds);
    peer.is_known = true;
    enet_host_flush(socket.get());
    return peer.handle;
}

// Waits a little for the other sides, as the word to them may get lost.
void Session::leave() {
    if (socket != nullptr && !peers.empty()) {
        for (const Peer& peer : peers)
            enet_peer_disconnect(peer.connection, static_cast<enet_uint32>(Leaving::Left));
        std::erase_if(peers, [](const Peer& peer) { // those that had not joined yet
            return peer.connection->state == ENET_PEER_STATE_DISCONNECTED;
        });
        const auto deadline = Clock::now() + std::chrono::milliseconds(GOODBYE_MILLISECONDS);
        ENetEvent event{};
        while (!peers.empty() && Clock::now() < deadline &&
               enet_host_service(socket.get(), &event, 10) >= 0) {
            const PacketOwner unread(event.packet);
            if (event.type == ENET_EVENT_TYPE_DISCONNECT)
                std::erase_if(peers,
                              [&](const Peer& peer) { return peer.connection == event.peer; });
            event = {};
        }
    }
    peers.clear();
    reports.clear();
    message.reset();
    socket.reset();
    is_hosting = is_receiving = false;
    last_handle = 0;
}

void Session::drop(PeerHandle handle) {
    Peer* const peer = find(handle);
    if (peer == nullptr || peer->state == State::Leaving)
        return;
    disconnect(peer->connection, Leaving::Dropped);
    enet_host_flush(socket.get());
    report_left(*peer, "was dropped by this side");
}

Session::Peer& Session::add_peer(ENetPeer* connection, State state, double seconds) {
    const auto patience =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    enet_peer_timeout(connection, 0, MIN_TIMEOUT, MAX_TIMEOUT);
    return peers.emplace_back(
        Peer{++last_handle, connection, state, Clock::now() + patience, false});
}

Session::Peer* Session::find(PeerHandle handle) {
    const auto peer = std::ranges::find(peers, handle, &Peer::handle);
    return peer == peers.end() ? nullptr : &*peer;
}

Session::Peer* Session::find(const ENetPeer* connection) {
    const auto peer = std::ranges::find(peers, connection, &Peer::connection);
    return peer == peers.end() ? nullptr : &*peer;
}

void Session::remove(PeerHandle handle) {
    std::erase_if(peers, [handle](const Peer& peer) { return peer.handle == handle; });
}

std::uint32_t Session::joined_count() const {
    return static_cast<std::uint32_t>(std::ranges::count(peers, State::Joined, &Peer::state));
}

void Session::send(PeerHandle handle, std::span<const std::uint8_t> data, bool reliable) {
    if (socket == nullptr)
        throw Failure("this side neither hosts nor has joined");
    if (data.data() == nullptr || data.empty() || data.size() > MAX_NETWORK_MESSAGE_BYTES)
        throw Failure("a message has 1 to 65,536 bytes");
    const Peer* const receiver = find(handle);
    if (handle != 0 && (receiver == nullptr || receiver->state != State::Joined))
        throw Failure("peer " + std::to_string(handle) + " is not there");
    PacketOwner packet(enet_packet_create(nullptr, data.size() + 1,
                                          reliable ? ENET_PACKET_FLAG_RELIABLE
                                                   : ENET_PACKET_FLAG_UNRELIABLE_FRAGMENT));
    if (packet == nullptr)
        throw Failure("out of memory");
    packet->data[0] = static_cast<std::uint8_t>(PacketKind::Message);
    std::ranges::copy(data, packet->data + 1);
    bool sent = true;
    for (const Peer& peer : peers)
        if (peer.state == State::Joined && (handle == 0 || peer.handle == handle))
            sent &=
                enet_peer_send(peer.connection, reliable ? RELIABLE_CHANNEL : UNRELIABLE_CHANNEL,
                               packet.get()) == 0;
    // ENet counts its own references, and frees the packet with the last.
    if (packet->referenceCount > 0)
        static_cast<void>(packet.release());
    enet_host_flush(socket.get());
    if (!sent)
        throw Failure("ENet does not take the message");
}

bool Session::poll(NetworkEvent& event) {
    event = {};
    message.reset();
    if (socket == nullptr)
        return false;
    expire();
    ENetEvent received{};
    while (!next_report(event)) {
        if (!receive(received))
            return false;
        handle(received);
    }
    return true;
}

// One run of polls reports what has arrived at its start, so that a peer which never stops sending
// cannot keep the game in it.
bool Session::receive(ENetEvent& event) {
    const int result = is_receiving ? enet_host_check_events(socket.get(), &event)
                                    : enet_host_service(socket.get(), &event, 0);
    if (result < 0)
        send_error = socket_error();
    is_receiving = result > 0;
    if (!is_receiving)
        enet_host_flush(socket.get());
    count_traffic();
    return is_receiving;
}

void Session::handle(const ENetEvent& event) {
    if (event.type == ENET_EVENT_TYPE_CONNECT)
        return handle_connected(event.peer);
    if (event.type == ENET_EVENT_TYPE_DISCONNECT)
        return handle_disconnected(event.peer, event.data);
    PacketOwner arrived(event.packet);
    Peer* const peer = find(event.peer);
    if (peer == nullptr || peer->state == State::Leaving)
        return;
    const auto packet = read_packet({arrived->data, arrived->dataLength});
    if (!packet) {
        disconnect(peer->connection, Leaving::Damaged);
        return report_left(*peer, "sent what is not a packet");
    }
    handle_packet(*peer, *packet);
    if (!packet->message.empty() && peer->state == State::Joined) {
        payload = packet->message;
        message = std::move(arrived);
        reports.push_back({NetworkEvent::MESSAGE, peer->handle, ""});
    }
}

void Session::handle_connected(ENetPeer* connection) {
    if (is_hosting) {
        add_peer(connection, State::Greeting, GREETING_SECONDS);
        return;
    }
    if (Peer* const peer = find(connection)) {
        peer->state = State::Greeting;
        send_now(connection, hello_packet(protocol));
    }
}

void Session::handle_disconnected(ENetPeer* connection, std::uint32_t data) {
    Peer* const peer = find(connection);
    if (peer == nullptr)
        return;
    const bool has_answered = peer->state != State::Connecting;
    report_left(*peer, has_answered ? text_of(static_cast<Leaving>(data))
                                    : host_name + " does not answer");
    remove(peer->handle);
}

void Session::handle_packet(Peer& peer, const Packet& packet) {
    if (peer.state != State::Greeting)
        return;
    if (is_hosting && packet.kind == PacketKind::Hello)
        return answer_hello(peer, packet);
    if (!is_hosting && packet.kind == PacketKind::Welcome) {
        peer.state = State::Joined;
        reports.push_back({NetworkEvent::JOINED, peer.handle, ""});
    } else if (!is_hosting && packet.kind == PacketKind::Refusal) {
        disconnect(peer.connection, Leaving::Left);
        report_left(peer, text_of(packet, protocol));
    }
}

void Session::answer_hello(Peer& peer, const Packet& hello) {
    if (hello.version != PACKET_VERSION)
        return refuse(peer, RefusalReason::OtherVersion);
    if (hello.protocol != protocol)
        return refuse(peer, RefusalReason::OtherProtocol);
    if (joined_count() >= max_peers)
        return refuse(peer, RefusalReason::Full);
    send_now(peer.connection, welcome_packet());
    peer.state = State::Joined;
    peer.is_known = true;
    reports.push_back({NetworkEvent::JOINED, peer.handle, ""});
}

void Session::refuse(Peer& peer, RefusalReason reason) {
    send_now(peer.connection, refusal_packet(reason, protocol));
    disconnect(peer.connection, Leaving::Left);
    peer.state = State::Leaving;
}

// Gives up on sides that do not answer in time.
void Session::expire() {
    const auto now = Clock::now();
    for (Peer& peer : peers) {
        if (peer.deadline > now ||
            (peer.state != State::Connecting && peer.state != State::Greeting))
            continue;
        std::string text = host_name + " does not answer within " +
                           std::to_string(std::lround(join_seconds * 1000)) + " ms";
        if (send_error != 0)
            text += ": " + std::system_category().message(send_error);
        report_left(peer, text);
        enet_peer_reset(peer.connection);
        peer.connection = nullptr;
    }
    std::erase_if(peers, [](const Peer& peer) { return peer.connection == nullptr; });
}

void Session::report_left(Peer& peer, const std::string& text) {
    if (peer.is_known)
        reports.push_back({NetworkEvent::LEFT, peer.handle, text});
    peer.is_known = false;
    peer.state = State::Leaving;
}

bool Session::next_report(NetworkEvent& event) {
    if (reports.empty())
        return false;
    reported = std::move(reports.front());
    reports.pop_front();
    event.kind = reported.kind;
    event.peer = reported.peer;
    event.text = reported.text.c_str();
    if (event.kind == NetworkEvent::MESSAGE) {
        event.data = payload.data();
        event.size = static_cast<std::uint32_t>(payload.size());
    }
    return true;
}

std::uint32_t Session::get_peers(PeerHandle* handles, std::uint32_t capacity) const {
    std::uint32_t count = 0;
    for (const Peer& peer : peers)
        if (peer.state == State::Joined) {
            if (count < capacity)
                handles[count] = peer.handle;
            ++count;
        }
    return count;
}

double Session::get_round_trip(PeerHandle handle) const {
    const auto peer = std::ranges::find(peers, handle, &Peer::handle);
    return peer == peers.end() || peer->state != State::Joined
               ? -1.0
               : peer->connection->roundTripTime * 0.001;
}

std::uint16_t Session::get_port() const {
    ENetAddress address{};
    const bool is_bound =
        socket != nullptr && enet_socket_get_address(socket->socket, &address) == 0;
    return is_bound ? address.port : std::uint16_t{0};
}

void Session::get_traffic(std::uint64_t& sent, std::uint64_t& received) const {
    sent = bytes_sent;
    received = bytes_received;
}

// ENet's own sums have 32 bits and leave out the headers of the datagrams.
void Session::count_traffic() {
    bytes_sent += socket->totalSentData + DATAGRAM_HEADER_BYTES * socket->totalSentPackets;
    bytes_received +=
        socket->totalReceivedData + DATAGRAM_HEADER_BYTES * socket->totalReceivedPackets;
    socket->totalSentData = socket->totalSentPackets = 0;
    socket->totalReceivedData = socket->totalReceivedPackets = 0;
}

} // namespace quillon::network_enet
