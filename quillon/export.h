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
