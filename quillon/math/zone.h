// SPDX-License-Identifier: MIT
// Axis-aligned boxes in space.
#pragma once

#include "quillon/export.h"
#include "quillon/math/serializable.h"
#include "quillon/math/vector.h"

#include <cstdint>

namespace quillon {

// The box between two corners. The constructor orders them; nothing keeps them ordered afterwards.
//
// Flat form: minimum, then maximum, 24 bytes.
class cZone3D : public cSerializable {
public:
    // The corners.
    cVector3D minimum;
    cVector3D maximum;

    // A box about the origin by its half extents; their signs are ignored.
    constexpr cZone3D(double x, double y, double z)
        : minimum(-magnitude(x), -magnitude(y), -magnitude(z)),
          maximum(magnitude(x), magnitude(y), magnitude(z)) {}

    constexpr cZone3D(const cZone3D&) = default;
    constexpr cZone3D& operator=(const cZone3D&) = default;

    std::uint32_t serialize(std::uint8_t* buffer) const override {
        std::uint32_t offset = 0;
        offset += minimum.serialize(buffer + offset);
        maximum.serialize(buffer + offset);
        return serialized_size();
    }

    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        std::uint32_t offset = 0;
        offset += minimum.deserialize(buffer + offset);
        maximum.deserialize(buffer + offset);
        return serialized_size();
    }

    std::uint32_t serialized_size() const override {
        return minimum.serialized_size() + maximum.serialized_size();
    }

    constexpr virtual ~cZone3D() {} // NOLINT(modernize-use-equals-default): see cVector3D

private:
    // Adding 0.0 turns a negative zero into a positive one.
    static constexpr double magnitude(double extent) {
        return extent < 0.0 ? -extent : extent + 0.0;
    }
};

// Boxes about the origin, with half extents of 0, 0.5 and 1.
constexpr cZone3D ZONE3D_ZERO(0.0, 0.0, 0.0);
constexpr cZone3D ZONE3D_HALF(0.5, 0.5, 0.5);
constexpr cZone3D ZONE3D_ONE(1.0, 1.0, 1.0);

} // namespace quillon

extern "C" {

// Moves the corners outward, component by component, until `point` lies inside.
QUILLON_API void __cZone3d_expand_to_contain(quillon::cZone3D& z, const quillon::cVector3D& point);

// Reads the text form: the x#y#z# of the minimum, then that of the maximum.
//
// A component without a closed field keeps its value; fields after the sixth are skipped.
// A field that does not parse is 0; its characters after the 23rd are dropped.
QUILLON_API void __cZone3d_zone_from_string(quillon::cZone3D& z, const char* text);
}
