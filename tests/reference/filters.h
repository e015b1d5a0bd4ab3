// SPDX-License-Identifier: MIT
// The filters computed in the plainest way, a pixel at a time: what the library is timed beside,
// and what it equals byte for byte.
#pragma once

#include "quillon/appearance/bitmap.h"
#include "quillon/math/scalar.h"
#include "quillon/math/vector.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plain {

using quillon::cColor;
using quillon::cVector3D;
using std::int32_t;
using std::uint8_t;

template <typename Float>
uint8_t clamped(Float value) {
    if (!(value > 0))
        return 0;
    return value < 255 ? static_cast<uint8_t>(value) : 255;
}

inline void gauss_brush(const cColor& color, uint8_t* pixels, int32_t column, int32_t row,
                        int32_t width, int32_t height, float radius, float deviation) {
    const auto limit = static_cast<float>(static_cast<double>(deviation) * deviation * 4);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x, pixels += 4) {
            const auto dx = static_cast<float>(std::int64_t{x} - column);
            const auto dy = static_cast<float>(std::int64_t{y} - row);
            const float dx_square = dx * dx;
            const float dy_square = dy * dy;
            const float radius_square = radius * radius;
            const auto d =
                static_cast<float>((static_cast<double>(dx_square) + dy_square) - radius_square);
            float strength = d <= 0 ? 1.0F : 0.0F;
            if (d > 0 && d < limit)
                strength = static_cast<float>(gauss_near_zero_taylor7(d, deviation));
            if (strength == 0)
                continue;
            for (int channel = 0; channel < 4; ++channel) {
                const double component = color[channel];
                pixels[channel] =
                    clamped(static_cast<float>(component * strength * 255.0 + pixels[channel]));
            }
        }
}

inline void normal_map(uint8_t* pixels, int32_t width, int32_t height, float scale) {
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<double> heights(count);
    std::vector<cVector3D> normals(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double mean = (pixels[4 * i] + pixels[4 * i + 1] + pixels[4 * i + 2]) / 3.0;
        heights[i] = (pixels[4 * i + 3] / 65536.0) * mean;
    }
    const auto h = [&](int32_t column, int32_t row) { return heights[row * width + column]; };
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const int32_t left = (x + width - 1) % width;
            const int32_t right = (x + 1) % width;
            const int32_t up = (y + height - 1) % height;
            const int32_t down = (y + 1) % height;
            const double gx = (h(x, up) - h(left, up)) / 4.0 + (h(right, up) - h(x, up)) / 4.0 +
                              (h(x, y) - h(left, y)) / 8.0 + (h(right, y) - h(x, y)) / 8.0 +
                              (h(x, down) - h(left, down)) / 8.0 +
                              (h(right, down) - h(x, down)) / 8.0;
            const double gy = (h(left, y) - h(left, up)) / 4.0 +
                              (h(left, down) - h(left, y)) / 4.0 + (h(x, y) - h(x, up)) / 8.0 +
                              (h(x, down) - h(x, y)) / 8.0 + (h(right, y) - h(right, up)) / 8.0 +
                              (h(right, down) - h(right, y)) / 8.0;
            cVector3D& normal = normals[y * width + x];
            normal = cVector3D(-gx * scale, -gy * scale, 1.0);
            normal.normalize();
        }
    for (std::size_t i = 0; i < count; ++i, pixels += 4) {
        pixels[0] = clamped((normals[i].x + 1.0) * 128.0);
        pixels[1] = clamped((normals[i].y + 1.0) * 128.0);
        pixels[2] = clamped((normals[i].z + 1.0) * 128.0);
        pixels[3] = 255;
    }
}

// Replaces red, green and blue of each pixel by change(byte).
template <typename Change>
void change_color_bytes(uint8_t* pixels, int32_t count, Change change) {
    for (int32_t i = 0; i < count; ++i, pixels += 4)
        for (int channel = 0; channel < 3; ++channel)
            pixels[channel] = change(pixels[channel]);
}

inline void multiply(float factor, uint8_t* pixels, int32_t count) {
    change_color_bytes(pixels, count, [=](uint8_t byte) {
        return clamped(static_cast<float>(static_cast<double>(byte) * factor));
    });
}

inline void darken(uint8_t amount, uint8_t* pixels, int32_t count) {
    change_color_bytes(pixels, count, [=](uint8_t byte) {
        return static_cast<uint8_t>(byte >= amount ? byte - amount : 0);
    });
}

inline void brighten(uint8_t amount, uint8_t* pixels, int32_t count) {
    change_color_bytes(pixels, count, [=](uint8_t byte) {
        return static_cast<uint8_t>(byte <= 255 - amount ? byte + amount : 255);
    });
}

// Replaces each pixel by opaque grey of mask(pixel).
template <typename Mask>
void make_mask(uint8_t* pixels, int32_t count, Mask mask) {
    for (int32_t i = 0; i < count; ++i, pixels += 4) {
        pixels[0] = pixels[1] = pixels[2] = mask(pixels);
        pixels[3] = 255;
    }
}

inline void channel_mask(uint8_t channel, uint8_t* pixels, int32_t count) {
    make_mask(pixels, count, [=](const uint8_t* pixel) { return pixel[channel]; });
}

inline void color_key_mask(const cColor& key, uint8_t* pixels, int32_t count) {
    uint8_t bytes[4];
    __cBitmap_set_pixel(key, bytes, 0);
    make_mask(pixels, count, [&](const uint8_t* pixel) {
        return static_cast<uint8_t>(
            pixel[0] == bytes[0] && pixel[1] == bytes[1] && pixel[2] == bytes[2] ? 0 : 255);
    });
}

inline void average_color(cColor& out, const uint8_t* pixels, int32_t width, int32_t height) {
    out.set(0, 0, 0, 1);
    for (int32_t y = 0; y < height; ++y) {
        int32_t sums[3] = {};
        for (int32_t x = 0; x < width; ++x, pixels += 4)
            for (int channel = 0; channel < 3; ++channel)
                sums[channel] += pixels[channel];
        for (int channel = 0; channel < 3; ++channel) {
            const int32_t mean = sums[channel] / width;
            out[channel] = static_cast<float>(out[channel] + static_cast<double>(mean) / height);
        }
    }
    for (int channel = 0; channel < 3; ++channel)
        out[channel] = static_cast<float>(out[channel] / 255.0);
}

} // namespace plain
