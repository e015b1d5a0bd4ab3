// SPDX-License-Identifier: MIT
#include "quillon/math/spline.h"

#include "quillon/math/text_fields.h"
#include "quillon/simd/dispatch.h"
#include "quillon/simd/lanes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

using namespace quillon;
using simd::Pair;
using simd::Quad;
using simd::square_roots;

namespace quillon {
namespace {

// As many as counts and addresses can tell apart.
constexpr auto MOST_POINTS = static_cast<std::int32_t>(std::min<std::ptrdiff_t>(
    std::numeric_limits<std::int32_t>::max(),
    std::numeric_limits<std::ptrdiff_t>::max() / std::ptrdiff_t{sizeof(cVector3D)}));

// Frees the array and owns `fresh`, which the caller allocates first, so that a failed allocation
// leaves the spline unchanged.
void own(cSpline3D& s, cVector3D* fresh, std::int32_t capacity) {
    delete[] s.points;
    s.points = fresh;
    s.capacity = capacity;
}

// The first of `capacity` and the powers of two above it that holds `needed` points.
std::int32_t grown(std::int32_t capacity, std::int32_t needed) {
    std::int64_t result = capacity;
    while (result < needed)
        result = std::int64_t{1} << std::bit_width(static_cast<std::uint64_t>(result));
    return static_cast<std::int32_t>(std::min<std::int64_t>(result, MOST_POINTS));
}

// The place of a parameter: `fraction` of the way from point `index` to the next.
struct Place {
    std::int32_t index;
    double fraction;
};

Place place_of(const cSpline3D& s, double t) {
    constexpr double limit = 1 << 30;
    t = std::clamp(t, -limit, limit);
    Place place{std::isnan(t) ? 0 : static_cast<std::int32_t>(t), 0.0};
    place.fraction = t - place.index;
    if (place.index == s.count - 1 && place.fraction == 0.0)
        place = {place.index - 1, 1.0};
    return place;
}

[[gnu::noinline]] const cVector3D& point_beyond(const cSpline3D& s, std::int32_t index) {
    if (!s.closed)
        return s.points[index < 0 ? 0 : s.count - 1];
    const std::int32_t rest = index % s.count;
    return s.points[rest < 0 ? rest + s.count : rest];
}

// The point at any index, wrapped or clamped; the spline has at least one.
QUILLON_KERNEL inline const cVector3D& point_at(const cSpline3D& s, std::int32_t index) {
    if (index >= 0 && index < s.count) [[likely]]
        return s.points[index];
    return point_beyond(s, index);
}

// The cubic Bezier segment from one point to the next: for each component the points at its two
// ends, and three times the control points between them.
struct Segment {
    Pair ends[3];
    Pair handles[3];

