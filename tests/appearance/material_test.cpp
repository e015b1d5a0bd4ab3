// SPDX-License-Identifier: MIT
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/light.h"
#include "quillon/appearance/material_names.h"
#include "tests/appearance/expect_color.h"
#include "tests/flat_form.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <type_traits>

using quillon::cColor;
using quillon::cLight;
using quillon::cMaterial;

// The contract is theirs alone: callers use the operations, and convert nothing.
static_assert(!std::is_convertible_v<cColor*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cLight*, quillon::cSerializable*>);
static_assert(!std::is_convertible_v<cMaterial*, quillon::cSerializable*>);

static_assert(!std::has_virtual_destructor_v<cMaterial> && !std::has_virtual_destructor_v<cLight>);

#pragma GCC diagnostic ignored "-Winvalid-offsetof"

constexpr bool are_in_order(auto... offsets) {
    return std::ranges::is_sorted(std::array{sizeof(void*), offsets...});
}

static_assert(are_in_order(offsetof(cLight, diffuse), offsetof(cLight, specular),
                           offsetof(cLight, ambient), offsetof(cLight, position),
                           offsetof(cLight, direction), offsetof(cLight, spot_cutoff),
                           offsetof(cLight, spot_exponent), offsetof(cLight, constant_attenuation),
                           offsetof(cLight, linear_attenuation),
                           offsetof(cLight, quadratic_attenuation), offsetof(cLight, intensity),
                           offsetof(cLight, light_flag)));
using Rgba = std::array<std::uint8_t, 4>;

TEST(Light, FieldsHaveTheirOffsetsAndComeBack) {
    cLight light;
    light.set_colors({1, 0, 0.2F, 1}, {0, 1, 0.4F, 0}, {0.2F, 0, 1, 0.6F}, 15);
    light.set_position({1, 2, 3});
    light.set_direction({0, 0, -8});
    light.set_spot_and_attenuation(10, 11, 12, 13, 14, 16);
    const auto bytes = bytes_of(Rgba{0, 255, 102, 0}, Rgba{51, 0, 255, 153}, Rgba{255, 0, 51, 255},
                                1.0F, 2.0F, 3.0F, 0.0F, 0.0F, -1.0F, 10.0F, 11.0F, 12.0F, 13.0F,
                                14.0F, 15.0F, std::uint8_t{16});
    EXPECT_EQ(61U, bytes.size());
    cLight back;
    expect_flat_form(light, back, bytes);
    expect_color(back.ambient, {1, 0, 0.2F, 1});
    EXPECT_EQ(3, back.position.z);
    EXPECT_EQ(13, back.linear_attenuation);

    EXPECT_EQ(bytes_of(Rgba{255, 255, 255, 255}, Rgba{255, 255, 255, 255}, Rgba{0, 0, 0, 255}, 0.0F,
                       0.0F, 0.0F, 0.0F, 0.0F, 0.0F, 180.0F, 0.0F, 1.0F, 0.0F, 0.0F, 1.0F,
                       std::uint8_t{1}),
              flat_form_of(quillon::LIGHT_DEFAULT));
}

TEST(Material, FieldsHaveTheirOffsetsAndColorsClamp) {
    const cMaterial material({1, 0, 0.2F, 1}, {0, 1, 0.4F, 0}, {-1, 0.6F, 2, 0.8F},
                             {0.4F, 0.2F, 0, 0.6F}, 8);
    const auto bytes = bytes_of(Rgba{255, 0, 51, 255}, Rgba{0, 255, 102, 0}, Rgba{0, 153, 255, 204},
                                Rgba{102, 51, 0, 153}, 8.0F);
    cMaterial back = quillon::MATERIAL_DEFAULT;
    expect_flat_form(material, back, bytes);
    expect_color(back.get_ambient(), {1, 0, 0.2F, 1});
    expect_color(back.get_diffuse(), {0, 1, 0.4F, 0});
    expect_color(back.get_specular(), {0, 0.6F, 1, 0.8F});
    expect_color(back.get_emission(), {0.4F, 0.2F, 0, 0.6F});
    EXPECT_EQ(flat_form_of(*__nsMaterial_material_table("WHITE")),
              flat_form_of(quillon::MATERIAL_DEFAULT));
}

TEST(Material, OpaquifyFoldsAlphaOnce) {
    cMaterial material({1, 0.5F, 2, 0.5F}, {1, 2, 3, 0.25F}, {4, 6, -8, 2}, {8, 4, 2, 0.125F}, 76);
    for (int i = 0; i < 2; ++i) {
        __mMaterial_opaquify(material);
        expect_color(material.ambient, {0.5F, 0.25F, 1, 1});
        expect_color(material.diffuse, {0.25F, 0.5F, 0.75F, 1});
        expect_color(material.specular, {8, 12, -16, 1});
        expect_color(material.emission, {1, 0.5F, 0.25F, 1});
        EXPECT_EQ(76, material.shininess);
    }
}
