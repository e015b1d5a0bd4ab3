// SPDX-License-Identifier: MIT
// Matrices, quaternions and splines computed in the plainest way: what the library is timed beside,
// and what it equals bit for bit.
#pragma once

#include "quillon/quillon.h"

#include <cmath>
#include <cstdint>

namespace plain {

using quillon::cMatrix3D;
using quillon::cQuaternion;
using quillon::cSpline3D;
using quillon::cVector3D;

inline void multiply(cMatrix3D& m, const cMatrix3D& b) {
    cMatrix3D product;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            product[3 * i + j] =
                m[3 * i] * b[j] + m[3 * i + 1] * b[3 + j] + m[3 * i + 2] * b[6 + j];
    m = product;
}

inline void multiply(cQuaternion& q, const cQuaternion& b) {
    const double x = q.x * b.w + q.y * b.z - q.z * b.y + q.w * b.x;
    const double y = -q.x * b.z + q.y * b.w + q.z * b.x + q.w * b.y;
    const double z = q.x * b.y - q.y * b.x + q.z * b.w + q.w * b.z;
    const double w = -q.x * b.x - q.y * b.y - q.z * b.z + q.w * b.w;
    q.set(x, y, z, w);
}

// `Matrix` is anything with nine elements under an index.
template <typename Matrix>
void from_quaternion(Matrix&& m, const cQuaternion& q) {
    const double x = q[0];
    const double y = q[1];
    const double z = q[2];
    const double w = q[3];
    m[0] = 1.0 - 2.0 * y * y - 2.0 * z * z;
    m[1] = 2.0 * x * y + 2.0 * z * w;
    m[2] = 2.0 * x * z - 2.0 * y * w;
    m[3] = 2.0 * x * y - 2.0 * z * w;
    m[4] = 1.0 - 2.0 * x * x - 2.0 * z * z;
    m[5] = 2.0 * y * z + 2.0 * x * w;
    m[6] = 2.0 * x * z + 2.0 * y * w;
    m[7] = 2.0 * y * z - 2.0 * x * w;
    m[8] = 1.0 - 2.0 * x * x - 2.0 * y * y;
}

inline void slerp(cQuaternion& q, const cQuaternion& a, const cQuaternion& b, double t) {
    cQuaternion b2 = b;
    double d = a.w * b2.w + a.x * b2.x + a.y * b2.y + a.z * b2.z;
    if (d < 0.0) {
        b2.set(-b2.x, -b2.y, -b2.z, -b2.w);
        d = -d;
    }
    if (!(std::abs(d) < 1.0)) {
        q = a;
        return;
    }
    const double theta = std::acos(d);
    const double s = std::sqrt(1.0 - d * d);
    double fa = 0.5;
    double fb = 0.5;
    if (!(std::abs(s) < 0.001)) {
        fa = sinTR((1.0 - t) * theta) / s;
        fb = sinTR(t * theta) / s;
    }
    q.set(fa * a.x + fb * b2.x, fa * a.y + fb * b2.y, fa * a.z + fb * b2.z, fa * a.w + fb * b2.w);
}

// Row or column `first` of a matrix, its elements `step` apart, times a vector.
template <typename Matrix>
double dot(const Matrix& m, int first, int step, const cVector3D& v) {
    return m[first] * v[0] + m[first + step] * v[1] + m[first + 2 * step] * v[2];
}

template <typename Matrix>
void rotate(cVector3D& v, const Matrix& m) {
    const cVector3D turned(dot(m, 0, 1, v), dot(m, 3, 1, v), dot(m, 6, 1, v));
    v = turned;
}

inline void rotate_backwards(cVector3D& v, const cMatrix3D& m) {
    const cVector3D turned(dot(m, 0, 3, v), dot(m, 1, 3, v), dot(m, 2, 3, v));
    v = turned;
}

inline void rotate(cVector3D& v, const cQuaternion& q) {
    cMatrix3D m;
    from_quaternion(m, q);
    rotate(v, m);
}

inline void rotate_backwards(cVector3D& v, const cQuaternion& q) {
    cMatrix3D m;
    from_quaternion(m, q);
    rotate_backwards(v, m);
}

inline cVector3D point(const cSpline3D& s, std::int32_t index) {
    if (s.closed) {
        while (index < 0)
            index += s.count;
        while (index >= s.count)
            index -= s.count;
        return s.points[index];
    }
    if (index < 0)
        index = 0;
    return s.points[index < s.count ? index : s.count - 1];
}

inline void select_segment(const cSpline3D& s, double t, std::int16_t& i, double& f) {
    i = static_cast<std::int16_t>(t);
    f = t - i;
    if (i == s.count - 1 && f == 0.0) {
        --i;
        f = 1.0;
    }
}

inline cVector3D hard_value(const cSpline3D& s, double t) {
    std::int16_t i;
    double f;
    select_segment(s, t, i, f);
    const cVector3D p1 = point(s, i);
    const cVector3D p2 = point(s, i + 1);
    return p1 + (p2 - p1) * f;
}

inline cVector3D smooth_value(const cSpline3D& s, double t) {
    std::int16_t i;
    double f;
    select_segment(s, t, i, f);
    const cVector3D p0 = point(s, i - 1);
    const cVector3D p1 = point(s, i);
    const cVector3D p2 = point(s, i + 1);
    const cVector3D p3 = point(s, i + 2);
    const double d = (p2 - p1).length();
    cVector3D e1 = (p2 - p1).normalized();
    if (i > 0)
        e1 = (e1 + (p1 - p0).normalized()).normalized();
    cVector3D e2 = (p1 - p2).normalized();
    if (i < s.count - 2)
        e2 = (e2 + (p2 - p3).normalized()).normalized();
    const cVector3D c1 = p1 + (e1 * d) / 3.0;
    const cVector3D c2 = p2 + (e2 * d) / 3.0;
    const double u = f;
    const double v = 1.0 - f;
    return p1 * (v * v * v) + (c1 * 3.0) * (v * v * u) + (c2 * 3.0) * (v * u * u) +
           p2 * (u * u * u);
}

inline double value_closest_to(const cSpline3D& s, const cVector3D& target, double tolerance,
                               std::uint32_t iterations) {
    double t = 0.0;
    cVector3D v;
    double d2 = target.squared_length();
    for (std::int32_t i = 0; i < s.count; ++i) {
        const double e = (s.points[i] - target).squared_length();
        if (e < d2) {
            t = i;
            v = smooth_value(s, t);
            d2 = e;
        }
    }
    const double step = tolerance > 0.0001 ? tolerance : 0.0001;
    while (tolerance * tolerance < d2 && iterations-- > 0) {
        const cVector3D diff = smooth_value(s, t + step) - v;
        const double len = diff.length();
        const cVector3D dir = diff / len;
        t = t + (target - v).dot(dir) * (step / len);
        // Left for good, where the loops below would not end and the index does not reach.
        if (!(std::abs(t) < 32000.0))
            return t;
        if (s.closed) {
            while (t < 0.0)
                t += s.count;
            while (t > s.count)
                t -= s.count;
        }
        v = smooth_value(s, t);
    }
    return t;
}

} // namespace plain
