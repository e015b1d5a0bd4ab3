// SPDX-License-Identifier: MIT
#include "quillon/platform/loader.h"

#include "quillon/platform/paths.h"
#include "quillon/platform/wide.h"

#include <windows.h>

namespace quillon::platform {

void* load_library(const std::string& path) {
    const std::wstring wide = widen(path);
    return wide.size() <= PATH_LIMIT ? LoadLibraryW(wide.c_str()) : nullptr;
}

void* find_function(void* library, const char* name) {
    if (library == nullptr)
        return nullptr;
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void release_library(void* library) {
    if (library != nullptr)
        FreeLibrary(static_cast<HMODULE>(library));
}

} // namespace quillon::platform

#if defined(QUILLON_BUILDING)
// The library has no use for the notice of every thread that starts and ends.
extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(library);
    return TRUE;
}
#endif
