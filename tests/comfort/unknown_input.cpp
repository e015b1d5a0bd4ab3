// SPDX-License-Identifier: MIT
// Does not compile: no input has this name.
#include "quillon/comfort.h"

constexpr auto code = quillon::input_code("Spacebar");
