// SPDX-License-Identifier: MIT
// The one unit that holds the code of stb_truetype.
#define STB_TRUETYPE_IMPLEMENTATION
#include <stb/stb_truetype.h>
