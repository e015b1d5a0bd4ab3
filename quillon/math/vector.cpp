// SPDX-License-Identifier: MIT
#include "quillon/math/vector.h"

#include "quillon/math/text_fields.h"
#include "quillon/platform/random.h"

using namespace quillon;

namespace quillon {
namespace {

bool is_zero(const cVector3D& v) {
    return v.x == 0.0 && v.y == 0.0 && v.z == 0.0;
}

double random_half() {
    return platform::runtime_rand() / 32767.0 - 0.5;
}

} // namespace
} // namespace quillon

double __cVector3d_get_angle_between(const cVector3D& a, const cVector3D& b) {
    if (is_zero(a) || is_zero(b))
        return 0.0;
    const double product = a.dot(b);
    if (product == 0.0)
        return PI / 2.0;
    return std::acos(product / (a.length() * b.length()));
}

double __cVector3d_get_scalar_for_projection_onto(const cVector3D& a, const cVector3D& b) {
    if (is_zero(a) || is_zero(b))
        return 0.0;
    return a.dot(b) / b.dot(b);
}

void __cVector3d_vector_from_string(cVector3D& v, const char* text) {
    read_component_fields<24>(v, 3, text);
}

void __nsVector3d_on_unit_sphere(cVector3D& out) {
    out.z = random_half();
    out.y = random_half();
    out.x = random_half();
    out.normalize();
}
