// SPDX-License-Identifier: MIT
// Numbered places for up to `capacity` values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace quillon::audio_openal {

// A handle is place + 1 + capacity * (how often the place was used before), so that the handle of a
// removed value finds nothing, and 0 is none.
template <typename Value, std::uint32_t capacity>
class Slots {
public:
    // 0 if all places are taken.
    std::uint32_t add(Value value) {
        for (std::uint32_t place = 0; place < capacity; ++place)
            if (!places[place].value) {
                places[place].value = std::move(value);
                return handle_of(place);
            }
        return 0;
    }

    Value* find(std::uint32_t handle) {
        if (handle == 0)
            return nullptr;
        const std::uint32_t place = (handle - 1) % capacity;
        return places[place].value && handle_of(place) == handle ? &*places[place].value : nullptr;
    }

    void remove(std::uint32_t handle) {
        if (find(handle) != nullptr)
            drop((handle - 1) % capacity);
    }

    template <typename Condition>
    void remove_if(Condition condition) {
        for (std::uint32_t place = 0; place < capacity; ++place)
            if (places[place].value && condition(*places[place].value))
                drop(place);
    }

    template <typename Action>
    void for_each(Action action) {
        for (Place& place : places)
            if (place.value)
                action(*place.value);
    }

private:
    struct Place {
        std::optional<Value> value;
        std::uint32_t uses = 0;
    };

    std::uint32_t handle_of(std::uint32_t place) const {
        return places[place].uses * capacity + place + 1;
    }

    // The number of uses starts again before a handle would not fit into 32 bits.
    void drop(std::uint32_t place) {
        places[place].value.reset();
        places[place].uses = (places[place].uses + 1) % (UINT32_MAX / capacity - 1);
    }

    std::array<Place, capacity> places{};
};

} // namespace quillon::audio_openal
