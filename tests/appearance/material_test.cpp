#include "quillon/appearance/light.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <type_traits>

using quillon::cColor;
using quillon::cLight;
using quillon::cMaterial;

// The contract is theirs alone: callers use the operations, and convert nothing.
static_assert(!std::is_convertible_v<cColor*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cLight*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cMaterial*, quillon::cSerializable*>);

static_assert(!std::has_virtual_destructor_v<cMaterial>);

namespace {

void expect_same(const cColor& expected, const cColor& color) {
    expect_color(color, expected.r, expected.g, expected.b, expected.a);
}

void expect_same(const cMaterial& expected, const cMaterial& material) {
    expect_same(expected.get_ambient(), material.get_ambient());
    expect_same(expected.get_diffuse(), material.get_diffuse());
    expect_same(expected.get_specular(), material.get_specular());
    expect_same(expected.get_emission(), material.get_emission());
    EXPECT_EQ(expected.shininess, material.shininess);
}

} // namespace

TEST(Light, DefaultHasItsFlatForm) {
    std::array<std::uint8_t, 62> bytes{};
    bytes.back() = 77;
    EXPECT_EQ(61U, quillon::LIGHT_DEFAULT.serialize(bytes.data()));
    EXPECT_EQ(77, bytes.back());
    const std::array<std::uint8_t, 12> colors{255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 255};
    EXPECT_TRUE(std::equal(colors.begin(), colors.end(), bytes.begin()));
    EXPECT_EQ(180.0F, quillon::detail::read_scalar<float>(&bytes[36]));
    EXPECT_EQ(1, bytes[60]);
}

TEST(Light, FieldsComeBackFromTheirOffsets) {
    cLight light;
    light.set_colors(quillon::RED, quillon::LIME, quillon::BLUE, 15);
    light.set_position({1, 2, 3});
    light.set_direction({0, 0, -8});
    light.set_spot_and_attenuation(10, 11, 12, 13, 14, 16);
    std::array<std::uint8_t, 61> bytes{};
    light.serialize(bytes.data());

    cLight back;
    EXPECT_EQ(61U, back.deserialize(bytes.data()));
    expect_same(quillon::RED, back.ambient);
    expect_same(quillon::LIME, back.diffuse);
    expect_same(quillon::BLUE, back.specular);
    EXPECT_EQ(3, back.position.z);
    EXPECT_EQ(-1, back.direction.z);
    const float scalars[] = {back.spot_cutoff,           back.spot_exponent,
                             back.constant_attenuation,  back.linear_attenuation,
                             back.quadratic_attenuation, back.intensity};
    for (std::size_t i = 0; i < std::size(scalars); ++i) {
        EXPECT_EQ(10.0F + static_cast<float>(i), scalars[i]);
        EXPECT_EQ(scalars[i], quillon::detail::read_scalar<float>(&bytes[36 + 4 * i]));
    }
    EXPECT_EQ(16, back.light_flag);
}

TEST(Material, FlatFormClampsTheColors) {
    const cMaterial* pearl = __nsMaterial_material_table("pearlescent_ora_azu");
    ASSERT_NE(nullptr, pearl);
    expect_color(pearl->specular, -1, 0, 1, 1);

    std::array<std::uint8_t, 20> bytes{};
    EXPECT_EQ(20U, pearl->serialize(bytes.data()));
    cMaterial back = quillon::MATERIAL_DEFAULT;
    EXPECT_EQ(20U, back.deserialize(bytes.data()));
    expect_color(back.ambient, 1, 127 / 255.0F, 0, 1);
    expect_color(back.specular, 0, 0, 1, 1);
    expect_color(back.emission, 0, 0, 0, 1);
    EXPECT_EQ(8, back.shininess);
}

TEST(Material, OpaquifyFoldsAlphaOnce) {
    cMaterial emerald = *__nsMaterial_material_table("EMERALD");
    __mMaterial_opaquify(emerald);
    expect_color(emerald.ambient, 0.0215F * 0.55F, 0.1745F * 0.55F, 0.0215F * 0.55F, 1);
    expect_color(emerald.emission, 0, 0, 0, 1);
    EXPECT_EQ(76.8F, emerald.shininess);

    const cMaterial once = emerald;
    __mMaterial_opaquify(emerald);
    expect_same(once, emerald);
}

TEST(MaterialTable, EveryNameFindsItsMaterialInAnyCase) {
    for (const auto& [name, material] : quillon::NAMED_MATERIALS) {
        SCOPED_TRACE(name);
        const cMaterial* found = __nsMaterial_material_table(lower_case(name));
        ASSERT_NE(nullptr, found);
        expect_same(material, *found);
        expect_color(found->emission, 0, 0, 0, found->diffuse.a);
    }
    expect_same(quillon::MATERIAL_DEFAULT, *__nsMaterial_material_table("White"));
}

// A material, and the sums over all 27, as they were published.
TEST(MaterialTable, HoldsTheMaterials) {
    const cMaterial& jade = *__nsMaterial_material_table("Jade");
    expect_color(jade.ambient, 0.135F, 0.2225F, 0.1575F, 0.95F);
    expect_color(jade.diffuse, 0.54F, 0.89F, 0.63F, 0.95F);
    expect_color(jade.specular, 0.316228F, 0.316228F, 0.316228F, 0.95F);
    EXPECT_EQ(12.8F, jade.shininess);

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

TEST(MaterialTable, OtherNamesFindNothing) {
    for (const char* name : {"", "PEARLESCENT", "gold polished", "RED", "EMERALD "})
        EXPECT_EQ(nullptr, __nsMaterial_material_table(name)) << name;
}
