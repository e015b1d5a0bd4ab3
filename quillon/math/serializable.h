// SPDX-License-Identifier: MIT
// The interface of values that can be laid out in a flat buffer.
#pragma once

#include "quillon/export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace quillon {

// A value with a flat form: its components in field order, in native byte order, at any alignment,
// with nothing before, between or after them.
//
// serialize and deserialize return serialized_size, so that an object can chain its members.
// The buffer holds serialized_size bytes; deserialize reads what serialize of the same class wrote.
class cSerializable {
public:
    // Writes the flat form.
    virtual std::uint32_t serialize(std::uint8_t* buffer) const = 0;
    // Reads the flat form.
    virtual std::uint32_t deserialize(const std::uint8_t* buffer) = 0;
    // The size of the flat form in bytes.
    virtual std::uint32_t serialized_size() const = 0;

protected:
    constexpr cSerializable() = default;
    constexpr cSerializable(const cSerializable&) = default;
    constexpr cSerializable& operator=(const cSerializable&) = default;
    ~cSerializable() = default;
};

namespace detail {

// An index outside the components of `Owner` refers to one of these, one for each form of access.
template <typename Owner, typename Value>
QUILLON_LOCAL inline Value writable_scratch{};
template <typename Owner, typename Value>
QUILLON_LOCAL inline Value readable_scratch{};

template <typename Value>
QUILLON_LOCAL inline constexpr Value CONSTANT_ZERO{};

// True if `index` is one of a class's table of components.
template <typename Component, std::size_t count>
constexpr bool has_index(Component const (&)[count], int index) {
    return index >= 0 && index < static_cast<int>(count);
}

template <typename Value>
constexpr Value& zeroed(Value& scratch) {
    scratch = Value{};
    return scratch;
}

// Component `index` of `owner`, or the scratch zero of the form of access.
template <typename Owner, typename Value, std::size_t count>
constexpr Value& component_at(Owner& owner, Value Owner::*const (&components)[count], int index) {
    return has_index(components, index) ? owner.*components[index]
                                        : zeroed(writable_scratch<Owner, Value>);
}

template <typename Owner, typename Value, std::size_t count>
constexpr const Value& component_at(const Owner& owner, Value Owner::*const (&components)[count],
                                    int index) {
    return has_index(components, index) ? owner.*components[index]
                                        : zeroed(readable_scratch<Owner, Value>);
}

template <typename Stored, typename Value>
void write_scalar(std::uint8_t* buffer, const Value& value) {
    const auto stored = static_cast<Stored>(value);
    std::memcpy(buffer, &stored, sizeof(Stored));
}

template <typename Stored>
Stored read_scalar(const std::uint8_t* buffer) {
    Stored stored;
    std::memcpy(&stored, buffer, sizeof(Stored));
    return stored;
}

// Write the first `count` components of an indexed object as `Stored`, and read them.
template <typename Stored, typename Object>
void write_components(std::uint8_t* buffer, const Object& object, int count) {
    for (int i = 0; i < count; ++i, buffer += sizeof(Stored))
        write_scalar<Stored>(buffer, object[i]);
}

template <typename Stored, typename Object>
void read_components(const std::uint8_t* buffer, Object& object, int count) {
    using Component = std::remove_reference_t<decltype(object[0])>;
    for (int i = 0; i < count; ++i, buffer += sizeof(Stored))
        object[i] = static_cast<Component>(read_scalar<Stored>(buffer));
}

} // namespace detail
} // namespace quillon
