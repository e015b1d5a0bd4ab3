#include "quillon/containers/name_hash.h"

std::uint32_t __mystring_hash(const char* text) {
    return quillon::name_hash(text);
}

bool __mystring_case_insensitive_string_equal(const char* a, const char* b) {
    return quillon::equal_ignoring_case(a, b);
}
