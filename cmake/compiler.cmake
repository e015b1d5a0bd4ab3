# SPDX-License-Identifier: MIT
# What every target of this tree is compiled with; nothing here depends on a preset.

include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)
include(CheckIPOSupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

check_cxx_compiler_flag(-fno-gnu-unique QUILLON_HAS_NO_GNU_UNIQUE)
check_cxx_source_compiles("#ifdef __i386__\nint main() {}\n#endif" QUILLON_FOR_I386)

# Refused here, not in the middle of a build.
check_cxx_source_compiles("#include <cstdlib>
#if defined(__GLIBC__) || defined(_WIN32)
int main() {}
#endif" QUILLON_HAS_PLATFORM)
if(NOT QUILLON_HAS_PLATFORM)
    message(FATAL_ERROR "quillon runs on Linux with glibc and on Windows with mingw-w64. On musl, macOS and "
        "others the loader does not say which file a function is from.")
endif()
check_cxx_source_compiles("#include <algorithm>
#include <charconv>
#include <memory>
#include <vector>
int main(int count, char** words) {
    double number = 0;
    std::from_chars(words[0], words[0] + 1, number);
    std::vector<int> list(count);
    std::ranges::sort(list);
    return std::make_unique_for_overwrite<int[]>(count) == nullptr;
}" QUILLON_HAS_STANDARD_LIBRARY)
if(NOT QUILLON_HAS_STANDARD_LIBRARY)
    message(FATAL_ERROR "quillon needs a standard library with std::ranges, std::make_unique_for_overwrite and "
        "std::from_chars for double: libstdc++ 11 or libc++ 20. What the compiler said is in "
        "${CMAKE_BINARY_DIR}/CMakeFiles/CMakeError.log")
endif()

check_ipo_supported(RESULT QUILLON_HAS_IPO OUTPUT quillon_ipo_output LANGUAGES CXX)

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
    -Wnon-virtual-dtor -Wold-style-cast -Wundef)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict) # false alarms on every string concatenation (PR 105651)
endif()
if(QUILLON_WERROR)
    add_compile_options(-Werror)
endif()
# Overrun buffers and rewritten addresses of functions end the process. So do overwritten return addresses in
# the plug-ins and the command, which read what others made; in the library the guard would cost a matrix
# product a tenth and more (bench_rotation).
if(QUILLON_HARDENED AND NOT QUILLON_SANITIZE AND NOT WIN32)
    set(quillon_stack_protector -fstack-protector-strong)
    add_compile_options(
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE> # some compilers define it
        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
if(QUILLON_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-maybe-uninitialized) # false alarms in instrumented code (GCC manual, -fsanitize)
endif()
if(QUILLON_SANITIZE)
    add_compile_options(-fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QUILLON_SANITIZE})
endif()
# Where clang links C++ it puts an operator new of the sanitizer into each program, before the one of a
# test that counts allocations or lets them fail; so it links as for C. The library's own operator new
# calls malloc, which the sanitizer watches.
if(QUILLON_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_link_options(--driver-mode=gcc)
    string(APPEND CMAKE_CXX_STANDARD_LIBRARIES " -lstdc++ -lm")
endif()

# Flags that the results, the speed and the unloading of `target` rest on. Contraction travels to the
# users of a library (PUBLIC), since they compile the arithmetic in its headers.
# A square root that may set errno, or a comparison that may trap, is not vectorised; giving that up
# changes no result.
function(quillon_compile_flags target scope)
    target_compile_options(${target}
        ${scope} -ffp-contract=off
        PRIVATE -fno-math-errno -fno-trapping-math)
    if(QUILLON_FOR_I386)
        target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64) # files of 2 GiB and more
    endif()
    if(QUILLON_HAS_NO_GNU_UNIQUE)
        target_compile_options(${target} PRIVATE -fno-gnu-unique)
    endif()
endfunction()
