// SPDX-License-Identifier: MIT
#include "check/frame.h"

#include "check/check.h"

#include <algorithm>
#include <cstdlib>

namespace tool {
namespace {

bool is_near(int byte, int other) {
    return std::abs(byte - other) <= 2;
}

} // namespace

Frame::Frame(const quillon::Graphics& graphics, std::uint16_t frame_width, std::uint16_t height)
    : width(frame_width), pixels(std::size_t{frame_width} * height * 4) {
    expect_success(graphics, graphics.read_frame(pixels.data(), width, height), "read_frame");
}

void Frame::expect_at(std::size_t x, std::size_t y, const Bytes& color,
                      const std::string& what) const {
    for (std::size_t channel = 0; channel < color.size(); ++channel)
        expect(is_near(at(x, y)[channel], color[channel]),
               what + " has the wrong colour at (" + std::to_string(x) + ", " + std::to_string(y) +
                   "): channel " + std::to_string(channel) + " is " +
                   std::to_string(at(x, y)[channel]) + ", not " + std::to_string(color[channel]));
}

bool Frame::has(const Bytes& color, const Part& part) const {
    for (std::size_t y = part.top; y < part.bottom; ++y)
        for (std::size_t x = part.left; x < part.right; ++x)
            if (std::equal(color.begin(), color.end(), at(x, y), is_near))
                return true;
    return false;
}

void begin_frame(const quillon::Graphics& graphics) {
    expect_success(graphics, graphics.begin_frame({}), "begin_frame");
}

void end_frame(const quillon::Graphics& graphics) {
    expect_success(graphics, graphics.end_frame(), "end_frame");
}

} // namespace tool
