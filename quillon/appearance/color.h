// SPDX-License-Identifier: MIT
// Colours: the value, its bytes, and conversions from a name, a text or a hue.
#pragma once

#include "quillon/export.h"
#include "quillon/math/serializable.h"

#include <cstdint>
#include <string>

namespace quillon {

// The component of a byte: byte / 255, rounded to 32 bits.
constexpr float component_from_byte(std::uint8_t byte) {
    return static_cast<float>(byte / 255.0);
}

// The byte of a component that is clamped to 0 to 1: component * 255, truncated, so 127 for 0.5.
//
// 0 for NaN.
constexpr std::uint8_t clamped_byte_from_component(float component) {
    if (!(component > 0.0F))
        return 0;
    return component < 1.0F ? static_cast<std::uint8_t>(static_cast<double>(component) * 255.0)
                            : 255;
}

// The byte of a component that wraps: component * 255, truncated to a 32-bit integer, low 8 bits.
//
// 0 for NaN, and for a product that no 32-bit integer can represent.
constexpr std::uint8_t wrapped_byte_from_component(float component) {
    const double scaled = static_cast<double>(component) * 255.0;
    if (!(scaled > -2147483649.0 && scaled < 2147483648.0))
        return 0;
    return static_cast<std::uint8_t>(static_cast<std::int32_t>(scaled));
}

// A colour: red, green, blue and alpha (1 is opaque), nominally 0 to 1 and not clamped.
//
// Flat form: r, g, b, a as one byte each, clamped to 0 to 1, 4 bytes.
// An index outside 0 to 3 refers to a scratch zero, which is shared and belongs to no colour.
class cColor : cSerializable {
public:
    // Red, green, blue and alpha.
    float r;
    float g;
    float b;
    float a;

    // A colour of these components; nothing is clamped.
    constexpr cColor(float red, float green, float blue, float alpha)
        : r(red), g(green), b(blue), a(alpha) {}

    constexpr cColor(const cColor&) = default;
    constexpr cColor& operator=(const cColor&) = default;

    // Sets all components; nothing is clamped.
    constexpr void set(float red, float green, float blue, float alpha) {
        r = red;
        g = green;
        b = blue;
        a = alpha;
    }

    // Component 0 to 3: red, green, blue, alpha.
    constexpr float& operator[](int index) {
        return detail::has_index(COMPONENTS, index)
                   ? this->*COMPONENTS[index]
                   : detail::zeroed(detail::writable_scratch<cColor, float>);
    }

    // The same for reading.
    constexpr const float& operator[](int index) const {
        return detail::has_index(COMPONENTS, index)
                   ? this->*COMPONENTS[index]
                   : detail::zeroed(detail::readable_scratch<cColor, float>);
    }

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        for (int i = 0; i < 4; ++i)
            buffer[i] = clamped_byte_from_component((*this)[i]);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        for (int i = 0; i < 4; ++i)
            (*this)[i] = component_from_byte(buffer[i]);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override { return 4; }

    constexpr virtual ~cColor() {} // NOLINT(modernize-use-equals-default): see cVector3D

private:
    static constexpr float cColor::*COMPONENTS[] = {&cColor::r, &cColor::g, &cColor::b, &cColor::a};
};

} // namespace quillon

extern "C" {

// Returns the named colour, or null if no colour has that name; letter case is ignored.
//
// Names are compared by their name_hash; nothing is trimmed.
// The colour belongs to the library and lives as long as it.
QUILLON_API const quillon::cColor* __nsColor_color_table(const std::string& name);

// Reads a colour from text: red, green, blue and alpha as decimals, each closed by "#".
//
// A component without a closed field keeps its value; fields beyond the fourth are skipped.
// A field that is empty or does not parse is 0. Only the first 23 characters of a field count.
QUILLON_API void __nsColor_color_from_string(quillon::cColor& out, const char* text);

// Sets an opaque colour from hue, saturation and value.
//
// `hue` is a fraction of the colour circle: 0 red, 1/6 yellow, 2/6 green, up to 5/6 magenta;
// outside 0 to 1 the formula of the nearest sixth is continued. Nothing is wrapped or clamped.
QUILLON_API void __nsColor_hue_function(quillon::cColor& out, const float& hue,
                                        const float& saturation, const float& value);
}
