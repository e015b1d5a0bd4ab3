// SPDX-License-Identifier: MIT
#include "quillon/appearance/filters.h"
#include "quillon/appearance/pixels.h"
#include "quillon/math/gauss.h"
#include "quillon/simd/dispatch.h"

#include <algorithm>

namespace quillon {
namespace {

using std::int32_t;
using std::int64_t;
using std::size_t;
using std::uint32_t;
using std::uint8_t;

// Beyond any distance between two 32-bit coordinates.
constexpr int64_t FARTHEST = int64_t{1} << 33;

struct Brush {
    const cColor* color;
    int32_t column; // of the centre
    float radius_square;
    float limit;
    float deviation;
};

// The pixels of one row that the brush touches: `count` from column `begin` on. Those of full
// strength have the indices `full_begin` to before `full_end` among them.
struct Stroke {
    Brush brush;
    float dy_square;
    int64_t begin;
    size_t count;
    size_t full_begin;
    size_t full_end;
};

constexpr float square(double distance) {
    const auto narrowed = static_cast<float>(distance);
    return narrowed * narrowed;
}

// How far a pixel is beyond the disc, in squared distance. Grows with both squares.
QUILLON_KERNEL inline float excess(const Brush& brush, float dx_square, float dy_square) {
    return static_cast<float>((static_cast<double>(dx_square) + static_cast<double>(dy_square)) -
                              static_cast<double>(brush.radius_square));
}

// The strength of a pixel that the brush reaches.
QUILLON_KERNEL inline float strength_at(const Brush& brush, float dx_square, float dy_square) {
    const float d = excess(brush, dx_square, dy_square);
    const auto falloff = static_cast<float>(gauss_taylor7(d, brush.deviation));
    return d <= 0.0F ? 1.0F : falloff;
}

QUILLON_KERNEL inline uint32_t add_to_channel(uint32_t word, int channel, double component,
                                              float strength) {
    const int shift = channel_shift(channel);
    const auto byte = static_cast<int32_t>(word >> shift & 255);
    const auto sum = static_cast<float>(component * static_cast<double>(strength) * 255.0 + byte);
    const float positive = sum > 0.0F ? sum : 0.0F; // 0 for NaN too
    const auto level = static_cast<int32_t>(positive < 255.0F ? positive : 255.0F);
    return static_cast<uint32_t>(level) << shift;
}

QUILLON_KERNEL inline void find_strengths(const Stroke& stroke, size_t first,
                                          PerPixel<float>& strengths) {
    if (first >= stroke.full_begin && first + BLOCK_PIXELS <= stroke.full_end) {
        strengths.fill(1.0F);
        return;
    }
    const double first_dx =
        static_cast<double>(stroke.begin - stroke.brush.column) + static_cast<double>(first);
    for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
        const double dx = first_dx + static_cast<int32_t>(i);
        strengths[i] = strength_at(stroke.brush, square(dx), stroke.dy_square);
    }
}

QUILLON_KERNEL inline void paint(uint8_t* pixels, size_t count, const Stroke* stroke) {
    const double r = stroke->brush.color->r;
    const double g = stroke->brush.color->g;
    const double b = stroke->brush.color->b;
    const double a = stroke->brush.color->a;
    for_each_block(pixels, count, [=](uint8_t* block, size_t first) QUILLON_KERNEL {
        PerPixel<float> strengths;
        find_strengths(*stroke, first, strengths);
        for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
            const uint32_t word = load_pixel(block + i * PIXEL_BYTES);
            store_pixel(block + i * PIXEL_BYTES, add_to_channel(word, 0, r, strengths[i]) |
                                                     add_to_channel(word, 1, g, strengths[i]) |
                                                     add_to_channel(word, 2, b, strengths[i]) |
                                                     add_to_channel(word, 3, a, strengths[i]));
        }
    });
}

// How many of the distances 0, 1, 2 and so on, up to before `end`, fulfil the condition, which
// holds up to some distance and no further: a binary search.
template <typename Condition>
int64_t reach(int64_t end, Condition holds) {
    int64_t begin = 0;
    while (begin < end) {
        const int64_t middle = begin + (end - begin) / 2;
        if (holds(middle))
            begin = middle + 1;
        else
            end = middle;
    }
    return begin;
}

// The half-open range of coordinates less than `reach` from `centre`, clamped to 0 to `size`.
struct Span {
    Span(int32_t centre, int64_t reach, int32_t size)
        : begin(std::max<int64_t>(centre - reach + 1, 0)),
          end(std::min<int64_t>(centre + reach, size)) {}

    int64_t begin;
    int64_t end;
};

bool is_touched(const Brush& brush, float d) {
    return d <= 0.0F || d < brush.limit;
}

// How many distances in rows the brush reaches.
int64_t reach_in_rows(const Brush& brush) {
    return reach(FARTHEST, [&](int64_t dy) {
        return is_touched(brush, excess(brush, 0.0F, square(static_cast<double>(dy))));
    });
}

// Every distance enters through its square, and all roundings keep the order of what they round: so
// the touched pixels of a row are one run around the centre, and those of full strength as well.
Stroke stroke_of_row(const Brush& brush, int64_t dy, int64_t farthest, int32_t width) {
    const float dy_square = square(static_cast<double>(dy));
    const auto excess_at = [&](int64_t dx) {
        return excess(brush, square(static_cast<double>(dx)), dy_square);
    };
    const int64_t touched =
        reach(farthest, [&](int64_t dx) { return is_touched(brush, excess_at(dx)); });
    const int64_t full_reach = reach(touched, [&](int64_t dx) { return excess_at(dx) <= 0.0F; });
    const Span run(brush.column, touched, width);
    const Span full(brush.column, full_reach, width);
    const auto size_of = [](int64_t length) {
        return static_cast<size_t>(std::max(length, int64_t{0}));
    };
    return {brush,
            dy_square,
            run.begin,
            size_of(run.end - run.begin),
            size_of(full.begin - run.begin),
            size_of(full.end - run.begin)};
}

} // namespace
} // namespace quillon

using namespace quillon;

void __cBitmap_gauss_brush(const cColor& color, uint8_t* pixels, int32_t column, int32_t row,
                           int32_t width, int32_t height, const float& radius,
                           const float& deviation) {
    const Brush brush{&color, column, radius * radius,
                      static_cast<float>(static_cast<double>(deviation) * deviation * 4.0),
                      deviation};
    const int64_t farthest = reach_in_rows(brush);
    const Span rows(row, farthest, height);
    for (int64_t y = rows.begin; y < rows.end; ++y) {
        const Stroke stroke = stroke_of_row(brush, y - row, farthest, width);
        if (stroke.count == 0)
            continue;
        uint8_t* const first = pixels + (y * width + stroke.begin) * int64_t{PIXEL_BYTES};
        simd::run_vectorised<paint>(first, stroke.count, &stroke);
    }
}
