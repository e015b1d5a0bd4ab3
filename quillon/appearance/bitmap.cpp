// SPDX-License-Identifier: MIT
#include "quillon/appearance/bitmap.h"

#include "quillon/appearance/color_names.h"
#include "quillon/appearance/pixels.h"
#include "quillon/core/modules.h"
#include "quillon/platform/memory.h"
#include "quillon/simd/dispatch.h"

namespace quillon {
namespace {

struct ChannelSums {
    std::uint32_t r = 0;
    std::uint32_t g = 0;
    std::uint32_t b = 0;
};

std::uint8_t* pixel_at(std::uint8_t* pixels, std::int32_t index) {
    return pixels + std::ptrdiff_t{index} * static_cast<std::ptrdiff_t>(PIXEL_BYTES);
}

std::uint32_t word_of_color(const cColor& color) {
    return pixel_word(wrapped_byte_from_component(color.r), wrapped_byte_from_component(color.g),
                      wrapped_byte_from_component(color.b), wrapped_byte_from_component(color.a));
}

QUILLON_KERNEL inline void fill(std::uint8_t* pixels, std::size_t count, std::uint32_t word) {
    for_each_pixel(pixels, count, [=](std::uint32_t) { return word; });
}

// Adds two channels at a time, in the halves of a word; a half holds the sum of 257 bytes.
QUILLON_KERNEL inline void sum_channels(const std::uint8_t* pixels, std::size_t count,
                                        ChannelSums* sums) {
    constexpr std::size_t run = 256;
    constexpr std::uint32_t odd_bytes = 0x00FF00FF;
    for (std::size_t first = 0; first < count; first += run) {
        std::array<std::uint32_t, 2> halves{};
        const std::size_t end = std::min(first + run, count);
        for (std::size_t i = first; i < end; ++i) {
            const std::uint32_t word = load_pixel(pixels + i * PIXEL_BYTES);
            halves[0] += word & odd_bytes;
            halves[1] += word >> 8 & odd_bytes;
        }
        const auto channel_sum = [&](int channel) {
            const int shift = channel_shift(channel);
            return halves[shift % 16 / 8] >> shift / 16 * 16 & 0xFFFF;
        };
        sums->r += channel_sum(0);
        sums->g += channel_sum(1);
        sums->b += channel_sum(2);
    }
}

} // namespace
} // namespace quillon

using namespace quillon;

void __cBitmap_init(std::int16_t width, std::int16_t height, std::uint8_t*& pixels) {
    const std::size_t count = size_of_count(width) * size_of_count(height);
    auto* block = new std::uint8_t[count * PIXEL_BYTES];
    platform::prefer_huge_pages(block, count * PIXEL_BYTES);
    simd::run_vectorised<fill>(block, count, ALPHA_BITS);
    pixels = block;
}

// The flat interface passes the names by value.
// NOLINTBEGIN(performance-unnecessary-value-param)
void __cBitmap_load(std::string name, void* width, void* height, void* pixels) {
    __mGraphics_instance()->load_bitmap(name, width, height, pixels);
}

bool __cBitmap_save(std::string name, std::uint16_t width, std::uint16_t height,
                    std::uint8_t* pixels) {
    return __mGraphics_instance()->save_bitmap(name, width, height, pixels);
}

// NOLINTEND(performance-unnecessary-value-param)

void __cBitmap_get_pixel(cColor& out, const std::uint8_t* pixels, std::int32_t index) {
    const std::uint8_t* pixel = pixels + std::ptrdiff_t{index} * 4;
    out.set(component_from_byte(pixel[0]), component_from_byte(pixel[1]),
            component_from_byte(pixel[2]), component_from_byte(pixel[3]));
}

void __cBitmap_set_pixel(const cColor& color, std::uint8_t* pixels, std::int32_t index) {
    store_pixel(pixel_at(pixels, index), word_of_color(color));
}

void __cBitmap_set_to_color(const cColor& color, std::uint8_t* pixels, std::int32_t count) {
    simd::run_vectorised<fill>(pixels, size_of_count(count), word_of_color(color));
}

void __cBitmap_get_average_color(cColor& out, const std::uint8_t* pixels, std::int32_t width,
                                 std::int32_t height) {
    out = BLACK;
    if (width <= 0)
        return;
    const std::size_t row_pixels = size_of_count(width);
    const auto add_row_mean = [&](float& component, std::uint32_t sum) {
        const std::int32_t mean = static_cast<std::int32_t>(sum) / width;
        component = static_cast<float>(component + static_cast<double>(mean) / height);
    };
    for (std::int32_t y = 0; y < height; ++y) {
        ChannelSums sums;
        simd::run_vectorised<sum_channels>(pixels, row_pixels, &sums);
        add_row_mean(out.r, sums.r);
        add_row_mean(out.g, sums.g);
        add_row_mean(out.b, sums.b);
        pixels += row_pixels * PIXEL_BYTES;
    }
    for (float* component : {&out.r, &out.g, &out.b})
        *component = static_cast<float>(*component / 255.0);
}
