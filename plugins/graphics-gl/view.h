// SPDX-License-Identifier: MIT
// From the host's values in 64 bits, anywhere in the world, to the driver's in 32, around the
// camera.
#pragma once

#include "mesh.h"

#include "plugins/contracts/graphics.h"

#include <array>

namespace quillon::graphics_gl {

// Column-major, as the driver takes it.
using Float4 = std::array<float, 4>;
using Matrix4 = std::array<Float4, 4>;
using Matrix3 = std::array<Float3, 3>;

class View {
public:
    View() = default;

    // Throws std::runtime_error for a camera that sees nothing. `aspect` is width by height.
    View(Camera seen_from, double aspect);

    Float3 relative(const cVector3D& place) const;

    // From places relative to the camera to clip space: z grows with the distance.
    Matrix4 projection() const;
    // Right and up at the edges of the picture, and forward.
    Matrix4 sky_rays() const;
    // Whether a sphere around a place relative to the camera may be seen.
    bool may_see(const Float3& center, double radius) const;

    Float3 right() const { return axis(0); }

    Float3 up() const { return axis(1); }

private:
    Float3 axis(int column) const;

    Camera camera;
    double x_scale = 1.0;
    double y_scale = 1.0;
};

Float4 values_of(const cColor& color);
// The same in linear light; alpha as it is.
Float4 linear_values_of(const cColor& color);

} // namespace quillon::graphics_gl
