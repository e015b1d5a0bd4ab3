// SPDX-License-Identifier: MIT
// The functions that the trigonometry tables are filled with: the C library's, which differ between
// systems in the last place, or under QUILLON_EXACT_TABLES our own, which are equal everywhere.
#pragma once

#ifdef QUILLON_EXACT_TABLES
    #include "quillon/math/exact_functions.h"
#else
    #include <cmath>
#endif

namespace quillon::trig {

#ifdef QUILLON_EXACT_TABLES
namespace table_functions = exact;
#else
namespace table_functions = std;
#endif

} // namespace quillon::trig
