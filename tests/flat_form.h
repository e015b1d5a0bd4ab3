// SPDX-License-Identifier: MIT
// The flat forms of values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

// The bytes of the parts, one after the other.
template <typename... Parts>
std::vector<std::uint8_t> bytes_of(const Parts&... parts) {
    std::vector<std::uint8_t> bytes((sizeof parts + ...));
    std::uint8_t* cursor = bytes.data();
    const auto append = [&](const auto& part) {
        std::memcpy(cursor, &part, sizeof part);
        cursor += sizeof part;
    };
    (append(parts), ...);
    return bytes;
}

template <typename Value>
std::vector<std::uint8_t> flat_form_of(const Value& value) {
    std::vector<std::uint8_t> bytes(value.serialized_size());
    value.serialize(bytes.data());
    return bytes;
}

// Writes `source` at every alignment, reads it back into `target`, and holds the bytes against
// `expected`; the bytes around it must stay.
template <typename Source, typename Target>
void expect_flat_form(const Source& source, Target&& target,
                      const std::vector<std::uint8_t>& expected) {
    const std::size_t size = expected.size();
    ASSERT_EQ(size, source.serialized_size());
    for (std::size_t offset = 1; offset <= 8; ++offset) {
        std::vector<std::uint8_t> buffer(size + 16, 0xAA);
        std::vector<std::uint8_t> whole = buffer;
        EXPECT_EQ(size, source.serialize(buffer.data() + offset));
        std::copy(expected.begin(), expected.end(), whole.begin() + offset);
        EXPECT_EQ(whole, buffer) << offset;
        EXPECT_EQ(size, target.deserialize(buffer.data() + offset));
        EXPECT_EQ(expected, flat_form_of(target)) << offset;
    }
}
