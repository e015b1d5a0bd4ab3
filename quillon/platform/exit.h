// SPDX-License-Identifier: MIT
// Exit handlers of the library.
#pragma once

namespace quillon::platform {

// Calls `function` when the library is unloaded or the process exits, whichever comes first.
//
// It runs before the exit handlers and the destructors of static objects that exist now.
// Without memory for another handler nothing is registered.
void call_at_unload_or_exit(void (*function)());

} // namespace quillon::platform