    void at(cVector3D& out, double u) const {
        const double v = 1.0 - u;
        const Pair outer{v * v * v, u * u * u};
        const Pair inner{v * v * u, v * u * u};
        double sums[3];
        for (int c = 0; c < 3; ++c) {
            const Pair far = ends[c] * outer;
            const Pair near = handles[c] * inner;
            sums[c] = far[0] + near[0] + near[1] + far[1];
        }
        out.set(sums[0], sums[1], sums[2]);
    }
};

// Divides vectors by their lengths, which are returned, as cVector3D::normalized does: dividing by
// a length of exactly 1 changes nothing.
template <typename Lanes>
QUILLON_KERNEL inline Lanes normalize(Lanes (&vectors)[3]) {
    const auto& [x, y, z] = vectors;
    const Lanes lengths = square_roots(x * x + y * y + z * z);
    const Lanes divisors = lengths == Lanes{} ? Lanes{} + 1.0 : lengths;
    for (Lanes& component : vectors)
        component /= divisors;
    return lengths;
}

// The points that a segment depends on: its own two, and one on either side.
struct Reach {
    const cVector3D& before;
    const cVector3D& start;
    const cVector3D& end;
    const cVector3D& after;
};

// The segment from `start` to `end`: tangents bisect the unit chords that meet at an end, or follow
// the segment's own at the first and the last of a path, and handles are a third of the chord long.
//
// Square roots and divisions are the cost of a segment, and four of them take little longer than
// one. So lanes 0 and 1 hold the segment's chord as seen from its start and its end, lanes 2 and 3
// those of its neighbours.
QUILLON_KERNEL inline void read_segment(Segment& segment, const Reach& reach, bool first,
                                        bool last) {
    const double* const before = &reach.before.x;
    const double* const start = &reach.start.x;
    const double* const end = &reach.end.x;
    const double* const after = &reach.after.x;

    Quad chords[3];
    for (int c = 0; c < 3; ++c)
        chords[c] =
            Quad{end[c], start[c], start[c], end[c]} - Quad{start[c], end[c], before[c], after[c]};
    const Quad lengths = normalize(chords);

    Pair tangents[3];
    for (int c = 0; c < 3; ++c)
        tangents[c] = Pair{chords[c][0], chords[c][1]} + Pair{chords[c][2], chords[c][3]};
    normalize(tangents);

    using Mask = decltype(Pair{} < Pair{});
    const Mask alone{-first, -last};
    for (int c = 0; c < 3; ++c) {
        const Pair tangent = alone ? Pair{chords[c][0], chords[c][1]} : tangents[c];
        segment.ends[c] = Pair{start[c], end[c]};
        segment.handles[c] = (segment.ends[c] + tangent * lengths[0] / 3.0) * 3.0;
    }
}

// The segment that leaves point `index`. Most are neither first nor last, and so need no wrapping
// and no choice of tangents.
QUILLON_KERNEL inline void read_segment(Segment& segment, const cSpline3D& s, std::int32_t index) {
    const bool first = index <= 0;
    const bool last = index >= s.count - 2;
    if (!first && !last) [[likely]] {
        const cVector3D* const start = s.points + index;
        read_segment(segment, {start[-1], start[0], start[1], start[2]}, false, false);
        return;
    }
    const Reach reach{point_at(s, index - 1), point_at(s, index), point_at(s, index + 1),
                      point_at(s, index + 2)};
    read_segment(segment, reach, first, last);
}

// Reads a smooth path at one parameter after another; successive ones mostly share a segment.
class SmoothReader {
public:
    explicit SmoothReader(const cSpline3D& spline) : s(spline) { read_segment(segment, s, index); }

    cVector3D at(double t) {
        const Place place = place_of(s, t);
        if (place.index != index) {
            index = place.index;
            read_segment(segment, s, index);
        }
        cVector3D value;
        segment.at(value, place.fraction);
        return value;
    }

private:
    const cSpline3D& s;
    std::int32_t index = 0;
    Segment segment;
};

// `t` brought into 0 to `turn`, both ends included, with the result of adding and subtracting
// `turn` step by step, but in bounded time: below 2^53 all those steps but the last addition are
// exact, as the remainder is.
double wrapped(double t, double turn) {
    if (t < 0.0) {
        const double rest = std::fmod(t, turn);
        t = rest < 0.0 ? rest + turn : 0.0;
    }
    if (t > turn) {
        const double rest = std::fmod(t, turn);
        t = rest == 0.0 ? turn : rest;
    }
    return t;
}

// The number of points in a text's first field, limited to what its other fields can fill.
std::int32_t announced_points(const char* field, std::string_view text) {
    constexpr std::ptrdiff_t always_accepted = 32767;
    const std::ptrdiff_t fields = std::count(text.begin(), text.end(), '#') - 1;
    const std::ptrdiff_t limit = std::max(always_accepted, (fields + 2) / 3);
    const long announced = std::clamp(std::strtol(field, nullptr, 10), 0L, long{MOST_POINTS});
    return static_cast<std::int32_t>(std::min<std::ptrdiff_t>(announced, limit));
}

} // namespace
} // namespace quillon

void __cSpline3d_create_empty(cSpline3D& s, std::uint32_t capacity) {
    if (capacity > static_cast<std::uint32_t>(MOST_POINTS))
        throw std::bad_array_new_length();
    s.points = new cVector3D[capacity];
    s.capacity = static_cast<std::int32_t>(capacity);
    s.count = 0;
}

void __cSpline3d_create_with_control_points(cSpline3D& s, const cVector3D* points,
                                            std::int32_t count) {
    __cSpline3d_create_empty(s, static_cast<std::uint32_t>(std::max(count, 0)));
    s.count = s.capacity;
    std::copy_n(points, s.count, s.points);
}

void __cSpline3d_expand_array(cSpline3D& s, std::int32_t needed) {
    const std::int32_t capacity = grown(s.capacity, needed);
    auto* fresh = new cVector3D[capacity];
    std::copy_n(s.points, s.count, fresh);
    own(s, fresh, capacity);
}

