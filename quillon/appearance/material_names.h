// SPDX-License-Identifier: MIT
// The table of the 27 named materials.
#pragma once

#include "quillon/appearance/material.h"
#include "quillon/appearance/named.h"

#include <array>

namespace quillon {
namespace detail {

struct Rgb {
    float red;
    float green;
    float blue;
};

// A material whose colours have one alpha and which emits nothing.
consteval cMaterial unlit_material(Rgb ambient, Rgb diffuse, Rgb specular, float alpha,
                                   float shininess) {
    const auto with_alpha = [alpha](Rgb rgb) {
        return cColor(rgb.red, rgb.green, rgb.blue, alpha);
    };
    return {with_alpha(ambient), with_alpha(diffuse), with_alpha(specular), with_alpha({0, 0, 0}),
            shininess};
}

} // namespace detail

// The materials with their names.
constexpr std::array<Named<cMaterial>, 27> NAMED_MATERIALS{{
    {"WHITE", detail::unlit_material({1, 1, 1}, {1, 1, 1}, {0, 0, 0}, 1, 0)},
    {"BLACK_PLASTIC",
     detail::unlit_material({0, 0, 0}, {0.01F, 0.01F, 0.01F}, {0.5F, 0.5F, 0.5F}, 1, 32)},
    {"BRASS",
     detail::unlit_material({0.329412F, 0.223529F, 0.027451F}, {0.780392F, 0.568627F, 0.113725F},
                            {0.992157F, 0.941176F, 0.807843F}, 1, 27.8974F)},
    {"BRONZE", detail::unlit_material({0.2125F, 0.1275F, 0.054F}, {0.714F, 0.4284F, 0.18144F},
                                      {0.393548F, 0.271906F, 0.166721F}, 1, 25.6F)},
    {"BRONZE_POLISHED", detail::unlit_material({0.25F, 0.148F, 0.06475F}, {0.4F, 0.2368F, 0.1036F},
                                               {0.774597F, 0.458561F, 0.200621F}, 1, 76.8F)},
    {"CHROME", detail::unlit_material({0.25F, 0.25F, 0.25F}, {0.4F, 0.4F, 0.4F},
                                      {0.774597F, 0.774597F, 0.774597F}, 1, 76.8F)},
    {"COPPER", detail::unlit_material({0.19125F, 0.0735F, 0.0275F}, {0.7038F, 0.27048F, 0.0828F},
                                      {0.256777F, 0.137622F, 0.086014F}, 1, 12.8F)},
    {"COPPER_POLISHED",
     detail::unlit_material({0.2295F, 0.08825F, 0.0275F}, {0.5508F, 0.2118F, 0.066F},
                            {0.580594F, 0.223257F, 0.0695701F}, 1, 51.2F)},
    {"EMERALD", detail::unlit_material({0.0215F, 0.1745F, 0.0215F}, {0.07568F, 0.61424F, 0.07568F},
                                       {0.633F, 0.727811F, 0.633F}, 0.55F, 76.8F)},
    {"GLASS",
     detail::unlit_material({0.234118F, 0.267059F, 0.244706F}, {0.546275F, 0.623137F, 0.57098F},
                            {0.546275F, 0.623137F, 0.57098F}, 1, 32)},
    {"GOLD", detail::unlit_material({0.24725F, 0.1995F, 0.0745F}, {0.75164F, 0.60648F, 0.22648F},
                                    {0.628281F, 0.555802F, 0.366065F}, 1, 51.2F)},
    {"GOLD_POLISHED",
     detail::unlit_material({0.24725F, 0.2245F, 0.0645F}, {0.34615F, 0.3143F, 0.0903F},
                            {0.797357F, 0.723991F, 0.208006F}, 1, 83.2F)},
    {"JADE", detail::unlit_material({0.135F, 0.2225F, 0.1575F}, {0.54F, 0.89F, 0.63F},
                                    {0.316228F, 0.316228F, 0.316228F}, 0.95F, 12.8F)},
    {"OBSIDIAN", detail::unlit_material({0.05375F, 0.05F, 0.06625F}, {0.18275F, 0.17F, 0.22525F},
                                        {0.332741F, 0.328634F, 0.346435F}, 0.82F, 38.4F)},
    {"PEARL", detail::unlit_material({0.25F, 0.20725F, 0.20725F}, {1, 0.829F, 0.829F},
                                     {0.296648F, 0.296648F, 0.296648F}, 0.922F, 11.264F)},
    {"PEARLESCENT_ORA_AZU", detail::unlit_material({1, 0.5F, 0}, {1, 0.5F, 0}, {-1, 0, 1}, 1, 8)},
    {"PEARLESCENT_PURPLE",
     detail::unlit_material({0.35F, 0.15F, 0.3F}, {0.35F, 0.15F, 0.3F}, {-0.35F, 1, 1.3F}, 1, 8)},
    {"PEARLESCENT_TURQUOISE",
     detail::unlit_material({0, 0.8F, 0}, {0, 0.8F, 0}, {0, -1, 0.8F}, 1, 8)},
    {"PEARLESCENT_SUNBURST", detail::unlit_material({1, 0, 0}, {1, 0, 0}, {0, 1, 0}, 1, 8)},
    {"PEWTER",
     detail::unlit_material({0.105882F, 0.058824F, 0.113725F}, {0.427451F, 0.470558F, 0.541176F},
                            {0.333333F, 0.333333F, 0.521569F}, 1, 9.84615F)},
    {"RUBBER", detail::unlit_material({0.02F, 0.02F, 0.02F}, {0.01F, 0.01F, 0.01F},
                                      {0.4F, 0.4F, 0.4F}, 1, 10)},
    {"RUBY", detail::unlit_material({0.1745F, 0.01175F, 0.01175F}, {0.61424F, 0.04136F, 0.04136F},
                                    {0.727811F, 0.626959F, 0.626959F}, 0.55F, 76.8F)},
    {"SAPPHIRE",
     detail::unlit_material({0.01175F, 0.01175F, 0.1745F}, {0.04136F, 0.04136F, 0.61424F},
                            {0.626959F, 0.626959F, 0.727811F}, 0.55F, 76.8F)},
    {"SILVER",
     detail::unlit_material({0.19225F, 0.19225F, 0.19225F}, {0.50754F, 0.50754F, 0.50754F},
                            {0.508273F, 0.508273F, 0.508273F}, 1, 51.2F)},
    {"SILVER_POLISHED",
     detail::unlit_material({0.23125F, 0.23125F, 0.23125F}, {0.2775F, 0.2775F, 0.2775F},
                            {0.773911F, 0.773911F, 0.773911F}, 1, 89.6F)},
    {"TOPAZ", detail::unlit_material({0.1745F, 0.1745F, 0.01175F}, {0.61424F, 0.61424F, 0.04136F},
                                     {0.727811F, 0.727811F, 0.626959F}, 0.55F, 76.8F)},
    {"TURQUOISE", detail::unlit_material({0.1F, 0.18725F, 0.1745F}, {0.396F, 0.74151F, 0.69102F},
                                         {0.297254F, 0.30829F, 0.306678F}, 0.8F, 12.8F)},
}};

} // namespace quillon
