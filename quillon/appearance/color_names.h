// SPDX-License-Identifier: MIT
// The 53 named colours: constants, and a table of them.
#pragma once

#include "quillon/appearance/color.h"
#include "quillon/appearance/named.h"

#include <array>

namespace quillon {

// One list expands to both, so that neither can miss a colour of the other.
#define QUILLON_NAMED_COLORS(COLOR)                                                                \
    COLOR(WHITE, 1, 1, 1, 1)                                                                       \
    COLOR(GREY, 0.5, 0.5, 0.5, 1)                                                                  \
    COLOR(SILVER, 0.75, 0.75, 0.75, 1)                                                             \
    COLOR(CHARCOAL, 0.27, 0.27, 0.27, 1)                                                           \
    COLOR(BLACK, 0, 0, 0, 1)                                                                       \
    COLOR(RED, 1, 0, 0, 1)                                                                         \
    COLOR(BLOOD, 0.5, 0, 0, 1)                                                                     \
    COLOR(MAGENTA, 1, 0, 1, 1)                                                                     \
    COLOR(PURPLE, 0.5, 0, 0.5, 1)                                                                  \
    COLOR(ORANGE, 1, 0.5, 0, 1)                                                                    \
    COLOR(ROSE, 1, 0, 0.5, 1)                                                                      \
    COLOR(AMARANTH, 229 / 255.0, 43 / 255.0, 80 / 255.0, 1)                                        \
    COLOR(CRIMSON, 220 / 255.0, 20 / 255.0, 60 / 255.0, 1)                                         \
    COLOR(SCARLET, 1, 36 / 255.0, 0, 1)                                                            \
    COLOR(BURGUNDY, 114 / 255.0, 0, 32 / 255.0, 1)                                                 \
    COLOR(MAROON, 128 / 255.0, 0, 0, 1)                                                            \
    COLOR(LIME, 0, 1, 0, 1)                                                                        \
    COLOR(GREEN, 0, 0.5, 0, 1)                                                                     \
    COLOR(SEAGREEN, 0, 1, 0.5, 1)                                                                  \
    COLOR(CHARTREUSE, 127 / 255.0, 1, 0, 1)                                                        \
    COLOR(JADE, 0, 168 / 255.0, 107 / 255.0, 1)                                                    \
    COLOR(FERNGREEN, 79 / 255.0, 121 / 255.0, 66 / 255.0, 1)                                       \
    COLOR(CELADON, 172 / 255.0, 1, 175 / 255.0, 1)                                                 \
    COLOR(BATTLESHIPGREY, 130 / 255.0, 143 / 255.0, 114 / 255.0, 1)                                \
    COLOR(BLUE, 0, 0, 1, 1)                                                                        \
    COLOR(NAVY, 0, 0, 0.5, 1)                                                                      \
    COLOR(CYAN, 0, 1, 1, 1)                                                                        \
    COLOR(TEAL, 0, 0.5, 0.5, 1)                                                                    \
    COLOR(AZURE, 0, 0.5, 1, 1)                                                                     \
    COLOR(VIOLET, 0.5, 0, 1, 1)                                                                    \
    COLOR(ALICEBLUE, 240 / 255.0, 248 / 255.0, 1, 1)                                               \
    COLOR(DENIM, 21 / 255.0, 96 / 255.0, 189 / 255.0, 1)                                           \
    COLOR(SAPPHIRE, 8 / 255.0, 37 / 255.0, 103 / 255.0, 1)                                         \
    COLOR(ULTRAMARINE, 18 / 255.0, 10 / 255.0, 143 / 255.0, 1)                                     \
    COLOR(INDIGO, 75 / 255.0, 0, 130 / 255.0, 1)                                                   \
    COLOR(CORNFLOWERBLUE, 100 / 255.0, 149 / 255.0, 237 / 255.0, 1)                                \
    COLOR(POWDERBLUE, 176 / 255.0, 224 / 255.0, 230 / 255.0, 1)                                    \
    COLOR(CERULEAN, 0, 123 / 255.0, 167 / 255.0, 1)                                                \
    COLOR(STEELBLUE, 70 / 255.0, 130 / 255.0, 180 / 255.0, 1)                                      \
    COLOR(PAYNESGREY, 64 / 255.0, 64 / 255.0, 72 / 255.0, 1)                                       \
    COLOR(YELLOW, 1, 1, 0, 1)                                                                      \
    COLOR(STRAW, 0.5, 0.5, 0, 1)                                                                   \
    COLOR(GOLDEN, 1, 0.8, 0, 1)                                                                    \
    COLOR(GOLD, 212 / 255.0, 175 / 255.0, 55 / 255.0, 1)                                           \
    COLOR(BROWN, 150 / 255.0, 75 / 255.0, 0, 1)                                                    \
    COLOR(DARKSKIN, 1, 0.5, 0.25, 1)                                                               \
    COLOR(LIGHTSKIN, 1, 0.8, 0.5, 1)                                                               \
    COLOR(SEPIA, 112 / 255.0, 66 / 255.0, 20 / 255.0, 1)                                           \
    COLOR(BEIGE, 245 / 255.0, 245 / 255.0, 220 / 255.0, 1)                                         \
    COLOR(OCHRE, 0.8, 119 / 255.0, 34 / 255.0, 1)                                                  \
    COLOR(MAHOGANY, 192 / 255.0, 64 / 255.0, 0, 1)                                                 \
    COLOR(COPPER, 184 / 255.0, 115 / 255.0, 0.2, 1)                                                \
    COLOR(INVISIBLE, 1, 1, 1, 0)

#define QUILLON_COLOR_CONSTANT(name, red, green, blue, alpha)                                      \
    constexpr cColor name(static_cast<float>(red), static_cast<float>(green),                      \
                          static_cast<float>(blue), static_cast<float>(alpha));
#define QUILLON_COLOR_ROW(name, red, green, blue, alpha) {#name, name},

QUILLON_NAMED_COLORS(QUILLON_COLOR_CONSTANT)

// The colours with their names, in the order of the list above.
constexpr std::array<Named<cColor>, 53> NAMED_COLORS{{QUILLON_NAMED_COLORS(QUILLON_COLOR_ROW)}};

#undef QUILLON_COLOR_ROW
#undef QUILLON_COLOR_CONSTANT
#undef QUILLON_NAMED_COLORS

} // namespace quillon