void __cSpline3d_add_control_point(cSpline3D& s, const cVector3D& point) {
    // `point` may be in the array that growing frees.
    const cVector3D kept(point.x, point.y, point.z);
    if (s.count >= s.capacity)
        __cSpline3d_expand_array(s, s.count + 1);
    s.points[s.count++] = kept;
}

void __cSpline3d_get_hard_value(const cSpline3D& s, cVector3D& out, double t) {
    if (s.count <= 0) {
        out = VECTOR3D_ZERO;
        return;
    }
    const Place place = place_of(s, t);
    const cVector3D& start = point_at(s, place.index);
    const cVector3D& end = point_at(s, place.index + 1);
    out = start + (end - start) * place.fraction;
}

QUILLON_CPU_CLONES void __cSpline3d_get_smooth_value(const cSpline3D& s, cVector3D& out, double t) {
    if (s.count <= 0) {
        out = VECTOR3D_ZERO;
        return;
    }
    const Place place = place_of(s, t);
    Segment segment;
    read_segment(segment, s, place.index);
    segment.at(out, place.fraction);
}

double __cSpline3d_get_value_closest_to(const cSpline3D& s, const cVector3D& target,
                                        double tolerance, std::uint32_t iterations) {
    if (s.count <= 0)
        return 0.0;
    std::int32_t nearest = -1;
    double distance = target.squared_length();
    for (std::int32_t i = 0; i < s.count; ++i) {
        const double candidate = (s.points[i] - target).squared_length();
        if (candidate < distance) {
            nearest = i;
            distance = candidate;
        }
    }
    double t = std::max(nearest, 0);
    if (!(tolerance * tolerance < distance) || iterations == 0)
        return t;

    SmoothReader path(s);
    cVector3D value = nearest < 0 ? VECTOR3D_ZERO : path.at(t);
    const double step = std::max(tolerance, 0.0001);
    for (; iterations > 0; --iterations) {
        const cVector3D chord = path.at(t + step) - value;
        const double length = chord.length();
        t += (target - value).dot(chord / length) * (step / length);
        if (s.closed)
            t = wrapped(t, s.count);
        value = path.at(t);
    }
    return t;
}

void __cSpline3d_set_by_spline(cSpline3D& s, const cSpline3D& source) {
    if (&s == &source)
        return;
    auto* fresh = new cVector3D[source.capacity];
    std::copy_n(source.points, source.count, fresh);
    own(s, fresh, source.capacity);
    s.count = source.count;
    s.closed = source.closed;
}

bool __cSpline3d_is_equal_to(const cSpline3D& s, const cSpline3D& other) {
    constexpr double tolerance = 1e-6F;
    if (s.closed != other.closed || s.count != other.count)
        return false;
    for (std::int32_t i = 0; i < s.count; ++i)
        if ((s.points[i] - other.points[i]).squared_length() > tolerance * tolerance)
            return false;
    return true;
}

void __cSpline3d_spline_to_string(const cSpline3D& s, char* text) {
    text += std::strlen(text);
    text += std::sprintf(text, "%c%i#", s.closed ? 'C' : 'S', s.count);
    for (std::int32_t i = 0; i < s.count; ++i) {
        const cVector3D& p = s.points[i];
        char piece[48];
        int length = std::snprintf(piece, sizeof piece, "%.3f#%.3f#%.3f#", p.x, p.y, p.z);
        if (length >= static_cast<int>(sizeof piece))
            length = std::snprintf(piece, sizeof piece, "%.6e#%.6e#%.6e#", p.x, p.y, p.z);
        std::memcpy(text, piece, length + 1);
        text += length;
    }
}

void __cSpline3d_spline_from_string(cSpline3D& s, const char* text) {
    const bool closed = *text == 'C';
    if (*text != '\0')
        ++text;
    TextFields<24> fields(text);
    const char* field = fields.next();
    const std::int32_t count = field == nullptr ? 0 : announced_points(field, text);
    own(s, new cVector3D[count], count);
    s.count = count;
    s.closed = closed;
    for (std::int32_t i = 0; i < count; ++i)
        for (int component = 0; component < 3; ++component) {
            field = fields.next();
            if (field == nullptr)
                return;
            s.points[i][component] = field_to_double(field);
        }
}
