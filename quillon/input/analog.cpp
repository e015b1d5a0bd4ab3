// SPDX-License-Identifier: MIT
#include "quillon/input/analog.h"

#include "quillon/core/modules.h"
#include "quillon/input/names.h"

#include <algorithm>
#include <cmath>

namespace quillon {
namespace {

static_assert(modInput::analog_pad_code(0, 0) == FIRST_PAD_AXIS &&
              modInput::analog_pad_code(PAD_AXES - 1, PAD_COUNT - 1) == ANALOG_CODES - 1);

constexpr float MOUSE_SCALE = 0.1F;

// The bound axis, as the plug-in reports it.
class Axis {
public:
    explicit Axis(const cInputAnalog& binding) : module(*__mInput_instance()) {
        const std::int16_t absolute =
            binding.pad == -1 ? binding.code : modInput::analog_pad_code(binding.code, binding.pad);
        code = static_cast<std::uint16_t>(absolute);
    }

    float value() const { return module.axis_value(code); }

    float delta() const { return module.axis_delta(code); }

    // A raw position in the scale of the binding's zones.
    float scaled(float raw) const {
        const bool mouse = code == MOUSE_X || code == MOUSE_Y;
        return mouse ? raw * MOUSE_SCALE : raw;
    }

private:
    const modInput& module;
    std::uint16_t code;
};

// The positions of an axis after and before the last update.
struct Move {
    float current;
    float previous;
};

// Both positions NaN, which no comparison holds for, if the binding has no axis.
Move last_move(const cInputAnalog& binding) {
    if (binding.code == NO_INPUT)
        return {NAN, NAN};
    const Axis axis(binding);
    const float current = axis.value();
    const float previous = current - axis.delta();
    return {axis.scaled(current), axis.scaled(previous)};
}

// The live travel mapped to 0 to 1, then stretched so that its far end saturates. Each of the two
// steps is computed in 64 bits and rounded once.
float strength(float travel, const cInputAnalog& binding) {
    const double dead = binding.dead_zone;
    const auto live = static_cast<float>((travel - dead) * (1.0 / (1.0 - dead)));
    const auto stretched = static_cast<float>(live / (1.0 - binding.saturation_zone));
    // In this order a NaN becomes 0.
    return std::min(std::max(0.0F, stretched), 1.0F);
}

} // namespace
} // namespace quillon

using namespace quillon;

float __cInputAnalog_query(const cInputAnalog* binding) {
    if (binding->code == NO_INPUT)
        return 0;
    const Axis axis(*binding);
    const float value = axis.scaled(axis.value());
    const float travel = std::fabs(value);
    if (!(binding->dead_zone < travel))
        return 0;
    const float sign = value < 0 ? -1.0F : 1.0F;
    if (binding->saturation_zone == 1)
        return sign;
    return sign * strength(travel, *binding) * (binding->inverted ? -1.0F : 1.0F);
}

bool __cInputAnalog_query_up(const cInputAnalog* binding) {
    const Move move = last_move(*binding);
    return move.current > binding->dead_zone && move.previous <= binding->dead_zone;
}

bool __cInputAnalog_query_down(const cInputAnalog* binding) {
    const Move move = last_move(*binding);
    return move.current < -binding->dead_zone && move.previous >= -binding->dead_zone;
}

bool __cInputAnalog_query_center(const cInputAnalog* binding) {
    const Move move = last_move(*binding);
    return std::fabs(move.current) < binding->dead_zone &&
           std::fabs(move.previous) >= binding->dead_zone;
}

const char* __cInputAnalog_display_name(const cInputAnalog* binding) {
    if (binding->code == NO_INPUT)
        return NO_INPUT_NAME;
    const int row = binding->pad == -1 ? binding->code
                                       : binding->code + binding->pad * PAD_AXES + FIRST_PAD_AXIS;
    return name_at(analog_input_names, row);
}
