// SPDX-License-Identifier: MIT
#include "quillon/containers/name_hash.h"

using namespace quillon;

std::uint32_t __mystring_hash(const char* text) {
    return name_hash(text);
}

bool __mystring_case_insensitive_string_equal(const char* a, const char* b) {
    return equal_ignoring_case(a, b);
}
