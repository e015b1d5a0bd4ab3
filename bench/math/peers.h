// SPDX-License-Identifier: MIT
// The peers and plain versions that rotations and splines are timed beside, in a shared library of
// their own, so that all calls cross the same kind of border.
#pragma once

#include "tests/reference/math.h"

#include <Eigen/Geometry>
#include <glm/gtc/quaternion.hpp>
#include <glm/mat3x3.hpp>

namespace peers {

void multiply(glm::dmat3& m, const glm::dmat3& b);
void multiply(Eigen::Matrix3d& m, const Eigen::Matrix3d& b);
void multiply(quillon::cMatrix3D& m, const quillon::cMatrix3D& b);

void multiply(glm::dquat& q, const glm::dquat& b);
void multiply(Eigen::Quaterniond& q, const Eigen::Quaterniond& b);
void multiply(quillon::cQuaternion& q, const quillon::cQuaternion& b);

void rotate(glm::dvec3& v, const glm::dmat3& m);
void rotate(Eigen::Vector3d& v, const Eigen::Matrix3d& m);
void rotate(quillon::cVector3D& v, const quillon::cMatrix3D& m);

void rotate(glm::dvec3& v, const glm::dquat& q);
void rotate(Eigen::Vector3d& v, const Eigen::Quaterniond& q);
void rotate(quillon::cVector3D& v, const quillon::cQuaternion& q);

// The same where the compiler cannot inline the indexed access to the matrix, as if operator[] were
// in a source file of its own.
void rotate_indexed(quillon::cVector3D& v, const quillon::cQuaternion& q);

void slerp(glm::dquat& q, const glm::dquat& a, const glm::dquat& b, double t);
void slerp(Eigen::Quaterniond& q, const Eigen::Quaterniond& a, const Eigen::Quaterniond& b,
           double t);

void smooth_value(const quillon::cSpline3D& s, quillon::cVector3D& out, double t);

// Another curve through the same points: a Catmull-Rom spline, open.
void catmull_rom(const quillon::cSpline3D& s, quillon::cVector3D& out, double t);

double value_closest_to(const quillon::cSpline3D& s, const quillon::cVector3D& target,
                        double tolerance, std::uint32_t iterations);

} // namespace peers
