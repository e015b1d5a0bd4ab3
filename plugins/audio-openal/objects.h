// SPDX-License-Identifier: MIT
// OpenAL's numbered objects, deleted with their owner.
#pragma once

#include <AL/al.h>

#include <utility>

namespace quillon::audio_openal {

// Made and deleted in the thread's current context. The name is 0 where OpenAL makes none.
template <void (*create)(ALsizei, ALuint*), void (*destroy)(ALsizei, const ALuint*)>
class Object {
public:
    Object() { create(1, &number); }

    Object(Object&& other) noexcept : number(std::exchange(other.number, 0)) {}

    Object& operator=(Object&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    ~Object() {
        if (number != 0)
            destroy(1, &number);
    }

    ALuint name() const { return number; }

private:
    ALuint number = 0;
};

using Buffer = Object<alGenBuffers, alDeleteBuffers>;
using Source = Object<alGenSources, alDeleteSources>; // stops when it is deleted

} // namespace quillon::audio_openal
