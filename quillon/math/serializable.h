// The contract of every value that can be laid out in a flat buffer.
#pragma once

#include "quillon/export.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon {

// A value that goes to and from a flat form: its components one behind the other in field order,
// native byte order, at any alignment, with nothing before, between or behind them.
//
// serialize and deserialize return serialized_size, so that an object chains its members.
// The buffer holds serialized_size bytes; deserialize reads what serialize of the same class wrote.
class cSerializable {
public:
    virtual std::uint32_t serialize(std::uint8_t* buffer) const = 0;
    virtual std::uint32_t deserialize(const std::uint8_t* buffer) = 0;
    virtual std::uint32_t serialized_size() const = 0;

protected:
    constexpr cSerializable() = default;
    constexpr cSerializable(const cSerializable&) = default;
    constexpr cSerializable& operator=(const cSerializable&) = default;
    ~cSerializable() = default;
};

namespace detail {

// What an index outside the components of `Owner` refers to, one for each form of access.
template <class Owner, class Value>
QUILLON_LOCAL inline Value writable_scratch{};
template <class Owner, class Value>
QUILLON_LOCAL inline Value readable_scratch{};

template <class Value>
QUILLON_LOCAL inline constexpr Value constant_zero{};

// True if `index` is one of a class's table of components.
template <class Component, std::size_t count>
constexpr bool has_index(Component const (&)[count], int index) {
    return index >= 0 && index < static_cast<int>(count);
}

template <class Value>
constexpr Value& zeroed(Value& scratch) {
    scratch = Value{};
    return scratch;
}

template <class Stored, class Value>
void write_scalar(std::uint8_t* buffer, const Value& value) {
    const auto stored = static_cast<Stored>(value);
    std::memcpy(buffer, &stored, sizeof(Stored));
}

template <class Stored>
Stored read_scalar(const std::uint8_t* buffer) {
    Stored stored;
    std::memcpy(&stored, buffer, sizeof(Stored));
    return stored;
}

// Lays the first `count` components of an indexed object out as `Stored`, and takes them back.
template <class Stored, class Object>
void write_components(std::uint8_t* buffer, const Object& object, int count) {
    for (int i = 0; i < count; ++i)
        write_scalar<Stored>(buffer + sizeof(Stored) * i, object[i]);
}

template <class Stored, class Object>
void read_components(const std::uint8_t* buffer, Object& object, int count) {
    for (int i = 0; i < count; ++i)
        object[i] = read_scalar<Stored>(buffer + sizeof(Stored) * i);
}

} // namespace detail
} // namespace quillon
