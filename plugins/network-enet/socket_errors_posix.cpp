// SPDX-License-Identifier: MIT
#include "socket_errors.h"

#include <cerrno>

namespace quillon::network_enet {

int socket_error() {
    return errno;
}

void clear_socket_error() {
    errno = 0;
}

bool is_address_in_use(int error) {
    return error == EADDRINUSE;
}

} // namespace quillon::network_enet
