// SPDX-License-Identifier: MIT
#include "bench/math/peers.h"

#define GLM_ENABLE_EXPERIMENTAL
#include <glm/gtx/spline.hpp>

#include <algorithm>

namespace {

struct Indexed {
    quillon::cMatrix3D matrix;

    [[gnu::noinline]] double& operator[](int index) { return matrix[index]; }

    [[gnu::noinline]] const double& operator[](int index) const { return matrix[index]; }
};

} // namespace

namespace peers {

void multiply(glm::dmat3& m, const glm::dmat3& b) {
    m = m * b;
}

void multiply(Eigen::Matrix3d& m, const Eigen::Matrix3d& b) {
    m = m * b;
}

void multiply(quillon::cMatrix3D& m, const quillon::cMatrix3D& b) {
    plain::multiply(m, b);
}

void multiply(glm::dquat& q, const glm::dquat& b) {
    q = q * b;
}

void multiply(Eigen::Quaterniond& q, const Eigen::Quaterniond& b) {
    q = q * b;
}

void multiply(quillon::cQuaternion& q, const quillon::cQuaternion& b) {
    plain::multiply(q, b);
}

void rotate(glm::dvec3& v, const glm::dmat3& m) {
    v = m * v;
}

void rotate(Eigen::Vector3d& v, const Eigen::Matrix3d& m) {
    v = m * v;
}

void rotate(quillon::cVector3D& v, const quillon::cMatrix3D& m) {
    plain::rotate(v, m);
}

void rotate(glm::dvec3& v, const glm::dquat& q) {
    v = q * v;
}

void rotate(Eigen::Vector3d& v, const Eigen::Quaterniond& q) {
    v = q * v;
}

void rotate(quillon::cVector3D& v, const quillon::cQuaternion& q) {
    plain::rotate(v, q);
}

void rotate_indexed(quillon::cVector3D& v, const quillon::cQuaternion& q) {
    Indexed m;
    plain::from_quaternion(m, q);
    plain::rotate(v, m);
}

void slerp(glm::dquat& q, const glm::dquat& a, const glm::dquat& b, double t) {
    q = glm::slerp(a, b, t);
}

void slerp(Eigen::Quaterniond& q, const Eigen::Quaterniond& a, const Eigen::Quaterniond& b,
           double t) {
    q = a.slerp(t, b);
}

void smooth_value(const quillon::cSpline3D& s, quillon::cVector3D& out, double t) {
    out = plain::smooth_value(s, t);
}

void catmull_rom(const quillon::cSpline3D& s, quillon::cVector3D& out, double t) {
    const int index = static_cast<int>(t);
    const auto point = [&](int i) {
        const quillon::cVector3D& p = s.points[std::clamp(i, 0, s.count - 1)];
        return glm::dvec3(p.x, p.y, p.z);
    };
    const glm::dvec3 value = glm::catmullRom(point(index - 1), point(index), point(index + 1),
                                             point(index + 2), t - index);
    out.set(value.x, value.y, value.z);
}

double value_closest_to(const quillon::cSpline3D& s, const quillon::cVector3D& target,
                        double tolerance, std::uint32_t iterations) {
    return plain::value_closest_to(s, target, tolerance, iterations);
}

} // namespace peers
