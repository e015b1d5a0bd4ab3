// SPDX-License-Identifier: MIT
// The three tables of names: colours, gradients and materials.
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/gradient.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"
#include "tests/flat_form.h"

#include <algorithm>
#include <string>
#include <string_view>

using quillon::cColor;

namespace {

// Runs before this program's main, and before what the library would make later.
const std::string EARLY = __nsGradient_gradient_table("Skin")->name;

std::string lower_case(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), quillon::detail::to_lower);
    return lower;
}

} // namespace

TEST(Named, OtherNamesFindNothing) {
    for (const std::string& name :
         {std::string(), std::string("STEEL BLUE"), std::string(" RED"), std::string("RED "),
          std::string("R\xC5\x44"), std::string("PEARLESCENT"), std::string("gold polished"),
          std::string("Hue "), std::string("Hue\xC4"), std::string("0"),
          std::string(100000, 'x')}) {
        EXPECT_EQ(nullptr, __nsColor_color_table(name)) << name;
        EXPECT_EQ(nullptr, __nsMaterial_material_table(name)) << name;
        EXPECT_EQ(nullptr, __nsGradient_gradient_table(name)) << name;
    }
}

TEST(Named, AreFoundInLowerCase) {
    for (const auto& [name, color] : quillon::NAMED_COLORS)
        expect_color(*__nsColor_color_table(lower_case(name)), color);
    for (const auto& [name, material] : quillon::NAMED_MATERIALS)
        EXPECT_EQ(flat_form_of(material),
                  flat_form_of(*__nsMaterial_material_table(lower_case(name))));
}

TEST(Named, GradientsAreThereBeforeMain) {
    EXPECT_EQ("Skin", EARLY);
    EXPECT_EQ(__nsGradient_gradient_table("Flame"), __nsGradient_gradient_table("flame"));
}
