#include "lossy_proxy.h"

#include <arpa/inet.h>

#include <utility>

namespace {

ENetAddress local(std::uint16_t port) {
    return {htonl(INADDR_LOOPBACK), port};
}

} // namespace

LossyProxy::LossyProxy(std::uint16_t host_port, const Weather& at_first)
    : socket(enet_socket_create(ENET_SOCKET_TYPE_DATAGRAM)),
      host(local(host_port)),
      weather(at_first) {
    const ENetAddress any_port = local(0);
    enet_socket_bind(socket, &any_port);
    enet_socket_set_option(socket, ENET_SOCKOPT_NONBLOCK, 1);
    enet_socket_get_address(socket, &address);
}

LossyProxy::~LossyProxy() {
    enet_socket_destroy(socket);
}

void LossyProxy::update() {
    ENetAddress from{};
    std::vector<std::uint8_t> bytes(ENET_PROTOCOL_MAXIMUM_MTU);
    ENetBuffer buffer{bytes.data(), bytes.size()};
    for (int size = 0; (size = enet_socket_receive(socket, &from, &buffer, 1)) > 0;)
        take(from, {bytes.begin(), bytes.begin() + size});
    for (; !waiting.empty() && waiting.begin()->first <= Clock::now();
         waiting.erase(waiting.begin())) {
        Datagram& datagram = waiting.begin()->second;
        ENetBuffer out{datagram.bytes.data(), datagram.bytes.size()};
        enet_socket_send(socket, &datagram.to, &out, 1);
    }
}

void LossyProxy::take(const ENetAddress& from, std::vector<std::uint8_t> bytes) {
    const bool is_from_host = from.port == host.port;
    if (!is_from_host)
        peer = from;
    if (happens(weather.lost))
        return;
    if (happens(weather.damaged))
        bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1 + random() % 255);
    for (int copies = happens(weather.doubled) ? 2 : 1; copies > 0; --copies) {
        const std::chrono::microseconds delay(
            random() % (std::chrono::microseconds(weather.max_delay).count() + 1));
        waiting.emplace(Clock::now() + delay, Datagram{is_from_host ? peer : host, bytes});
    }
}
