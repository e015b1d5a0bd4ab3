#include "quillon/appearance/color_names.h"
#include "quillon/appearance/light.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"

#include <array>
#include <type_traits>

using quillon::cColor;
using quillon::cLight;
using quillon::cMaterial;

// The contract is theirs alone: callers use the operations, and convert nothing.
static_assert(!std::is_convertible_v<cColor*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cLight*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cMaterial*, quillon::cSerializable*>);

static_assert(!std::has_virtual_destructor_v<cMaterial>);

TEST(Light, FieldsHaveTheirOffsetsAndComeBack) {
    cLight light;
    light.set_colors(quillon::RED, quillon::LIME, quillon::BLUE, 15);
    light.set_position({1, 2, 3});
    light.set_direction({0, 0, -8});
    light.set_spot_and_attenuation(10, 11, 12, 13, 14, 16);
    std::array<std::uint8_t, 62> bytes{};
    bytes.back() = 77;
    EXPECT_EQ(61U, light.serialize(bytes.data()));
    EXPECT_EQ(77, bytes.back());

    cLight back;
    EXPECT_EQ(61U, back.deserialize(bytes.data()));
    expect_color(back.ambient, quillon::RED);
    expect_color(back.diffuse, quillon::LIME);
    expect_color(back.specular, quillon::BLUE);
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
    EXPECT_EQ(255, bytes[8]) << "the red of the ambient colour";
    EXPECT_EQ(16, bytes[60]);

    expect_color(quillon::LIGHT_DEFAULT.diffuse, quillon::WHITE);
    expect_color(quillon::LIGHT_DEFAULT.ambient, quillon::BLACK);
    EXPECT_EQ(180.0F, quillon::LIGHT_DEFAULT.spot_cutoff);
    EXPECT_EQ(1, quillon::LIGHT_DEFAULT.light_flag);
}

TEST(Material, FlatFormClampsTheColors) {
    const cMaterial* pearl = __nsMaterial_material_table("pearlescent_ora_azu");
    ASSERT_NE(nullptr, pearl);
    expect_color(pearl->specular, -1, 0, 1, 1);

    std::array<std::uint8_t, 20> bytes{};
    EXPECT_EQ(20U, pearl->serialize(bytes.data()));
    cMaterial back = quillon::MATERIAL_DEFAULT;
    EXPECT_EQ(20U, back.deserialize(bytes.data()));
    expect_color(back.get_ambient(), 1, 127 / 255.0F, 0, 1);
    expect_color(back.get_diffuse(), quillon::component_from_byte(bytes[4]),
                 quillon::component_from_byte(bytes[5]), quillon::component_from_byte(bytes[6]), 1);
    expect_color(back.get_specular(), 0, 0, 1, 1);
    expect_color(back.get_emission(), 0, 0, 0, 1);
    EXPECT_EQ(8, back.shininess);
}

TEST(Material, OpaquifyFoldsAlphaOnce) {
    cMaterial emerald = *__nsMaterial_material_table("EMERALD");
    for (int i = 0; i < 2; ++i) {
        __mMaterial_opaquify(emerald);
        expect_color(emerald.ambient, 0.0215F * 0.55F, 0.1745F * 0.55F, 0.0215F * 0.55F, 1);
        expect_color(emerald.emission, 0, 0, 0, 1);
        EXPECT_EQ(76.8F, emerald.shininess);
    }
}
