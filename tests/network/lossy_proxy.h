// SPDX-License-Identifier: MIT
// A network as bad as a test needs it, between one peer and its host on 127.0.0.1.
#pragma once

#include <arpa/inet.h>
#include <enet/enet.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <random>
#include <utility>
#include <vector>

// How datagrams fare, by shares of 1.
struct Weather {
    double lost = 0;
    double damaged = 0;
    double doubled = 0;
    std::chrono::milliseconds max_delay{0}; // each has its own, so that they overtake one another
};

// The peer joins `port()` in place of the host's.
class LossyProxy {
public:
    explicit LossyProxy(std::uint16_t host_port) : host{htonl(INADDR_LOOPBACK), host_port} {
        const ENetAddress any_port{htonl(INADDR_LOOPBACK), 0};
        enet_socket_bind(socket, &any_port);
        enet_socket_set_option(socket, ENET_SOCKOPT_NONBLOCK, 1);
    }

    LossyProxy(const LossyProxy&) = delete;
    LossyProxy& operator=(const LossyProxy&) = delete;

    ~LossyProxy() { enet_socket_destroy(socket); }

    std::uint16_t port() const {
        ENetAddress address{};
        enet_socket_get_address(socket, &address);
        return address.port;
    }

    // Takes the datagrams that have arrived, and passes on those that are due.
    void update() {
        ENetAddress from{};
        std::vector<std::uint8_t> bytes(ENET_PROTOCOL_MAXIMUM_MTU);
        ENetBuffer buffer{bytes.data(), bytes.size()};
        for (int size = 0; (size = enet_socket_receive(socket, &from, &buffer, 1)) > 0;)
            take(from, {bytes.begin(), bytes.begin() + size});
        for (; !waiting.empty() && waiting.begin()->first <= Clock::now();
             waiting.erase(waiting.begin())) {
            auto& [to, data] = waiting.begin()->second;
            ENetBuffer out{data.data(), data.size()};
            enet_socket_send(socket, &to, &out, 1);
        }
    }

    Weather weather;

private:
    using Clock = std::chrono::steady_clock;

    bool happens(double share) { return std::bernoulli_distribution(share)(random); }

    void take(const ENetAddress& from, std::vector<std::uint8_t> bytes) {
        const bool is_from_host = from.port == host.port;
        if (!is_from_host)
            peer = from;
        if (happens(weather.lost))
            return;
        if (happens(weather.damaged))
            bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1 + random() % 255);
        for (int copies = happens(weather.doubled) ? 2 : 1; copies > 0; --copies) {
            std::uniform_real_distribution<> share(0, 1);
            waiting.emplace(Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                               share(random) * weather.max_delay),
                            std::pair(is_from_host ? peer : host, bytes));
        }
    }

    ENetSocket socket = enet_socket_create(ENET_SOCKET_TYPE_DATAGRAM);
    ENetAddress host;
    ENetAddress peer{};
    std::mt19937 random{20};
    std::multimap<Clock::time_point, std::pair<ENetAddress, std::vector<std::uint8_t>>> waiting;
};
