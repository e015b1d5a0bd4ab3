// SPDX-License-Identifier: MIT
// Paths through control points, whose parameter runs over their indices: 2.5 is halfway between
// points 2 and 3.
#pragma once

#include "quillon/export.h"
#include "quillon/math/serializable.h"
#include "quillon/math/vector.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace quillon {

class cSpline3D;

} // namespace quillon

extern "C" {

// Allocate the array of a new spline: `capacity` points at (0, 0, 0), or a copy of the `count`
// points at `points`.
//
// An earlier array is not freed: the caller owns it. `closed` is unchanged.
// A negative `count` counts as 0.
QUILLON_API void __cSpline3d_create_empty(quillon::cSpline3D& s, std::uint32_t capacity);
QUILLON_API void __cSpline3d_create_with_control_points(quillon::cSpline3D& s,
                                                        const quillon::cVector3D* points,
                                                        std::int32_t count);

// Rebuilds the array with the first capacity that holds `needed` points: the present one, or a
// power of two above it.
QUILLON_API void __cSpline3d_expand_array(quillon::cSpline3D& s, std::int32_t needed);

// Appends `point`, which may be one of the spline's own.
QUILLON_API void __cSpline3d_add_control_point(quillon::cSpline3D& s,
                                               const quillon::cVector3D& point);

// Set `out` to the path at `t`: on the straight line between two points (hard), or on a cubic
// Bezier segment whose tangent at a point bisects the directions of its two segments (smooth).
//
// Open: the last point after the end, the first below -1; the first segment goes on from 0 to -1.
// Closed: wraps, with corners at the first and last point, where tangents are one-sided.
// (0, 0, 0) for a spline without points.
// `t` is limited to 2^30 either way; a NaN leads to NaN.
QUILLON_API void __cSpline3d_get_hard_value(const quillon::cSpline3D& s, quillon::cVector3D& out,
                                            double t);
QUILLON_API void __cSpline3d_get_smooth_value(const quillon::cSpline3D& s, quillon::cVector3D& out,
                                              double t);

// The parameter of the smooth path near `target`: that of the nearest control point, refined by
// `iterations` projections onto the path's chord.
//
// Not refined if that point is within `tolerance`. Not clamped on an open spline.
// Starts at 0 if no control point is nearer than the origin; 0 for a spline without points.
// The chord spans `tolerance` of the parameter, 0.0001 at least.
// Meaningless where the chord has no length, as after the last point of an open spline.
QUILLON_API double __cSpline3d_get_value_closest_to(const quillon::cSpline3D& s,
                                                    const quillon::cVector3D& target,
                                                    double tolerance, std::uint32_t iterations);

// Makes `s` a copy of `source`, capacity included; a spline set by itself is unchanged.
QUILLON_API void __cSpline3d_set_by_spline(quillon::cSpline3D& s, const quillon::cSpline3D& source);

// True if both are open or both closed and have the same number of points, each within 1e-6 of its
// counterpart.
QUILLON_API bool __cSpline3d_is_equal_to(const quillon::cSpline3D& s,
                                         const quillon::cSpline3D& other);

// Appends the text form to the terminated text in `text`: "C" or "S" for closed or open, the number
// of points, "#", then x, y and z of each point with three decimals, each closed by "#".
//
// `text` must be terminated: an empty buffer begins with a zero byte.
// Needs up to 12 bytes, 47 more a point, and one for the terminating zero.
// A point that takes more than 47 has its fields written with an exponent and seven digits.
QUILLON_API void __cSpline3d_spline_to_string(const quillon::cSpline3D& s, char* text);

// Replaces `s` by the spline of a text form; capacity becomes the number of points.
//
// Points without fields are (0, 0, 0); surplus fields are skipped.
// Characters of a field after the 23rd are dropped.
// No points if the first field is not closed or its number is negative.
// A number above 32767 counts only as far as the text has fields for its points.
QUILLON_API void __cSpline3d_spline_from_string(quillon::cSpline3D& s, const char* text);
}

