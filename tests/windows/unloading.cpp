// SPDX-License-Identifier: MIT
// Unloads the library while a plug-in stays loaded for another user, then the plug-in: its exit
// handlers must not call into the library that is gone. Ends with 0 if each was unloaded, and the
// plug-in shut down once and in time.
#include <cstdio>
#include <fstream>
#include <string>

#include <windows.h>

namespace {

std::string shutdowns() {
    std::string text;
    std::ifstream events("events");
    for (std::string line; std::getline(events, line);)
        if (line.find("shutdown") != std::string::npos)
            text += line + "\n";
    return text;
}

} // namespace

int main() {
    std::remove("events");
    const HMODULE library = LoadLibraryW(L"libquillon.dll");
    const HMODULE kept = LoadLibraryW(L"plugin/all.dll");
    const auto open = reinterpret_cast<bool (*)()>(
        reinterpret_cast<void*>(GetProcAddress(library, "__mCore_open")));
    if (kept == nullptr || open == nullptr || !open())
        return 1;
    FreeLibrary(library);
    if (GetModuleHandleW(L"libquillon.dll") != nullptr || shutdowns() != "All: shutdown\n")
        return 2;
    FreeLibrary(kept);
    return GetModuleHandleW(L"all.dll") == nullptr ? 0 : 3;
}
