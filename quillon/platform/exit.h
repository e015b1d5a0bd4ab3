// SPDX-License-Identifier: MIT
// Exit handlers of the library.
#pragma once

namespace quillon::platform {

// Calls `function` when the library is unloaded or the process exits, whichever comes first.
//
// It runs before the exit handlers and the destructors of static objects that exist now.
// Without memory for another handler nothing is registered.
void call_at_unload_or_exit(void (*function)());

// Calls `function` before the static objects of the loaded plug-in that exist now are destroyed,
// where each library has a list of handlers of its own. Does nothing where the process has one
// list.
//
// A null withdraws the functions that the plug-in received before.
void call_before_end_of(void* library, void (*function)());

} // namespace quillon::platform
