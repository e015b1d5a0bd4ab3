// SPDX-License-Identifier: MIT
#include "quillon/appearance/color.h"

#include "quillon/appearance/color_names.h"
#include "quillon/math/text_fields.h"

namespace quillon {
namespace {

constexpr auto KEYS = detail::keys_of(NAMED_COLORS, &Named<cColor>::name);

// A sixth of the circle; its multiples bound the sixths, so they are taken from the rounded value.
constexpr double SIXTH = static_cast<float>(1.0 / 6.0);

int sixth_of(float hue) {
    int sixth = 0;
    while (sixth < 5 && !(hue < (sixth + 1) * SIXTH))
        ++sixth;
    return sixth;
}

} // namespace
} // namespace quillon

using namespace quillon;

const cColor* __nsColor_color_table(const std::string& name) {
    const std::uint32_t key = detail::upper_case_key(name.c_str());
    const auto* row = detail::find_by_key(KEYS, NAMED_COLORS, key);
    return row == nullptr ? nullptr : &row->value;
}

void __nsColor_color_from_string(cColor& out, const char* text) {
    read_component_fields<24>(out, 4, text);
}

void __nsColor_hue_function(cColor& out, const float& hue, const float& saturation,
                            const float& value) {
    const int sixth = sixth_of(hue);
    const double f = static_cast<float>((hue - sixth * SIXTH) * 6.0);
    const double low = 1.0 - saturation;
    const double rising = (1.0 - f) * low + f;
    const double falling = (1.0 - f) + low * f;
    const double sixths[][3] = {
        {1.0, rising, low},  {falling, 1.0, low}, {low, 1.0, rising},
        {low, falling, 1.0}, {rising, low, 1.0},  {1.0, low, falling},
    };
    const auto& [red, green, blue] = sixths[sixth];
    out.set(static_cast<float>(red) * value, static_cast<float>(green) * value,
            static_cast<float>(blue) * value, 1.0F);
}
