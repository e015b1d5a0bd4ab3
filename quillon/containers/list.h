// The list of pointers that crosses the border between the library and its plug-ins.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace quillon {

// The position behind the last element.
inline constexpr std::uint32_t DSP_APPEND = 0xFFFFFFFF;

template <class A, class B>
struct tuple2 {
    A first;
    B second;

    tuple2(const A& a, const B& b) : first(a), second(b) {}
};

// A list of pointers to heap objects, which it destroys unless it only refers to them.
//
// Elements come from `new`; null may be stored.
// Not safe for use from two threads at once; walk by position when a walk may nest in another.
template <class T>
class DSParray {
public:
    explicit DSParray(bool references_only = false) : referencesOnly(references_only) {}

    DSParray(const DSParray&) = delete;
    DSParray& operator=(const DSParray&) = delete;

    virtual ~DSParray() { clear(); }

    std::uint32_t count() const { return static_cast<std::uint32_t>(items.size()); }

    // The element at `position`, or null beyond the end.
    T* get(const std::uint32_t& position) const {
        return position < count() ? items[position] : nullptr;
    }

    // Puts `element` before the one at `position` (DSP_APPEND or `count` for the end) and returns
    // it. Null, with nothing stored, for a position beyond the end; the element then stays the
    // caller's.
    T* add(T* element, const std::uint32_t& position) {
        const std::uint32_t target = position == DSP_APPEND ? count() : position;
        if (target > count())
            return nullptr;
        make_room_for_one();
        cursor = items.begin() + target;
        cursor = items.insert(cursor, element);
        return element;
    }

    // Takes the element at `position` out, and destroys it if the list owns it and `keep` is false.
    // False beyond the end.
    bool remove(const std::uint32_t& position, bool keep) {
        if (position >= count())
            return false;
        cursor = items.begin() + position;
        if (!keep)
            destroy(*cursor);
        items.erase(cursor);
        return true;
    }

    // Walks from the first element on and takes out, in one pass, those for which `leaves` is true;
    // the others keep their order. What the list owns is destroyed after `leaves` has returned.
    //
    // `leaves` may add behind the last element and is then asked about that one too; it must not
    // change the list otherwise, and finds null at some of the positions that were walked over.
    // An exception of `leaves` ends the walk: the element in question and all behind it stay.
    template <class Leaves>
    void remove_if(Leaves leaves) {
        constexpr std::size_t ahead = 12; // elements lie scattered: let their accesses overlap
        Gap gap{items};
        while (gap.end < items.size()) {
            if (gap.end + ahead < items.size())
                __builtin_prefetch(items[gap.end + ahead], 1);
            T* const element = items[gap.end];
            const bool gone = leaves(element);
            if (gone || gap.begin != gap.end)
                items[gap.end] = nullptr;
            ++gap.end;
            if (gone)
                destroy(element);
            else
                items[gap.begin++] = element;
        }
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
        for (cursor = items.begin(); cursor != items.end(); ++cursor)
            destroy(*cursor);
        items.clear();
    }

private:
    // A type that hides its destructor can only be referred to.
    void destroy(T* element) {
        if constexpr (std::is_destructible_v<T>)
            if (!referencesOnly)
                delete element;
    }

    // The places that a walk has emptied, closed up when the walk ends in whichever way.
    struct Gap {
        std::vector<T*>& items;
        std::size_t begin = 0;
        std::size_t end = 0;

        ~Gap() {
            items.erase(items.begin() + static_cast<std::ptrdiff_t>(begin),
                        items.begin() + static_cast<std::ptrdiff_t>(end));
        }
    };

    std::vector<T*> items;
    typename std::vector<T*>::iterator cursor{};
    bool referencesOnly;
};

// A DSParray that refers to its elements and never destroys one.
template <class T>
class DSPrefArray : public DSParray<T> {
public:
    DSPrefArray() : DSParray<T>(true) {}
};

} // namespace quillon
