#include "quillon/rendercache/tangents.h"

#include "quillon/platform/cpu.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using quillon::cRenderCache;
using quillon::cVector3D;
using TexCoord = quillon::cVector2D<double>;

namespace {

constexpr double SMALLEST_DETERMINANT = 0.0001;

// A batch turns polygons by the dozen: each row holds one number of every polygon, so that the
// arithmetic runs over vectors and no division waits for the one before.
constexpr std::size_t BATCH = 64;
using Row = float[BATCH];

struct Batch {
    Row positions[9];
    Row texcoords[6];
    Row tangents[3];
};

using Four [[gnu::vector_size(16)]] = float;

Four load(const float* from) {
    Four four;
    std::memcpy(&four, from, sizeof(four));
    return four;
}

void store(float* to, const Four& four) {
    std::memcpy(to, &four, sizeof(four));
}

// Writes four numbers of four polygons, whose records are `stride` apart, to column `i` and the
// next three of four rows.
void transpose(const float* record, std::size_t stride, Row* rows, std::size_t i) {
    const Four a = load(record);
    const Four b = load(record + stride);
    const Four c = load(record + 2 * stride);
    const Four d = load(record + 3 * stride);
    const Four ab_low = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Four cd_low = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Four ab_high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Four cd_high = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    store(rows[0] + i, __builtin_shufflevector(ab_low, cd_low, 0, 1, 4, 5));
    store(rows[1] + i, __builtin_shufflevector(ab_low, cd_low, 2, 3, 6, 7));
    store(rows[2] + i, __builtin_shufflevector(ab_high, cd_high, 0, 1, 4, 5));
    store(rows[3] + i, __builtin_shufflevector(ab_high, cd_high, 2, 3, 6, 7));
}

// Spreads the first `width` floats of `count` records over as many rows.
template <std::size_t width>
void gather(const float* records, std::size_t stride, std::size_t count, Row (&rows)[width]) {
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4, records += 4 * stride) {
        // The last four rows overlap those before, since no width is a multiple of four.
        for (std::size_t row = 0; row + 4 < width; row += 4)
            transpose(records + row, stride, rows + row, i);
        transpose(records + width - 4, stride, rows + width - 4, i);
    }
    for (; i < count; ++i, records += stride)
        for (std::size_t row = 0; row < width; ++row)
            rows[row][i] = records[row];
}

// The arithmetic of __tarn_find_tangent_from_tri on every column. Divisors that it goes round
// become 1, which divides without a trace.
[[gnu::always_inline]] inline void find_tangents(Batch* batch) {
    const auto& p = batch->positions;
    const auto& uv = batch->texcoords;
    for (std::size_t i = 0; i < BATCH; ++i) {
        const double x0 = p[0][i];
        const double y0 = p[1][i];
        const double z0 = p[2][i];
        const double u0 = uv[0][i];
        const double v0 = uv[1][i];
        const double du1 = uv[2][i] - u0;
        const double dv1 = uv[3][i] - v0;
        const double du2 = uv[4][i] - u0;
        const double dv2 = uv[5][i] - v0;
        const double determinant = du1 * dv2 - du2 * dv1;
        const bool degenerate = std::fabs(determinant) < SMALLEST_DETERMINANT;
        const double r = 1.0 / (degenerate ? 1.0 : determinant);
        const double x = (dv2 * (p[3][i] - x0) - dv1 * (p[6][i] - x0)) * r;
        const double y = (dv2 * (p[4][i] - y0) - dv1 * (p[7][i] - y0)) * r;
        const double z = (dv2 * (p[5][i] - z0) - dv1 * (p[8][i] - z0)) * r;
        const double length = std::sqrt(x * x + y * y + z * z);
        const double divisor = length == 0.0 ? 1.0 : length;
        batch->tangents[0][i] = static_cast<float>(degenerate ? 1.0 : x / divisor);
        batch->tangents[1][i] = static_cast<float>(degenerate ? 0.0 : y / divisor);
        batch->tangents[2][i] = static_cast<float>(degenerate ? 0.0 : z / divisor);
    }
}

// Writes column `i` to every corner of a polygon. All but the last are written with one float too
// many, which the next corner covers.
void scatter(const Batch& batch, std::size_t i, float* tangents, std::size_t corners) {
    const Four tangent = {batch.tangents[0][i], batch.tangents[1][i], batch.tangents[2][i], 0.0F};
    for (std::size_t c = 1; c < corners; ++c, tangents += 3)
        store(tangents, tangent);
    std::memcpy(tangents, &tangent, 3 * sizeof(float));
}

} // namespace

void __tarn_find_tangent_from_tri(cVector3D& out, const cVector3D* positions,
                                  const TexCoord* texcoords) {
    const cVector3D e1 = positions[1] - positions[0];
    const cVector3D e2 = positions[2] - positions[0];
    const double du1 = texcoords[1].x - texcoords[0].x;
    const double dv1 = texcoords[1].y - texcoords[0].y;
    const double du2 = texcoords[2].x - texcoords[0].x;
    const double dv2 = texcoords[2].y - texcoords[0].y;
    const double determinant = du1 * dv2 - du2 * dv1;
    if (std::fabs(determinant) < SMALLEST_DETERMINANT) {
        out.set(1.0, 0.0, 0.0);
        return;
    }
    out = ((e1 * dv2 - e2 * dv1) * (1.0 / determinant)).normalized();
}

void __mGraphics_render_cache_calc_tangents(cRenderCache* cache) {
    if (cache == nullptr || cache->positions == nullptr || cache->texcoords == nullptr ||
        cache->tangents == nullptr || cache->verts_per_poly < 3)
        return;
    const std::size_t corners = cache->verts_per_poly;
    Batch batch{};
    for (std::size_t first = 0; first < cache->poly_count; first += BATCH) {
        const std::size_t count = std::min<std::size_t>(BATCH, cache->poly_count - first);
        const std::size_t entry = first * corners;
        gather(cache->positions + entry * 3, corners * 3, count, batch.positions);
        gather(cache->texcoords + entry * 2, corners * 2, count, batch.texcoords);
        quillon::platform::run_vectorised<find_tangents>(&batch);
        for (std::size_t i = 0; i < count; ++i)
            scatter(batch, i, cache->tangents + (entry + i * corners) * 3, corners);
    }
}
