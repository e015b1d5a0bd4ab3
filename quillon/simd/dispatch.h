// SPDX-License-Identifier: MIT
// Runs a kernel with the widest vectors that the machine offers.
#pragma once

#include <cstddef> // defines __GLIBC__

// Marks a kernel and everything that it calls, lambdas after their parameters.
//
// Only what is inlined into run_vectorised or a function with QUILLON_CPU_CLONES is compiled for
// the wider vectors, so nothing of a kernel may stay a call.
#define QUILLON_KERNEL __attribute__((always_inline))

// Compiles a function twice, for AVX2 and for any x86-64, and lets the dynamic loader choose: for
// functions so short that the test in run_vectorised would show.
//
// Elsewhere it is one function: clang wants the attribute on every declaration, and ThreadSanitizer
// would run inside the loader's choice before its runtime is initialised.
#if defined(__x86_64__) && defined(__GLIBC__) && !defined(__clang__) &&                            \
    !defined(__SANITIZE_THREAD__) && !defined(QUILLON_NO_AVX2)
    #define QUILLON_CPU_CLONES __attribute__((target_clones("avx2", "default")))
#else
    #define QUILLON_CPU_CLONES
#endif

namespace quillon::simd {

// Not on Windows: GCC aligns stacks to 16 bytes there, and spills AVX registers as if it were 32.
#if defined(__x86_64__) && !defined(_WIN32) && !defined(QUILLON_NO_AVX2)

template <auto kernel, typename... Arguments>
[[gnu::target("avx2")]] void run_with_avx2(Arguments... arguments) {
    kernel(arguments...);
}

// Calls `kernel`, compiled for AVX2 where the processor and the system have it, else for any
// x86-64.
//
// A kernel is a plain loop that the compiler can vectorise, marked QUILLON_KERNEL. One over four
// lanes comes with its instance over two for older machines, where GCC splits four into scalars.
// QUILLON_NO_AVX2 leaves the path of older machines alone; our tests run both.
template <auto kernel, auto kernel_of_pairs = kernel, typename... Arguments>
void run_vectorised(Arguments... arguments) {
    if (__builtin_cpu_supports("avx2")) [[likely]]
        run_with_avx2<kernel>(arguments...);
    else
        kernel_of_pairs(arguments...);
}

#else

// Calls the kernel, which is compiled for the one target there is.
template <auto kernel, auto kernel_of_pairs = kernel, typename... Arguments>
void run_vectorised(Arguments... arguments) {
    kernel_of_pairs(arguments...);
}

#endif

} // namespace quillon::simd
