// SPDX-License-Identifier: MIT
#include "quillon/appearance/filters.h"
#include "quillon/appearance/pixels.h"
#include "quillon/simd/dispatch.h"

#include <cmath>
#include <vector>

namespace quillon {
namespace {

using std::int32_t;
using std::size_t;
using std::uint32_t;
using std::uint8_t;

// A row of heights. Element x + 1 belongs to column x: copies of the last and the first column
// are at the ends, so that neighbours across the edge are read like any other.
using Row = std::vector<double>;

// sum / 3.0 for the sum of three bytes, without the division: the first product is exact, so only
// the addition rounds, and the second is good to far more digits than decide that rounding.
constexpr double third_of(int32_t sum) {
    constexpr double high = 0x0.5555555554p0;
    constexpr double low = (1.0 - 3.0 * high) / 3.0;
    return sum * high + sum * low;
}

constexpr bool thirds_are_exact() {
    for (int32_t sum = 0; sum <= 3 * 255; ++sum)
        if (third_of(sum) != sum / 3.0)
            return false;
    return true;
}

static_assert(thirds_are_exact());

QUILLON_KERNEL inline int32_t channel_of(uint32_t word, int channel) {
    return static_cast<int32_t>(word >> channel_shift(channel) & 255);
}

QUILLON_KERNEL inline void read_heights(const uint8_t* pixels, size_t count, double* heights) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t word = load_pixel(pixels + i * PIXEL_BYTES);
        const int32_t sum = channel_of(word, 0) + channel_of(word, 1) + channel_of(word, 2);
        heights[i] = (channel_of(word, 3) / 65536.0) * third_of(sum);
    }
}

// The row of a pixel and the rows above and below it, each from the left neighbour on.
struct Neighbours {
    const double* up;
    const double* here;
    const double* down;
};

// A block of vectors (x, y, 1) in both precisions.
struct Vectors {
    PerPixel<double> x;
    PerPixel<double> y;
    PerPixel<float> x32;
    PerPixel<float> y32;
};

using Words = PerPixel<uint32_t>;

// All terms have 8 times their weight, which `eighth_scale` compensates: scaling by a power of 2 is
// exact.
QUILLON_KERNEL inline void find_vectors(const Neighbours& rows, double eighth_scale,
                                        Vectors& vectors) {
    const double* up = rows.up;
    const double* here = rows.here;
    const double* down = rows.down;
    for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
        const size_t left = i;
        const size_t x = i + 1;
        const size_t right = i + 2;
        const double gx = 2.0 * ((up[x] - up[left]) + (up[right] - up[x])) +
                          (here[x] - here[left]) + (here[right] - here[x]) +
                          (down[x] - down[left]) + (down[right] - down[x]);
        const double gy = 2.0 * ((here[left] - up[left]) + (down[left] - here[left])) +
                          (here[x] - up[x]) + (down[x] - here[x]) + (here[right] - up[right]) +
                          (down[right] - here[right]);
        const double nx = -gx * eighth_scale;
        const double ny = -gy * eighth_scale;
        vectors.x[i] = nx;
        vectors.y[i] = ny;
        vectors.x32[i] = static_cast<float>(nx);
        vectors.y32[i] = static_cast<float>(ny);
    }
}

// (component + 1) * 128, which lies in 0 to 256; 0 for NaN.
template <typename Float>
QUILLON_KERNEL inline Float level_of(Float component) {
    const Float level = (component + 1) * 128;
    return level > 0 ? level : 0;
}

// A level truncated, clamped to 255, which only 256 exceeds, and shifted to its channel.
template <typename Float>
QUILLON_KERNEL inline uint32_t in_channel(Float level, int channel) {
    const auto whole = static_cast<int32_t>(level);
    return static_cast<uint32_t>(whole - (whole >> 8)) << channel_shift(channel);
}

template <typename Float>
QUILLON_KERNEL inline uint32_t word_of_levels(Float r, Float g, Float b) {
    return in_channel(r, 0) | in_channel(g, 1) | in_channel(b, 2) | ALPHA_BITS;
}

QUILLON_KERNEL inline void normalize(const Vectors& vectors, Words& words) {
    for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
        const double x = vectors.x[i];
        const double y = vectors.y[i];
        const double length = std::sqrt(x * x + y * y + 1.0);
        words[i] =
            word_of_levels(level_of(x / length), level_of(y / length), level_of(1.0 / length));
    }
}

// 1 if 64 bits could yield another byte than `level`, whose error in 32 bits is at most 0x1p-14.
QUILLON_KERNEL inline int32_t is_doubtful(float level) {
    constexpr float to_whole = 0x1.8p23F; // adding it rounds to whole numbers
    const float distance = std::abs(level - ((level + to_whole) - to_whole));
    return distance > 0x1p-12F ? 0 : 1;
}

// The same in 32 bits, at a third of the cost; false if any byte is in doubt.
QUILLON_KERNEL inline bool normalize_fast(const Vectors& vectors, Words& words) {
    int32_t doubts = 0;
    for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
        const float x = vectors.x32[i];
        const float y = vectors.y32[i];
        const float inverse = 1.0F / std::sqrt(x * x + y * y + 1.0F);
        const float r = level_of(x * inverse);
        const float g = level_of(y * inverse);
        const float b = level_of(inverse);
        words[i] = word_of_levels(r, g, b);
        doubts |= (x == 0.0F ? 0 : is_doubtful(r)) | (y == 0.0F ? 0 : is_doubtful(g)) |
                  (b > 255.5F ? 0 : is_doubtful(b));
    }
    return doubts == 0;
}

QUILLON_KERNEL inline void write_normals(uint8_t* pixels, size_t count, const double* up,
                                         const double* here, const double* down,
                                         double eighth_scale) {
    for_each_block(pixels, count, [=](uint8_t* block, size_t first) QUILLON_KERNEL {
        Vectors vectors;
        Words words;
        find_vectors({up + first, here + first, down + first}, eighth_scale, vectors);
        if (!normalize_fast(vectors, words))
            normalize(vectors, words);
        std::memcpy(block, words.data(), sizeof words);
    });
}

void read_row(const uint8_t* pixels, size_t width, Row& heights) {
    simd::run_vectorised<read_heights>(pixels, width, heights.data() + 1);
    heights[0] = heights[width];
    heights[width + 1] = heights[1];
}

void write_row(uint8_t* pixels, size_t width, const Row& up, const Row& here, const Row& down,
               float scale) {
    simd::run_vectorised<write_normals>(pixels, width, up.data(), here.data(), down.data(),
                                        scale / 8.0);
}

} // namespace
} // namespace quillon

using namespace quillon;

void __cBitmap_bump_map_to_normal_map(uint8_t* pixels, int32_t width, int32_t height, float scale) {
    if (width <= 0 || height <= 0)
        return;
    const size_t columns = size_of_count(width);
    const size_t row_bytes = columns * PIXEL_BYTES;
    uint8_t* last_row = pixels + (size_of_count(height) - 1) * row_bytes;

    // A block's last columns may lie beyond the row; they are computed and dropped.
    Row up(columns + 1 + BLOCK_PIXELS);
    Row here = up;
    Row down = up;
    Row first = up;
    read_row(last_row, columns, up);
    read_row(pixels, columns, first);
    here = first;
    for (; pixels != last_row; pixels += row_bytes) {
        read_row(pixels + row_bytes, columns, down);
        write_row(pixels, columns, up, here, down, scale);
        up.swap(here);
        here.swap(down);
    }
    write_row(last_row, columns, up, here, first, scale);
}
