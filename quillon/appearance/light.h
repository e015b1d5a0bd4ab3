// SPDX-License-Identifier: MIT
// The parameters of a light, for the renderer.
#pragma once

#include "quillon/appearance/color_names.h"
#include "quillon/math/vector.h"

#include <array>
#include <cstdint>

namespace quillon {

// Its destructor is not virtual: what derives from it is destroyed as itself.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// A light: three colours, a position, a direction, a spot and an attenuation.
//
// The library stores the values and does not interpret them.
// Flat form: 61 bytes, the fields in their order.
class cLight : cSerializable {
public:
    // The colours of its diffuse, specular and ambient parts.
    cColor diffuse = WHITE;
    cColor specular = WHITE;
    cColor ambient = BLACK;
    cVector3D position;                 // in the renderer's space
    cVector3D direction;                // (0, 0, 0) until it is set
    float spot_cutoff = 180.0F;         // degrees; 180 for no spot
    float spot_exponent = 0.0F;         // how a spot fades from its axis
    float constant_attenuation = 1.0F;  // the constant term
    float linear_attenuation = 0.0F;    // times the distance
    float quadratic_attenuation = 0.0F; // times its square
    float intensity = 1.0F;             // a factor for the colours
    std::uint8_t light_flag = 1;        // for the renderer

    // The colours come in another order than the fields.
    void set_colors(const cColor& new_ambient, const cColor& new_diffuse,
                    const cColor& new_specular, const float& new_intensity) {
        ambient = new_ambient;
        diffuse = new_diffuse;
        specular = new_specular;
        intensity = new_intensity;
    }

    // Stores the position.
    void set_position(const cVector3D& new_position) { position = new_position; }

    // Stores the normalised direction; a zero vector stays zero.
    void set_direction(const cVector3D& new_direction) { direction = new_direction.normalized(); }

    // Stores the values of the spot and of the attenuation, and the flag.
    void set_spot_and_attenuation(const float& cutoff, const float& exponent, const float& constant,
                                  const float& linear, const float& quadratic, std::uint8_t flag) {
        spot_cutoff = cutoff;
        spot_exponent = exponent;
        constant_attenuation = constant;
        linear_attenuation = linear;
        quadratic_attenuation = quadratic;
        light_flag = flag;
    }

    // Writes the flat form.
    std::uint32_t serialize(std::uint8_t* buffer) const override {
        std::uint32_t offset = 0;
        for (const cColor* color : {&diffuse, &specular, &ambient})
            offset += color->serialize(buffer + offset);
        for (const cVector3D* vector : {&position, &direction})
            offset += vector->serialize(buffer + offset);
        for (const auto scalar : SCALARS) {
            detail::write_scalar<float>(buffer + offset, this->*scalar);
            offset += sizeof(float);
        }
        buffer[offset] = light_flag;
        return serialized_size();
    }

    // The direction is read unchanged, not normalised.
    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        std::uint32_t offset = 0;
        for (cColor* color : {&diffuse, &specular, &ambient})
            offset += color->deserialize(buffer + offset);
        for (cVector3D* vector : {&position, &direction})
            offset += vector->deserialize(buffer + offset);
        for (const auto scalar : SCALARS) {
            this->*scalar = detail::read_scalar<float>(buffer + offset);
            offset += sizeof(float);
        }
        light_flag = buffer[offset];
        return serialized_size();
    }

    // 61.
    std::uint32_t serialized_size() const override {
        constexpr std::uint32_t others = sizeof(float) * SCALARS.size() + sizeof(light_flag);
        return 3 * ambient.serialized_size() + 2 * position.serialized_size() + others;
    }

private:
    static constexpr std::array<float cLight::*, 6> SCALARS{
        &cLight::spot_cutoff,        &cLight::spot_exponent,         &cLight::constant_attenuation,
        &cLight::linear_attenuation, &cLight::quadratic_attenuation, &cLight::intensity};
};

#pragma GCC diagnostic pop

// A light that was only constructed.
constexpr cLight LIGHT_DEFAULT;

} // namespace quillon
