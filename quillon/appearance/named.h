// Rows of the named tables, and the look-up that they share.
#pragma once

#include "quillon/containers/name_hash.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace quillon {

template <class T>
struct Named {
    std::string_view name;
    T value;
};

constexpr char to_upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
}

constexpr char to_lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

// The name_hash of the name in upper case; only "a" to "z" change.
constexpr std::uint32_t upper_case_key(std::string_view name) {
    return name_hash(name.size(), [&](std::size_t i) { return to_upper(name[i]); });
}

// The name_hash of every row's name, worked out by the compiler.
template <class Row, std::size_t N, class NameOf = std::identity>
consteval std::array<std::uint32_t, N> keys_of(const std::array<Row, N>& rows,
                                               NameOf name_of = {}) {
    std::array<std::uint32_t, N> keys{};
    for (std::size_t i = 0; i < N; ++i)
        keys[i] = name_hash(std::invoke(name_of, rows[i]));
    return keys;
}

// The row whose key is `key`, or null; names are not compared.
template <class Row, std::size_t N>
constexpr const Row* find_by_key(const std::array<std::uint32_t, N>& keys,
                                 const std::array<Row, N>& rows, std::uint32_t key) {
    for (std::size_t i = 0; i < N; ++i)
        if (keys[i] == key)
            return &rows[i];
    return nullptr;
}

} // namespace quillon
