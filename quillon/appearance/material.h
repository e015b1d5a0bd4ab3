// SPDX-License-Identifier: MIT
// The parameters of a surface, for the renderer.
#pragma once

#include "quillon/appearance/color_names.h"
#include "quillon/export.h"

#include <cstdint>
#include <string>

namespace quillon {

// Its destructor is not virtual: what derives from it is destroyed as itself.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// A material: how a surface reflects ambient, diffuse and specular light, what it emits, and the
// specular exponent.
//
// The library stores the values and does not interpret them.
// Flat form: 20 bytes, the fields in their order.
class cMaterial : cSerializable {
public:
    // The colours of the four parts.
    cColor ambient;
    cColor diffuse;
    cColor specular;
    cColor emission;
    float shininess; // the specular exponent

    // A material of these values.
    constexpr cMaterial(const cColor& ambient_color, const cColor& diffuse_color,
                        const cColor& specular_color, const cColor& emission_color,
                        float specular_exponent)
        : ambient(ambient_color),
          diffuse(diffuse_color),
          specular(specular_color),
          emission(emission_color),
          shininess(specular_exponent) {}

    // Stores the ambient colour.
    void set_ambient(const cColor& color) { ambient = color; }

    // Stores the diffuse colour.
    void set_diffuse(const cColor& color) { diffuse = color; }

    // Stores the specular colour.
    void set_specular(const cColor& color) { specular = color; }

    // Stores the emitted colour.
    void set_emission(const cColor& color) { emission = color; }

    // The ambient colour.
    const cColor& get_ambient() const { return ambient; }

    // The diffuse colour.
    const cColor& get_diffuse() const { return diffuse; }

    // The specular colour.
    const cColor& get_specular() const { return specular; }

    // The emitted colour.
    const cColor& get_emission() const { return emission; }

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        std::uint32_t offset = 0;
        for (const cColor* color : {&ambient, &diffuse, &specular, &emission})
            offset += color->serialize(buffer + offset);
        detail::write_scalar<float>(buffer + offset, shininess);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        std::uint32_t offset = 0;
        for (cColor* color : {&ambient, &diffuse, &specular, &emission})
            offset += color->deserialize(buffer + offset);
        shininess = detail::read_scalar<float>(buffer + offset);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override {
        return 4 * ambient.serialized_size() + sizeof(shininess);
    }
};

#pragma GCC diagnostic pop

// The named material "WHITE".
constexpr cMaterial MATERIAL_DEFAULT(WHITE, WHITE, BLACK, BLACK, 0.0F);

} // namespace quillon

extern "C" {

// Returns the named material, or null if no material has that name; letter case is ignored.
//
// Names are compared by their name_hash; nothing is trimmed.
// The material belongs to the library, lives as long as it, and is shared by all who look it up.
QUILLON_API const quillon::cMaterial* __nsMaterial_material_table(const std::string& name);

// Folds the alpha of each of the four colours into its red, green and blue, and makes it opaque.
//
// colour = (red * alpha, green * alpha, blue * alpha, 1); the shininess is unchanged.
// Meant for a copy of a named material: the named one is shared.
QUILLON_API void __mMaterial_opaquify(quillon::cMaterial& material);
}