namespace quillon {

// An array of control points that the spline owns, open or closed.
//
// Flat form: count and capacity as 32-bit integers, closed as one byte, then each point's flat
// form; serialized_size also counts the unused capacity: 9 + 12 * capacity bytes.
// Every operation takes any number of points that memory holds.
class cSpline3D : public cSerializable {
public:
    cVector3D* points = nullptr; // capacity elements, from new[]
    std::int32_t count = 0;      // points in use
    std::int32_t capacity = 0;   // points that the array holds
    bool closed = false;         // the last point leads to the first

    // A spline of the points that are not null, in order, with capacity for eight.
    explicit cSpline3D(bool closed_path = false, const cVector3D* p0 = nullptr,
                       const cVector3D* p1 = nullptr, const cVector3D* p2 = nullptr,
                       const cVector3D* p3 = nullptr, const cVector3D* p4 = nullptr,
                       const cVector3D* p5 = nullptr, const cVector3D* p6 = nullptr,
                       const cVector3D* p7 = nullptr) {
        __cSpline3d_create_empty(*this, 8);
        for (const cVector3D* point : {p0, p1, p2, p3, p4, p5, p6, p7})
            if (point != nullptr)
                __cSpline3d_add_control_point(*this, *point);
        closed = closed_path;
    }

    // A copy: __cSpline3d_set_by_spline.
    cSpline3D(const cSpline3D& source) : cSerializable(source) {
        __cSpline3d_set_by_spline(*this, source);
    }

    // The source has no points and no array afterwards.
    cSpline3D(cSpline3D&& source) noexcept
        : points(std::exchange(source.points, nullptr)),
          count(std::exchange(source.count, 0)),
          capacity(std::exchange(source.capacity, 0)),
          closed(source.closed) {}

    // Makes this a copy: __cSpline3d_set_by_spline.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): __cSpline3d_set_by_spline tests for it.
    cSpline3D& operator=(const cSpline3D& source) {
        __cSpline3d_set_by_spline(*this, source);
        return *this;
    }

    // Exchanges the two.
    cSpline3D& operator=(cSpline3D&& source) noexcept {
        std::swap(points, source.points);
        std::swap(count, source.count);
        std::swap(capacity, source.capacity);
        std::swap(closed, source.closed);
        return *this;
    }

    // Writes the flat form; the bytes of unused capacity are not written.
    std::uint32_t serialize(std::uint8_t* buffer) const override {
        detail::write_scalar<std::int32_t>(buffer, count);
        detail::write_scalar<std::int32_t>(buffer + 4, capacity);
        buffer[8] = closed ? 1 : 0;
        std::uint64_t offset = 9;
        for (std::int32_t i = 0; i < count; ++i)
            offset += points[i].serialize(buffer + offset);
        return serialized_size();
    }

    // A negative capacity counts as 0, and a count is clamped into the capacity.
    std::uint32_t deserialize(const std::uint8_t* buffer) override {
        const std::int32_t fresh_capacity =
            // In parentheses, as a host may have a macro max.
            (std::max)(detail::read_scalar<std::int32_t>(buffer + 4), 0);
        auto* fresh = new cVector3D[static_cast<std::size_t>(fresh_capacity)];
        delete[] points;
        points = fresh;
        capacity = fresh_capacity;
        count = std::clamp(detail::read_scalar<std::int32_t>(buffer), 0, fresh_capacity);
        closed = buffer[8] != 0;
        std::uint64_t offset = 9;
        for (std::int32_t i = 0; i < count; ++i)
            offset += points[i].deserialize(buffer + offset);
        return serialized_size();
    }

    // 9 + 12 * capacity.
    std::uint32_t serialized_size() const override {
        return 9 + 12 * static_cast<std::uint32_t>(capacity);
    }

    virtual ~cSpline3D() { delete[] points; }
};

} // namespace quillon
