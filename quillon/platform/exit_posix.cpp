// SPDX-License-Identifier: MIT
#include "quillon/platform/exit.h"

// From the Itanium C++ ABI, section 3.3.6.3. `std::atexit` would do in a plain build, but the
// runtime of ThreadSanitizer keeps what it receives until exit, where the library may be gone.
extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* dso_handle);
extern "C" __attribute__((visibility("hidden"))) void* __dso_handle;

namespace quillon::platform {

void call_at_unload_or_exit(void (*function)()) {
    const auto call = [](void* argument) { reinterpret_cast<void (*)()>(argument)(); };
    static_cast<void>(__cxa_atexit(call, reinterpret_cast<void*>(function), &__dso_handle));
}

// The handlers of the whole process run latest first, so call_at_unload_or_exit is enough.
void call_before_end_of(void*, void (*)()) {}

} // namespace quillon::platform
