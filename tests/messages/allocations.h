// Counts what this program allocates, and lets allocations fail.
#pragma once

#include <cstddef>
#include <cstdint>

inline std::size_t allocations = 0;
inline std::size_t allocations_left = SIZE_MAX; // how many succeed before one fails
