// SPDX-License-Identifier: MIT
// Rows of the named tables, and their common look-up by key.
#pragma once

#include "quillon/containers/name_hash.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace quillon {

// A row of a table that hosts may list.
template <typename T>
struct Named {
    std::string_view name; // in upper case
    T value;               // what has the name
};

namespace detail {

// The name_hash of the name in upper case; only "a" to "z" change.
constexpr std::uint32_t upper_case_key(std::string_view name) {
    return name_hash(name.size(), [&](std::size_t i) { return to_upper(name[i]); });
}

// The name_hash of every row's name, computed by the compiler.
template <typename Row, std::size_t count, typename NameOf = std::identity>
consteval std::array<std::uint32_t, count> keys_of(const std::array<Row, count>& rows,
                                                   NameOf name_of = {}) {
    std::array<std::uint32_t, count> keys{};
    for (std::size_t i = 0; i < count; ++i)
        keys[i] = name_hash(std::invoke(name_of, rows[i]));
    return keys;
}

// The row whose key is `key`, or null; names are not compared.
template <typename Row, std::size_t count>
constexpr const Row* find_by_key(const std::array<std::uint32_t, count>& keys,
                                 const std::array<Row, count>& rows, std::uint32_t key) {
    for (std::size_t i = 0; i < count; ++i)
        if (keys[i] == key)
            return &rows[i];
    return nullptr;
}

} // namespace detail
} // namespace quillon
