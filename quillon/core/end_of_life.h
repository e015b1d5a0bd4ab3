// SPDX-License-Identifier: MIT
// The library's end-of-life list: what is built registers here, and the list runs backwards.
//
// It runs when the library is unloaded or when the process exits, whichever comes first.
// At exit it has to run before the destructors of the plug-ins' static objects, and exit handlers
// run latest first: so it is registered again whenever plug-in code may have made static objects.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace quillon {

struct EndOfLifeEntry {
    void (*destroy)(EndOfLifeEntry&);
    EndOfLifeEntry* earlier;
};

// Adds an entry, which must not be on the list, as the latest.
void register_for_end_of_life(EndOfLifeEntry& entry);

// Destroys what is on the list, latest first. Does nothing more when it is called again, or while
// it runs.
void run_end_of_life();

// True once the list has begun to run.
bool end_of_life_has_begun();

// Makes the list run before every exit handler that exists now.
void run_end_of_life_before_exit_handlers();

// Does so when the scope is left, also by an exception.
struct EndOfLifeComesFirst {
    EndOfLifeComesFirst() = default;
    EndOfLifeComesFirst(const EndOfLifeComesFirst&) = delete;
    EndOfLifeComesFirst& operator=(const EndOfLifeComesFirst&) = delete;

    ~EndOfLifeComesFirst() { run_end_of_life_before_exit_handlers(); }
};

// Makes the list run before the plug-in's static objects that exist now are destroyed.
//
// The handlers above are enough for that where a process has one list of them.
void run_end_of_life_before_end_of(void* plugin_library);

// Undoes that: another user of the file may keep it loaded longer than this library.
void forget_end_of_life_in(void* plugin_library);

// An object in static storage, built on first use and destroyed by the end-of-life list.
//
// A use after that builds it anew, so that every export still answers: the Phoenix singleton of
// Alexandrescu, "Modern C++ Design", section 6.6.
template <typename T>
class Lasting : private EndOfLifeEntry {
public:
    constexpr Lasting() : EndOfLifeEntry{&Lasting::destroy_object, nullptr} {}

    T& get() {
        if (!alive) {
            ::new (storage) T();
            alive = true;
            register_for_end_of_life(*this);
        }
        return *std::launder(reinterpret_cast<T*>(storage));
    }

private:
    // Plug-in code that is called from the destructor still sees the object.
    static void destroy_object(EndOfLifeEntry& entry) {
        auto& self = static_cast<Lasting&>(entry);
        std::destroy_at(&self.get());
        self.alive = false;
    }

    alignas(T) std::byte storage[sizeof(T)]{};
    bool alive = false;
};

} // namespace quillon
