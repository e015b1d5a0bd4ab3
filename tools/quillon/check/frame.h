// SPDX-License-Identifier: MIT
// The frames of the renderer's check: small, with one colour for the sky, and read back by the
// pixel.
#pragma once

#include "plugins/contracts/graphics.h"

#include <array>
#include <string>
#include <vector>

namespace tool {

inline constexpr const char* GRAPHICS = "GRAPHICS"; // the subject of its checks
inline constexpr std::uint16_t WIDTH = 72;
inline constexpr std::uint16_t HEIGHT = 40;

using Bytes = std::array<int, 4>; // red, green, blue, alpha

inline constexpr quillon::cColor SKY(0.25F, 0.5F, 0.75F, 1);
inline constexpr Bytes SKY_BYTES = {64, 128, 191, 255};
inline constexpr Bytes WHITE_BYTES = {255, 255, 255, 255};

// The part of a frame from the corner (left, top) to before (right, bottom).
struct Part {
    std::size_t left;
    std::size_t top;
    std::size_t right;
    std::size_t bottom;
};

// A finished frame, read back.
class Frame {
public:
    Frame(const quillon::Graphics& graphics, std::uint16_t frame_width, std::uint16_t height);

    // Throws Broken with `what` if the pixel has another colour. Two steps of a byte are the
    // rounding of drivers.
    void expect_at(std::size_t x, std::size_t y, const Bytes& color, const std::string& what) const;

    // True if some pixel of the part has the colour.
    bool has(const Bytes& color, const Part& part) const;

private:
    const std::uint8_t* at(std::size_t x, std::size_t y) const {
        return &pixels[(y * width + x) * 4];
    }

    std::uint16_t width;
    std::vector<std::uint8_t> pixels;
};

// These throw Broken where they fail.
void begin_frame(const quillon::Graphics& graphics);
void end_frame(const quillon::Graphics& graphics);

} // namespace tool
