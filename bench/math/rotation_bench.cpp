// SPDX-License-Identifier: MIT
// Matrix and quaternion products, slerp and turned vectors beside two peers and the plain versions:
// one call for each of 256 items, in place.
#include "bench/math/peers.h"

#include <benchmark/benchmark.h>

#include <array>
#include <random>

using quillon::cMatrix3D;
using quillon::cQuaternion;
using quillon::cVector3D;

namespace {

constexpr int ITEMS = 256;

Eigen::Quaterniond random_rotation() {
    static std::mt19937 generator(1);
    std::normal_distribution<double> spread;
    const auto next = [&] { return spread(generator); };
    return Eigen::Quaterniond(next(), next(), next(), next()).normalized();
}

void assign(Eigen::Quaterniond& q, const Eigen::Quaterniond& r) {
    q = r;
}

void assign(glm::dquat& q, const Eigen::Quaterniond& r) {
    q = glm::dquat(r.w(), r.x(), r.y(), r.z());
}

void assign(cQuaternion& q, const Eigen::Quaterniond& r) {
    q.set(r.x(), r.y(), r.z(), r.w());
}

void assign(Eigen::Matrix3d& m, const Eigen::Quaterniond& r) {
    m = r.toRotationMatrix();
}

void assign(glm::dmat3& m, const Eigen::Quaterniond& r) {
    m = glm::mat3_cast(glm::dquat(r.w(), r.x(), r.y(), r.z()));
}

void assign(cMatrix3D& m, const Eigen::Quaterniond& r) {
    const Eigen::Matrix3d rotation = r.toRotationMatrix();
    for (int i = 0; i < 9; ++i)
        m[i] = rotation(i / 3, i % 3);
}

template <typename Vector>
void assign(Vector& v, const Eigen::Quaterniond& r) {
    for (int i = 0; i < 3; ++i)
        v[i] = r.coeffs()[i];
}

template <typename Object>
std::array<Object, ITEMS> random_items() {
    std::array<Object, ITEMS> result;
    for (Object& item : result)
        assign(item, random_rotation());
    return result;
}

// `apply` on each of the objects with an operand; rotations keep them at unit size.
template <typename Object, typename Operand, void (*apply)(Object&, const Operand&)>
void in_place(benchmark::State& state) {
    static auto objects = random_items<Object>();
    static const auto operands = random_items<Operand>();
    for (auto _ : state) {
        for (int i = 0; i < ITEMS; ++i)
            apply(objects[i], operands[i]);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

template <typename Object, void (*apply)(Object&, const Object&, const Object&, double)>
void blended(benchmark::State& state) {
    static auto results = random_items<Object>();
    static const auto from = random_items<Object>();
    static const auto to = random_items<Object>();
    for (auto _ : state) {
        for (int i = 0; i < ITEMS; ++i)
            apply(results[i], from[i], to[i], i / 256.0);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * ITEMS);
}

const bool TABLES_ARE_FILLED = (__init_trig_tables(), true);

BENCHMARK_TEMPLATE(in_place, cMatrix3D, cMatrix3D, __cMatrix3d_multiply)
    ->Name("matrix_product/quillon");
BENCHMARK_TEMPLATE(in_place, cMatrix3D, cMatrix3D, peers::multiply)->Name("matrix_product/plain");
BENCHMARK_TEMPLATE(in_place, glm::dmat3, glm::dmat3, peers::multiply)->Name("matrix_product/glm");
BENCHMARK_TEMPLATE(in_place, Eigen::Matrix3d, Eigen::Matrix3d, peers::multiply)
    ->Name("matrix_product/eigen");

BENCHMARK_TEMPLATE(in_place, cQuaternion, cQuaternion, __cQuaternion_multiply)
    ->Name("quaternion_product/quillon");
BENCHMARK_TEMPLATE(in_place, cQuaternion, cQuaternion, peers::multiply)
    ->Name("quaternion_product/plain");
BENCHMARK_TEMPLATE(in_place, glm::dquat, glm::dquat, peers::multiply)
    ->Name("quaternion_product/glm");
BENCHMARK_TEMPLATE(in_place, Eigen::Quaterniond, Eigen::Quaterniond, peers::multiply)
    ->Name("quaternion_product/eigen");

BENCHMARK_TEMPLATE(blended, cQuaternion, __cQuaternion_slerp)->Name("slerp/quillon");
BENCHMARK_TEMPLATE(blended, glm::dquat, peers::slerp)->Name("slerp/glm");
BENCHMARK_TEMPLATE(blended, Eigen::Quaterniond, peers::slerp)->Name("slerp/eigen");

BENCHMARK_TEMPLATE(in_place, cVector3D, cMatrix3D, __cVector3d_rotate_by_matrix)
    ->Name("vector_by_matrix/quillon");
BENCHMARK_TEMPLATE(in_place, cVector3D, cMatrix3D, peers::rotate)->Name("vector_by_matrix/plain");
BENCHMARK_TEMPLATE(in_place, glm::dvec3, glm::dmat3, peers::rotate)->Name("vector_by_matrix/glm");
BENCHMARK_TEMPLATE(in_place, Eigen::Vector3d, Eigen::Matrix3d, peers::rotate)
    ->Name("vector_by_matrix/eigen");

BENCHMARK_TEMPLATE(in_place, cVector3D, cQuaternion, __cVector3d_rotate_by_quaternion)
    ->Name("vector_by_quaternion/quillon");
BENCHMARK_TEMPLATE(in_place, cVector3D, cQuaternion, peers::rotate)
    ->Name("vector_by_quaternion/plain");
BENCHMARK_TEMPLATE(in_place, cVector3D, cQuaternion, peers::rotate_indexed)
    ->Name("vector_by_quaternion/plain_indexed");
BENCHMARK_TEMPLATE(in_place, glm::dvec3, glm::dquat, peers::rotate)
    ->Name("vector_by_quaternion/glm");
BENCHMARK_TEMPLATE(in_place, Eigen::Vector3d, Eigen::Quaterniond, peers::rotate)
    ->Name("vector_by_quaternion/eigen");

} // namespace
