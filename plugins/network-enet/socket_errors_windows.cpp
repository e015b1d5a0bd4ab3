// SPDX-License-Identifier: MIT
#include "socket_errors.h"

#include <winsock2.h>

namespace quillon::network_enet {

int socket_error() {
    return WSAGetLastError();
}

void clear_socket_error() {
    WSASetLastError(0);
}

bool is_address_in_use(int error) {
    return error == WSAEADDRINUSE;
}

} // namespace quillon::network_enet
