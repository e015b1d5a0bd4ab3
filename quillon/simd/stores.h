// SPDX-License-Identifier: MIT
// Cached and streaming stores of floats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
    #include <emmintrin.h>
#endif

namespace quillon::simd {

// Four floats are stored at once, at an address that is a multiple of STORE_ALIGNMENT.
inline constexpr std::size_t STORE_ALIGNMENT = 4 * sizeof(float);

inline bool is_store_aligned(const float* to) {
    return reinterpret_cast<std::uintptr_t>(to) % STORE_ALIGNMENT == 0;
}

// Stores through the cache: for data that is read again soon.
struct CachedStores {
    static void put(float* to, const float* four) { std::memcpy(to, four, STORE_ALIGNMENT); }
};

#if defined(__SSE2__)

// Stores past the cache, which saves reading lines that are overwritten whole: for more data than
// the cache holds. On other targets it is the cached store.
struct StreamingStores {
    static void put(float* to, const float* four) { _mm_stream_ps(to, _mm_loadu_ps(four)); }
};

// Orders earlier streaming stores before everything that follows.
inline void finish_streaming() {
    _mm_sfence();
}

#else

using StreamingStores = CachedStores;

inline void finish_streaming() {}

#endif

} // namespace quillon::simd
