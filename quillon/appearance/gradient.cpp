// SPDX-License-Identifier: MIT
#include "quillon/appearance/gradient.h"

#include "quillon/appearance/named.h"

#include <cstddef>
#include <new>

namespace quillon {
namespace {

// The weights of "Skin" and "Flame" are 32-bit constants; their sums have 64 bits until the end.
float sum_of(double weighted, float offset) {
    return static_cast<float>(weighted + offset);
}

cColor fade(const float& t) {
    return {1.0F, 1.0F, 1.0F, t};
}

cColor monochrome(const float& t) {
    return {t, t, t, 1.0F};
}

cColor health(const float& t) {
    if (t <= 0.5F)
        return {1.0F, t + t, 0.0F, 1.0F};
    return {static_cast<float>(1.0 - 2.0 * (t - 0.5)), 1.0F, 0.0F, 1.0F};
}

cColor mana(const float& t) {
    return {0.0F, t, 1.0F, 1.0F};
}

cColor skin(const float& t) {
    const double wide = t;
    return {sum_of(wide * 0.8F, 0.2F), sum_of(wide * 0.75F, 0.1F), t * 0.65F, 1.0F};
}

cColor flame(const float& t) {
    const double wide = t;
    return {1.0F, sum_of(wide * 0.7F, 0.15F), 0.2F, 1.0F};
}

cColor hue(const float& t) {
    cColor color{0.0F, 0.0F, 0.0F, 1.0F};
    __nsColor_hue_function(color, t, 1.0F, 1.0F);
    return color;
}

// In the order of GRADIENT_NAMES.
constexpr std::array FUNCTIONS{fade, monochrome, health, mana, skin, flame, hue};
constexpr auto KEYS = detail::keys_of(GRADIENT_NAMES);

using Gradients = std::array<cGradient, FUNCTIONS.size()>;

Gradients make_gradients() {
    Gradients gradients;
    for (std::size_t i = 0; i < gradients.size(); ++i)
        gradients[i] = {std::string(GRADIENT_NAMES[i]), FUNCTIONS[i]};
    return gradients;
}

// Made at the first look-up and never destroyed, so that static objects of a host may look
// gradients up before and after everything else. The names are short enough to own no memory.
const Gradients& all_gradients() {
    alignas(Gradients) static std::byte storage[sizeof(Gradients)];
    static const Gradients* const gradients = ::new (storage) Gradients(make_gradients());
    return *gradients;
}

// The name_hash of the name with its first letter made a capital and the rest small. The first byte
// falls by 32 whatever it is, so a name that begins with anything but a letter finds nothing.
std::uint32_t capitalised_key(std::string_view name) {
    return name_hash(name.size(), [&](std::size_t i) {
        const char letter = detail::to_lower(name[i]);
        return i == 0 ? static_cast<char>(letter - 32) : letter;
    });
}

} // namespace
} // namespace quillon

using namespace quillon;

const cGradient* __nsGradient_gradient_table(const std::string& name) {
    return detail::find_by_key(KEYS, all_gradients(), capitalised_key(name.c_str()));
}
