// Runs a kernel with the widest vectors that the machine offers.
#pragma once

#include <cstddef> // where the C library names itself

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
// A kernel is a plain loop that the compiler can vectorise. It and what it calls must be
// [[gnu::always_inline]]: only what is inlined here is compiled for the wider vectors. One that
// spells its vectors out, 32 bytes wide, comes with a twin for vectors of 16 bytes:
// `narrow_kernel`. QUILLON_NO_AVX2 leaves the path of older machines alone; our tests run both.
template <auto kernel, auto narrow_kernel = kernel, typename... Arguments>
void run_vectorised(Arguments... arguments) {
    if (__builtin_cpu_supports("avx2")) [[likely]]
        run_with_avx2<kernel>(arguments...);
    else
        narrow_kernel(arguments...);
}

#else

// Calls the kernel; what the compiler makes of it for the target is already the widest.
template <auto kernel, auto narrow_kernel = kernel, typename... Arguments>
void run_vectorised(Arguments... arguments) {
    narrow_kernel(arguments...);
}

#endif

} // namespace quillon::simd

// Compiles a function twice, for AVX2 and for any x86-64, and lets the dynamic loader pick. For
// functions so short that the test in run_vectorised would show.
//
// Elsewhere it is one function: Clang wants the attribute on every declaration, and ThreadSanitizer
// would watch the loader's question before it is up itself.
#if defined(__x86_64__) && defined(__GLIBC__) && !defined(__clang__) &&                            \
    !defined(__SANITIZE_THREAD__) && !defined(QUILLON_NO_AVX2)
    #define QUILLON_CPU_CLONES __attribute__((target_clones("avx2", "default")))
#else
    #define QUILLON_CPU_CLONES
#endif
