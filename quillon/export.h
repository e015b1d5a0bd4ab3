// SPDX-License-Identifier: MIT
// Export macros.
#pragma once

// Calls an export without the stub for lazy binding, which costs a fifth of an empty call.
#if defined(__GNUC__) && !defined(__clang__) && defined(__ELF__)
    #define QUILLON_DIRECT __attribute__((noplt))
#else
    #define QUILLON_DIRECT
#endif

// Marks the flat functions that the shared library exports.
#if defined(_WIN32)
    #if defined(QUILLON_STATIC)
        #define QUILLON_API
    #elif defined(QUILLON_BUILDING)
        #define QUILLON_API __declspec(dllexport)
    #else
        #define QUILLON_API __declspec(dllimport)
    #endif
#else
    #define QUILLON_API __attribute__((visibility("default"))) QUILLON_DIRECT
#endif

// Marks a variable of a header of which each loaded file has its own. A shared one would keep a
// plug-in from being unloaded.
#if defined(_WIN32)
    #define QUILLON_LOCAL
#else
    #define QUILLON_LOCAL __attribute__((visibility("hidden")))
#endif
