// A network as bad as a test needs it, between one peer and its host on 127.0.0.1.
#pragma once

#include <enet/enet.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <random>
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
    LossyProxy(std::uint16_t host_port, const Weather& weather);
    LossyProxy(const LossyProxy&) = delete;
    LossyProxy& operator=(const LossyProxy&) = delete;
    ~LossyProxy();

    std::uint16_t port() const { return address.port; }

    void set_weather(const Weather& changed) { weather = changed; }

    // Takes what has arrived, and passes on what is due.
    void update();

private:
    using Clock = std::chrono::steady_clock;

    struct Datagram {
        ENetAddress to;
        std::vector<std::uint8_t> bytes;
    };

    void take(const ENetAddress& from, std::vector<std::uint8_t> bytes);

    bool happens(double share) { return std::bernoulli_distribution(share)(random); }

    ENetSocket socket;
    ENetAddress address{};
    ENetAddress host;
    ENetAddress peer{};
    Weather weather;
    std::mt19937 random{20};
    std::multimap<Clock::time_point, Datagram> waiting;
};
