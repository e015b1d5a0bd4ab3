// SPDX-License-Identifier: MIT
// Unloads the library while a plug-in stays loaded for another user, then the plug-in: its exit
// handlers must not call into the library that is gone. Ends with 0 if each was unloaded.
#include <windows.h>

int main() {
    const HMODULE library = LoadLibraryW(L"libquillon.dll");
    const HMODULE kept = LoadLibraryW(L"plugin/0_all.dll");
    const auto open = reinterpret_cast<bool (*)()>(
        reinterpret_cast<void*>(GetProcAddress(library, "__mCore_open")));
    if (kept == nullptr || open == nullptr || !open())
        return 1;
    FreeLibrary(library);
    if (GetModuleHandleW(L"libquillon.dll") != nullptr)
        return 2;
    FreeLibrary(kept);
    return GetModuleHandleW(L"0_all.dll") == nullptr ? 0 : 3;
}
