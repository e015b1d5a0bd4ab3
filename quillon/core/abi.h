// SPDX-License-Identifier: MIT
// The layouts of the standard library that a compilation uses, which host, library and plug-ins
// have to share: strings, lists and maps cross the border between them.
//
// Refused where it can be seen: debug containers, the old string layout, and another standard
// library than the one that the library was built with. A library that was built with one of these
// itself says so by QUILLON_LIBRARY_ABI, which its package sets: the sum of 1 for debug containers,
// 2 for the old strings, 4 for libc++.
#pragma once

#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
    #error "quillon needs C++20: compile with -std=c++20 or later"
#endif

#if defined(__i386__) && !defined(__SSE2_MATH__)
    #error "quillon: floats rounded by the x87 unit differ; compile with -msse2 -mfpmath=sse"
#endif

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#if !defined(QUILLON_LIBRARY_ABI)
    #if defined(__APPLE__) || defined(__FreeBSD__)
        #define QUILLON_LIBRARY_ABI 4
    #else
        #define QUILLON_LIBRARY_ABI 0
    #endif
#endif

#if defined(_GLIBCXX_DEBUG) != (QUILLON_LIBRARY_ABI & 1)
    #error                                                                                         \
        "quillon: _GLIBCXX_DEBUG changes the layout of lists and maps; set it as the library was built, or use _GLIBCXX_ASSERTIONS, which changes none"
#endif
#if (defined(_GLIBCXX_USE_CXX11_ABI) && _GLIBCXX_USE_CXX11_ABI == 0) !=                            \
    (QUILLON_LIBRARY_ABI / 2 % 2)
    #error "quillon: _GLIBCXX_USE_CXX11_ABI is not as the library was built, so strings differ"
#endif
#if defined(_LIBCPP_VERSION) != (QUILLON_LIBRARY_ABI / 4)
    #error "quillon: this is not the standard library that quillon was built with (-stdlib)"
#endif

namespace quillon {

#if QUILLON_LIBRARY_ABI % 2 == 0
static_assert(sizeof(std::vector<void*>) == 3 * sizeof(void*),
              "lists have another layout than in the library");
#endif
#if QUILLON_LIBRARY_ABI < 2 && defined(__GLIBCXX__)
static_assert(sizeof(std::string) == 2 * sizeof(void*) + 16,
              "strings have another layout than in the library");
#endif

// A property of the layouts, as the keyword that a plug-in's get_plugin_compatibility is asked, and
// in words.
struct AbiTrait {
    std::string_view keyword; // "ABI " and a word or two
    std::string_view words;   // for people
};

// The pairs of which a compilation has one each; `quillon plugins` asks for them.
inline constexpr AbiTrait ABI_TRAITS[][2] = {
    {{"ABI libstdc++", "the standard library libstdc++"},
     {"ABI libc++", "the standard library libc++"}},
    {{"ABI new strings", "the present layout of strings"},
     {"ABI old strings", "the old layout of strings (_GLIBCXX_USE_CXX11_ABI=0)"}},
    {{"ABI plain containers", "plain containers"},
     {"ABI debug containers", "debug containers (_GLIBCXX_DEBUG)"}},
};

// The traits of this compilation, as indices into the pairs.
inline constexpr int OWN_ABI[] = {QUILLON_LIBRARY_ABI / 4, QUILLON_LIBRARY_ABI / 2 % 2,
                                  QUILLON_LIBRARY_ABI % 2};

// True for "ABI", which asks whether there are answers, and for the keywords of this compilation.
constexpr bool is_own_abi(std::string_view keyword) {
    if (keyword == "ABI")
        return true;
    for (std::size_t i = 0; i < std::size(OWN_ABI); ++i)
        if (keyword == ABI_TRAITS[i][OWN_ABI[i]].keyword)
            return true;
    return false;
}

} // namespace quillon
