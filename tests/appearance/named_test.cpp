// SPDX-License-Identifier: MIT
// The three tables of names: colours, gradients and materials.
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/gradient.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <vector>

using quillon::cColor;
using quillon::cMaterial;

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

// Calls check(name, numbers) for every row of a published table; an entry is a decimal or n/255.
template <typename Check>
int for_each_row(const char* file, Check check) {
    std::ifstream table(std::string(TABLE_FOLDER) + file);
    int rows = 0;
    for (std::string line; std::getline(table, line);) {
        if (line.starts_with('#'))
            continue;
        std::istringstream words(line);
        std::string name;
        words >> name;
        std::vector<float> numbers;
        for (std::string word; words >> word;)
            numbers.push_back(
                static_cast<float>(std::stod(word) / (word.ends_with("/255") ? 255 : 1)));
        SCOPED_TRACE(name);
        check(name, numbers);
        ++rows;
    }
    return rows;
}

TEST(Named, ColorsAreThePublishedOnes) {
    EXPECT_EQ(53, for_each_row("colors.txt", [](const std::string& name, const auto& n) {
                  expect_color(*__nsColor_color_table(lower_case(name)),
                               {n.at(0), n.at(1), n.at(2), n.at(3)});
              }));
}

TEST(Named, MaterialsAreThePublishedOnes) {
    EXPECT_EQ(27, for_each_row("materials.txt", [](const std::string& name, const auto& n) {
                  const cMaterial& material = *__nsMaterial_material_table(lower_case(name));
                  expect_color(material.ambient, {n.at(0), n.at(1), n.at(2), n.at(9)});
                  expect_color(material.diffuse, {n.at(3), n.at(4), n.at(5), n.at(9)});
                  expect_color(material.specular, {n.at(6), n.at(7), n.at(8), n.at(9)});
                  expect_color(material.emission, {0, 0, 0, n.at(9)});
                  EXPECT_EQ(n.at(10), material.shininess);
              }));
}

TEST(Named, GradientsFollowTheirFormulas) {
    EXPECT_EQ("Skin", EARLY);

    const struct {
        const char* name;
        float t;
        cColor expected;
    } cases[] = {
        {"Fade", 0.25F, {1, 1, 1, 0.25F}},
        {"Monochrome", 0.3F, {0.3F, 0.3F, 0.3F, 1}},
        {"Health", 0.25F, {1, 0.5F, 0, 1}},
        {"Health", 0.5F, {1, 1, 0, 1}},
        {"Health", 0.75F, {0.5F, 1, 0, 1}},
        {"Mana", 2, {0, 2, 1, 1}},
        {"Skin", 0.25F, {0.4F, 0.2874999940395355F, 0.16249999403953552F, 1}},
        {"Skin", 1, {1, 0.85F, 0.65F, 1}},
        {"Flame", 0.25F, {1, 0.32499998807907104F, 0.2F, 1}},
        {"Flame", 1, {1, 0.85F, 0.2F, 1}},
        {"Hue", 0.25F, {0.5F, 1, 0, 1}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << row.name << " at " << row.t);
        const quillon::cGradient* gradient = __nsGradient_gradient_table(lower_case(row.name));
        ASSERT_NE(nullptr, gradient);
        EXPECT_EQ(gradient, __nsGradient_gradient_table(row.name));
        EXPECT_EQ(row.name, gradient->name);
        expect_color(gradient->function(row.t), row.expected);
    }
}
