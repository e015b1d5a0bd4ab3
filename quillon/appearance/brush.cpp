#include "quillon/appearance/filters.h"
#include "quillon/appearance/pixels.h"
#include "quillon/math/gauss.h"
#include "quillon/simd/dispatch.h"

#include <algorithm>

namespace {

using quillon::BLOCK_PIXELS;
using quillon::PIXEL_BYTES;
using std::int32_t;
using std::int64_t;
using std::size_t;
using std::uint32_t;
using std::uint8_t;

// Beyond any distance between two 32-bit coordinates.
constexpr int64_t FARTHEST = int64_t{1} << 33;

struct Brush {
    float radius_square;
    float limit;
    float deviation;
};

// The pixels of one row that the brush reaches, and those among them of full strength: from the
// index `full_begin`, counted from the first, to before `full_end`.
struct Stroke {
    Brush brush;
    const quillon::cColor* color;
    double first_dx;
    float dy_square;
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
    const auto falloff = static_cast<float>(quillon::gauss_taylor7(d, brush.deviation));
    return d <= 0.0F ? 1.0F : falloff;
}

QUILLON_KERNEL inline uint32_t add_to_channel(uint32_t word, int channel, double component,
                                              float strength) {
    const int shift = quillon::channel_shift(channel);
    const auto byte = static_cast<int32_t>(word >> shift & 255);
    const auto sum = static_cast<float>(component * static_cast<double>(strength) * 255.0 + byte);
    const float positive = sum > 0.0F ? sum : 0.0F; // 0 for NaN too
    const auto level = static_cast<int32_t>(positive < 255.0F ? positive : 255.0F);
    return static_cast<uint32_t>(level) << shift;
}

QUILLON_KERNEL inline void find_strengths(const Stroke& stroke, size_t first,
                                          quillon::PerPixel<float>& strengths) {
    if (first >= stroke.full_begin && first + BLOCK_PIXELS <= stroke.full_end) {
        strengths.fill(1.0F);
        return;
    }
    const double first_dx = stroke.first_dx + static_cast<double>(first);
    for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
        const double dx = first_dx + static_cast<int32_t>(i);
        strengths[i] = strength_at(stroke.brush, square(dx), stroke.dy_square);
    }
}

QUILLON_KERNEL inline void paint(uint8_t* pixels, size_t count, const Stroke* stroke) {
    const double r = stroke->color->r;
    const double g = stroke->color->g;
    const double b = stroke->color->b;
    const double a = stroke->color->a;
    quillon::for_each_block(pixels, count, [=](uint8_t* block, size_t first) QUILLON_KERNEL {
        quillon::PerPixel<float> strengths;
        find_strengths(*stroke, first, strengths);
        for (size_t i = 0; i < BLOCK_PIXELS; ++i) {
            const uint32_t word = quillon::load_pixel(block + i * PIXEL_BYTES);
            quillon::store_pixel(block + i * PIXEL_BYTES,
                                 add_to_channel(word, 0, r, strengths[i]) |
                                     add_to_channel(word, 1, g, strengths[i]) |
                                     add_to_channel(word, 2, b, strengths[i]) |
                                     add_to_channel(word, 3, a, strengths[i]));
        }
    });
}

// How many whole distances from 0 up to before `end` fulfil the condition, which holds up to some
// distance and no further.
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

// The half-open range of coordinates less than `reach` from `centre`, held to 0 to `size`.
struct Span {
    Span(int32_t centre, int64_t reach, int32_t size)
        : begin(std::max<int64_t>(centre - reach + 1, 0)),
          end(std::min<int64_t>(centre + reach, size)) {}

    int64_t begin;
    int64_t end;
};

} // namespace

// Every distance enters through its square, and all roundings keep the order of what they round: so
// the touched pixels of a row are one run around the centre, and those of full strength as well.
void __cBitmap_gauss_brush(const quillon::cColor& color, uint8_t* pixels, int32_t column,
                           int32_t row, int32_t width, int32_t height, const float& radius,
                           const float& deviation) {
    const Brush brush{radius * radius,
                      static_cast<float>(static_cast<double>(deviation) * deviation * 4.0),
                      deviation};
    const auto is_touched = [&](float d) { return d <= 0.0F || d < brush.limit; };
    const int64_t farthest = reach(FARTHEST, [&](int64_t dy) {
        return is_touched(excess(brush, 0.0F, square(static_cast<double>(dy))));
    });
    const Span rows(row, farthest, height);
    for (int64_t y = rows.begin; y < rows.end; ++y) {
        const float dy_square = square(static_cast<double>(y - row));
        const auto excess_at = [&](int64_t dx) {
            return excess(brush, square(static_cast<double>(dx)), dy_square);
        };
        const int64_t touched =
            reach(farthest, [&](int64_t dx) { return is_touched(excess_at(dx)); });
        const Span run(column, touched, width);
        if (run.begin >= run.end)
            continue;
        const Span full(column, reach(touched, [&](int64_t dx) { return excess_at(dx) <= 0.0F; }),
                        width);
        const Stroke stroke{brush,
                            &color,
                            static_cast<double>(run.begin - column),
                            dy_square,
                            static_cast<size_t>(full.begin - run.begin),
                            static_cast<size_t>(std::max(full.end - run.begin, int64_t{0}))};
        quillon::simd::run_vectorised<paint>(pixels +
                                                 (y * width + run.begin) * int64_t{PIXEL_BYTES},
                                             static_cast<size_t>(run.end - run.begin), &stroke);
    }
}
