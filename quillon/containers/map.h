// SPDX-License-Identifier: MIT
// The map of pointers that crosses the border between the library and its plug-ins.
#pragma once

#include <cstdint>
#include <map>
#include <new>
#include <type_traits>

namespace quillon {

// Pointers by 32-bit keys that the caller computes (see name_hash), in ascending key order.
//
// The first value under a key stays until the map is destroyed; no entry is removed.
// An owning map destroys its values; a DSPhashMap<void> frees them with the plain deallocator.
// Not safe for use from two threads at once.
template <typename T>
class DSPhashMap {
    using Entries = std::map<std::uint32_t, T*>;

public:
    // A position in a walk: `first` is the key, `second` the pointer.
    using iterator = typename Entries::const_iterator;

    // An empty map, which owns its values unless it is to refer to them only.
    explicit DSPhashMap(bool references_only = false) : referencesOnly(references_only) {}

    DSPhashMap(const DSPhashMap&) = delete;
    DSPhashMap& operator=(const DSPhashMap&) = delete;

    virtual ~DSPhashMap() {
        if (referencesOnly)
            return;
        for (cursor = entries.begin(); cursor != entries.end(); ++cursor)
            destroy(cursor->second);
    }

    // Stores `value` if the key is free, and returns it either way; null is never stored.
    // A value that was refused stays the caller's.
    T* add(T* value, std::uint32_t key) {
        if (value != nullptr)
            entries.try_emplace(key, value);
        return value;
    }

    // The value under `key`, or null.
    T* find(std::uint32_t key) const {
        const auto found = entries.find(key);
        return found == entries.end() ? nullptr : found->second;
    }

    // A walk in ascending order of key; it stays valid while entries are added.
    iterator begin() const { return entries.begin(); }

    // The end of that walk.
    iterator end() const { return entries.end(); }

private:
    static void destroy(T* value) {
        if constexpr (std::is_void_v<T>)
            ::operator delete(value);
        else
            delete value;
    }

    iterator cursor{};
    Entries entries;
    bool referencesOnly;
};

// A DSPhashMap that refers to its values and never destroys one.
template <typename T>
class DSPrefHashMap : public DSPhashMap<T> {
public:
    DSPrefHashMap() : DSPhashMap<T>(true) {}
};

} // namespace quillon
