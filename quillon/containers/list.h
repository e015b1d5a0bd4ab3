// SPDX-License-Identifier: MIT
// The list of pointers that crosses the border between the library and its plug-ins.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace quillon {

// The position after the last element.
inline constexpr std::uint32_t DSP_APPEND = 0xFFFFFFFF;

// A pair.
template <typename A, typename B>
struct tuple2 {
    // The two values.
    A first;
    B second;

    // A pair of copies.
    tuple2(const A& a, const B& b) : first(a), second(b) {}
};

// A list of pointers to heap objects, which it destroys unless it only refers to them.
//
// Elements come from `new`; null may be stored.
// Not safe for use from two threads at once; walk by position when a walk may nest in another.
template <typename T>
class DSParray {
public:
    // An empty list, which owns its elements unless it is to refer to them only.
    explicit DSParray(bool references_only = false) : referencesOnly(references_only) {}

    DSParray(const DSParray&) = delete;
    DSParray& operator=(const DSParray&) = delete;

    virtual ~DSParray() { clear(); }

    // The number of elements, null ones included.
    std::uint32_t count() const { return static_cast<std::uint32_t>(cursor); }

    // The element at `position`, or null beyond the end.
    T* get(const std::uint32_t& position) const {
        return position < cursor ? items[position] : nullptr;
    }

    // Puts `element` before the one at `position` (DSP_APPEND or `count` for the end) and returns
    // it. Null, with nothing stored, for a position beyond the end; the element then stays the
    // caller's.
    T* add(T* element, const std::uint32_t& position) {
        const std::uint32_t target = position == DSP_APPEND ? count() : position;
        if (target > count())
            return nullptr;
        make_room_for_one();
        items.insert(items.begin() + target, element);
        cursor = items.size();
        return element;
    }

    // Removes the element at `position`, and destroys it if the list owns it and `keep` is false.
    // False beyond the end.
    bool remove(const std::uint32_t& position, bool keep) {
        if (position >= count())
            return false;
        if (!keep)
            destroy(items[position]); // may come back and append
        items.erase(items.begin() + position);
        cursor = items.size();
        return true;
    }

    // Makes the next `add` one that cannot fail.
    //
    // Grows by half, whatever the factor of the platform's vector is, so that both sides of the
    // plug-in border see the same capacities.
    void make_room_for_one() {
        const std::size_t capacity = items.capacity();
        if (items.size() < capacity)
            return;
        const std::size_t by_half = capacity + capacity / 2;
        items.reserve(by_half > capacity ? by_half : capacity + 1);
    }

    // Destroys every element that the list owns, first to last, and empties the list.
    void clear() {
        for (std::size_t place = 0; place < items.size(); ++place)
            destroy(items[place]);
        items.clear();
        cursor = 0;
    }

protected:
    std::vector<T*> items;  // in order
    std::size_t cursor = 0; // the position after the last element

private:
    // A type that hides its destructor can only be referred to.
    void destroy(T* element) {
        if constexpr (std::is_destructible_v<T>)
            if (!referencesOnly)
                delete element;
    }

    bool referencesOnly;
};

// A DSParray that refers to its elements and never destroys one.
template <typename T>
class DSPrefArray : public DSParray<T> {
public:
    DSPrefArray() : DSParray<T>(true) {}
};

} // namespace quillon
