// The three tables of names: colours, gradients and materials.
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/gradient.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"

#include <algorithm>
#include <array>
#include <cmath>

using quillon::cColor;
using quillon::cMaterial;

namespace {

std::string lower_case(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), quillon::to_lower);
    return lower;
}

} // namespace

TEST(Named, EveryNameIsFoundInAnyCase) {
    for (const auto& [name, color] : quillon::NAMED_COLORS) {
        const cColor* found = __nsColor_color_table(lower_case(name));
        ASSERT_NE(nullptr, found) << name;
        expect_color(*found, color);
    }
    for (const auto& [name, material] : quillon::NAMED_MATERIALS) {
        const cMaterial* found = __nsMaterial_material_table(lower_case(name));
        ASSERT_NE(nullptr, found) << name;
        EXPECT_EQ(material.shininess, found->shininess) << name;
        expect_color(found->ambient, material.ambient);
        expect_color(found->emission, 0, 0, 0, found->diffuse.a);
    }
    for (const char* name : {"HEALTH", "hEaLtH", "health"})
        EXPECT_EQ(__nsGradient_gradient_table("Health"), __nsGradient_gradient_table(name)) << name;
}

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

// Some colours, and the sums over all 53, as the palette was published.
TEST(Named, ColorsAreThePalette) {
    using Bytes = std::array<int, 4>;
    const auto bytes_of = [](const cColor& color) {
        Bytes bytes{};
        for (int i = 0; i < 4; ++i)
            bytes[i] = quillon::clamped_byte_from_component(color[i]);
        return bytes;
    };

    const struct {
        const char* name;
        Bytes bytes;
    } cases[] = {
        {"White", {255, 255, 255, 255}},  {"Scarlet", {255, 36, 0, 255}},
        {"SeaGreen", {0, 255, 127, 255}}, {"CornflowerBlue", {100, 149, 237, 255}},
        {"Ochre", {204, 119, 34, 255}},   {"Invisible", {255, 255, 255, 0}},
    };

    for (const auto& row : cases)
        EXPECT_EQ(row.bytes, bytes_of(*__nsColor_color_table(row.name))) << row.name;

    Bytes sums{};
    for (const auto& [name, color] : quillon::NAMED_COLORS)
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i] += bytes_of(color)[i];
    EXPECT_EQ((Bytes{6969, 6067, 5716, 13260}), sums);
}

TEST(Named, GradientsFollowTheirFormulas) {
    const struct {
        const char* name;
        float t;
        cColor expected;
    } cases[] = {
        {"Fade", 0, {1, 1, 1, 0}},          {"Monochrome", 0.3F, {0.3F, 0.3F, 0.3F, 1}},
        {"Health", 0, {1, 0, 0, 1}},        {"Health", 0.5F, {1, 1, 0, 1}},
        {"Health", 0.75F, {0.5F, 1, 0, 1}}, {"Mana", 2, {0, 2, 1, 1}},
        {"Skin", 0, {0.2F, 0.1F, 0, 1}},    {"Skin", 1, {1, 0.85F, 0.65F, 1}},
        {"Flame", 0, {1, 0.15F, 0.2F, 1}},  {"Flame", 1, {1, 0.85F, 0.2F, 1}},
        {"Hue", 0, {1, 0, 0, 1}},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << row.name << " at " << row.t);
        const quillon::cGradient* gradient = __nsGradient_gradient_table(row.name);
        ASSERT_NE(nullptr, gradient);
        EXPECT_EQ(row.name, gradient->name);
        expect_color(gradient->function(row.t), row.expected);
    }
}

// A material, and the sums over all 27, as they were published.
TEST(Named, MaterialsAreThePublishedOnes) {
    const cMaterial& jade = *__nsMaterial_material_table("Jade");
    expect_color(jade.ambient, 0.135F, 0.2225F, 0.1575F, 0.95F);
    expect_color(jade.diffuse, 0.54F, 0.89F, 0.63F, 0.95F);
    expect_color(jade.specular, 0.316228F, 0.316228F, 0.316228F, 0.95F);
    EXPECT_EQ(12.8F, jade.shininess);
    const cMaterial& white = *__nsMaterial_material_table("White");
    expect_color(white.specular, quillon::MATERIAL_DEFAULT.specular);
    EXPECT_EQ(quillon::MATERIAL_DEFAULT.shininess, white.shininess);

    // In millionths, so that the sums are exact and no digit is lost in them.
    using Sums = std::array<long, 11>;
    Sums sums{};
    for (const auto& [name, material] : quillon::NAMED_MATERIALS) {
        std::size_t i = 0;
        for (const cColor* color : {&material.ambient, &material.diffuse, &material.specular})
            for (const int channel : {0, 1, 2})
                sums[i++] += std::lround((*color)[channel] * 1e6);
        sums[9] += std::lround(material.diffuse.a * 1e6);
        sums[10] += std::lround(material.shininess * 1e4);
    }
    EXPECT_EQ((Sums{7011662, 5593662, 3517132, 13239818, 11327332, 7629451, 10868152, 12184906,
                    12934888, 24692000, 10446076}),
              sums);
}
