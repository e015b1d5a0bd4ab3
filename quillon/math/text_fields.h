// SPDX-License-Identifier: MIT
// The text form of values: decimal fields, each closed by "#".
#pragma once

#include <cstddef>
#include <cstdlib>
#include <type_traits>

namespace quillon {

// Walks the closed fields of a text.
//
// A field holds at most `capacity - 1` characters; further ones are dropped.
// Text after the last "#" belongs to no field.
template <std::size_t capacity>
class TextFields {
public:
    explicit TextFields(const char* text) : cursor(text) {}

    // The next field as a terminated string, valid until the next call; null after the last.
    const char* next() {
        std::size_t length = 0;
        for (; *cursor != '\0'; ++cursor) {
            if (*cursor == '#') {
                ++cursor;
                field[length] = '\0';
                return field;
            }
            if (length < capacity - 1)
                field[length++] = *cursor;
        }
        return nullptr;
    }

private:
    const char* cursor;
    char field[capacity];
};

// The number in a field by the runtime's rules; 0 if it does not parse.
inline double field_to_double(const char* field) {
    return std::strtod(field, nullptr);
}

// Reads one field into each of the first `count` components of an indexed object, in order.
//
// Components without a field keep their values; surplus fields are skipped.
template <std::size_t capacity, typename Object>
void read_component_fields(Object& object, int count, const char* text) {
    TextFields<capacity> fields(text);
    for (int i = 0; i < count; ++i) {
        const char* field = fields.next();
        if (field == nullptr)
            return;
        using Component = std::remove_reference_t<decltype(object[i])>;
        object[i] = static_cast<Component>(field_to_double(field));
    }
}

} // namespace quillon
