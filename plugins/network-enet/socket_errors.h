// SPDX-License-Identifier: MIT
// Why the latest call of the system's sockets failed: its number on this thread, 0 for none.
#pragma once

namespace quillon::network_enet {

int socket_error();
void clear_socket_error();
bool is_address_in_use(int error);

} // namespace quillon::network_enet
