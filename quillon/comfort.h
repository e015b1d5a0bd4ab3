// SPDX-License-Identifier: MIT
// What the classes of the library leave to their users: operators, loops, owners and short forms.
//
// Header-only, and over the public headers alone: nothing here is needed, and nothing is exported.
#pragma once

#include "quillon/appearance/bitmap.h"
#include "quillon/containers/list.h"
#include "quillon/containers/name_hash.h"
#include "quillon/core/modules.h"
#include "quillon/input/names.h"
#include "quillon/math/matrix.h"
#include "quillon/math/quaternion.h"
#include "quillon/math/spline.h"
#include "quillon/math/vector.h"
#include "quillon/math/zone.h"
#include "quillon/messages/message.h"
#include "quillon/messages/router.h"
#include "quillon/rendercache/render_cache.h"

#include <concepts>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

namespace quillon {

// --- Vectors -----------------------------------------------------------------------------------

// The opposite vector.
constexpr cVector3D operator-(const cVector3D& v) {
    return {-v.x, -v.y, -v.z};
}

// Each component times `scalar`.
constexpr cVector3D operator*(double scalar, const cVector3D& v) {
    return v * scalar;
}

// True if the components are equal, to the bit but for the sign of zero; false for NaN.
constexpr bool operator==(const cVector3D& a, const cVector3D& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

// The same for a pair of components.
template <typename T>
constexpr bool operator==(const cVector2D<T>& a, const cVector2D<T>& b) {
    return a.x == b.x && a.y == b.y;
}

// --- Rotations ---------------------------------------------------------------------------------

// The column vector `v`, turned by `m`: __cVector3d_rotate_by_matrix.
inline cVector3D operator*(const cMatrix3D& m, cVector3D v) {
    __cVector3d_rotate_by_matrix(v, m);
    return v;
}

// `v`, turned by the matrix of `q`: __cVector3d_rotate_by_quaternion.
inline cVector3D operator*(const cQuaternion& q, cVector3D v) {
    __cVector3d_rotate_by_quaternion(v, q);
    return v;
}

// True if all elements are equal.
constexpr bool operator==(const cMatrix3D& a, const cMatrix3D& b) {
    for (int i = 0; i < 9; ++i)
        if (a[i] != b[i])
            return false;
    return true;
}

// True if all components are equal; q and -q turn alike and are not equal.
constexpr bool operator==(const cQuaternion& a, const cQuaternion& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

// The rotation about `axis`, a unit vector, by `angle` radians: __cQuaternion_from_axis_angle.
inline cQuaternion rotation_about(const cVector3D& axis, double angle) {
    cQuaternion q;
    __cQuaternion_from_axis_angle(q, axis, angle);
    return q;
}

// The rotation of a matrix: __cQuaternion_from_matrix.
inline cQuaternion rotation_of(const cMatrix3D& m) {
    cQuaternion q;
    __cQuaternion_from_matrix(q, m);
    return q;
}

// The matrix of a rotation: __cMatrix3d_from_quaternion.
inline cMatrix3D matrix_of(const cQuaternion& q) {
    cMatrix3D m;
    __cMatrix3d_from_quaternion(m, q);
    return m;
}

// From `a` at 0 to `b` at 1 at an even pace: __cQuaternion_slerp. Zeros before
// __init_trig_tables.
inline cQuaternion slerp(const cQuaternion& a, const cQuaternion& b, double t) {
    cQuaternion q;
    __cQuaternion_slerp(q, a, b, t);
    return q;
}

// --- Zones and splines -------------------------------------------------------------------------

// The box from `minimum` to `maximum`.
constexpr cZone3D zone_between(const cVector3D& minimum, const cVector3D& maximum) {
    cZone3D zone = ZONE3D_ZERO;
    zone.minimum = minimum;
    zone.maximum = maximum;
    return zone;
}

// True if `point` is in the box or on its border.
constexpr bool contains(const cZone3D& zone, const cVector3D& point) {
    return point.x >= zone.minimum.x && point.x <= zone.maximum.x && point.y >= zone.minimum.y &&
           point.y <= zone.maximum.y && point.z >= zone.minimum.z && point.z <= zone.maximum.z;
}

// The middle of the box.
constexpr cVector3D center_of(const cZone3D& zone) {
    return (zone.minimum + zone.maximum) * 0.5;
}

// The edges of the box, along x, y and z.
constexpr cVector3D size_of(const cZone3D& zone) {
    return zone.maximum - zone.minimum;
}

// Moves the corners outward until `point` lies inside: __cZone3d_expand_to_contain.
inline void expand(cZone3D& zone, const cVector3D& point) {
    __cZone3d_expand_to_contain(zone, point);
}

// Appends a control point: __cSpline3d_add_control_point.
inline void append(cSpline3D& spline, const cVector3D& point) {
    __cSpline3d_add_control_point(spline, point);
}

// The point of the path at `t`, along straight lines: __cSpline3d_get_hard_value.
inline cVector3D hard_value(const cSpline3D& spline, double t) {
    cVector3D value;
    __cSpline3d_get_hard_value(spline, value, t);
    return value;
}

// The point of the path at `t`, rounded: __cSpline3d_get_smooth_value.
inline cVector3D smooth_value(const cSpline3D& spline, double t) {
    cVector3D value;
    __cSpline3d_get_smooth_value(spline, value, t);
    return value;
}

// --- Messages ----------------------------------------------------------------------------------

// The library's router.
inline cMessageRouter& router() {
    return __mGraphics_instance()->router;
}

// A message of a type of its own, which derives from cMessage.
template <typename T>
concept Message = std::derived_from<T, cMessage>;

// Delivers a message to the observers of its type before it returns; see post_message.
template <Message T>
std::int16_t post(T message) {
    return router().post_message(&message);
}

// Has a copy of the message wait for `seconds`, as updates count them; see post_message_delayed.
template <Message T>
std::int16_t post_after(float seconds, const T& message) {
    auto holder = std::make_unique<cMessageHolder<T>>(message);
    const std::int16_t observers = router().post_message_delayed(holder.get(), seconds);
    static_cast<void>(holder.release()); // the router's, unless the call threw
    return observers;
}

// --- Lists -------------------------------------------------------------------------------------

// A walk over a list by position, for range-for. The list may change meanwhile: what is appended is
// reached, and after a removal the walk goes on with the element that has taken the position.
template <typename T>
class ListWalk {
public:
    // At the first element of `walked`.
    explicit ListWalk(const DSParray<T>& walked) : list(&walked) {}

    // The element, which may be null.
    T* operator*() const { return list->get(position); }

    // Goes to the next one.
    ListWalk& operator++() {
        ++position;
        return *this;
    }

    // True after the last element.
    bool operator==(std::default_sentinel_t) const { return position >= list->count(); }

private:
    const DSParray<T>* list;
    std::uint32_t position = 0;
};

// For range-for; maps have their own.
template <typename T>
ListWalk<T> begin(const DSParray<T>& list) {
    return ListWalk<T>(list);
}

// For range-for.
template <typename T>
std::default_sentinel_t end(const DSParray<T>&) {
    return {};
}

// --- Owners ------------------------------------------------------------------------------------

// Frees a render cache: its arrays, then the record.
struct RenderCacheDeleter {
    // Frees this one.
    void operator()(cRenderCache* cache) const {
        __mGraphics_render_cache_cleanup(cache);
        delete cache;
    }
};

// A render cache that its owner frees.
using RenderCache = std::unique_ptr<cRenderCache, RenderCacheDeleter>;

// The arrays that a cache has beside positions.
struct RenderArrays {
    bool texcoords = false; // 2 floats a corner
    bool normals = false;   // 3 floats
    bool tangents = false;  // 3 floats
    bool colors = false;    // 4 floats
};

// A new cache: __mGraphics_create_render_cache.
inline RenderCache make_render_cache(std::uint32_t poly_count, std::uint32_t verts_per_poly,
                                     const RenderArrays& arrays) {
    return RenderCache(__mGraphics_create_render_cache(poly_count, verts_per_poly, arrays.texcoords,
                                                       arrays.normals, arrays.tangents,
                                                       arrays.colors));
}

// A pixel buffer that its owner frees.
using Pixels = std::unique_ptr<std::uint8_t[]>;

// A bitmap of opaque black pixels: __cBitmap_init.
inline Pixels make_bitmap(std::int16_t width, std::int16_t height) {
    std::uint8_t* pixels = nullptr;
    __cBitmap_init(width, height, pixels);
    return Pixels(pixels);
}

// --- Inputs ------------------------------------------------------------------------------------

namespace detail {

// Not constexpr: where a name is unknown, the call doesn't compile.
inline std::int16_t no_input_has_this_name() {
    return NO_INPUT;
}

template <typename Table>
consteval std::int16_t code_in(const Table& names, std::string_view name) {
    for (std::size_t code = 0; code < names.size(); ++code)
        if (equal_ignoring_case(names[code], name))
            return static_cast<std::int16_t>(code);
    return no_input_has_this_name();
}

} // namespace detail

// The digital code of a display name, "Space" or "SPACE"; an unknown name does not compile.
consteval std::int16_t input_code(std::string_view name) {
    return detail::code_in(digital_input_names, name);
}

// The same for an analog code, "Mouse X".
consteval std::int16_t axis_code(std::string_view name) {
    return detail::code_in(analog_input_names, name);
}

} // namespace quillon
