// Marks the flat functions that the shared library exports.
#pragma once

#if defined(_WIN32)
    #if defined(QUILLON_STATIC)
        #define QUILLON_API
    #elif defined(QUILLON_BUILDING)
        #define QUILLON_API __declspec(dllexport)
    #else
        #define QUILLON_API __declspec(dllimport)
    #endif
#else
    #define QUILLON_API __attribute__((visibility("default")))
#endif

// Marks a variable of a header that each loaded file keeps to itself: the dynamic linker ties no
// two of them together, which would keep a plug-in from being unloaded.
#if defined(_WIN32)
    #define QUILLON_LOCAL
#else
    #define QUILLON_LOCAL __attribute__((visibility("hidden")))
#endif
